// A program that uses the settings file through plain QSettings: PlainSettings ROUND prints the first value of the
// stored parameter list and its own counter, and then sets the value to ROUND and the counter to ROUND.

#include <QCoreApplication>
#include <QDataStream>
#include <QSettings>
#include <QTextStream>
#include <QVector>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    qRegisterMetaType<QVector<int>>("QVector<int>");
    qRegisterMetaType<QVector<QVector<float>>>("QVector<QVector<float>>");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    qRegisterMetaTypeStreamOperators<QVector<int>>("QVector<int>");
    qRegisterMetaTypeStreamOperators<QVector<QVector<float>>>("QVector<QVector<float>>");
#endif
    const int round = QCoreApplication::arguments().value(1).toInt();

    QSettings settings("quillmoss", "pdx3");
    auto rows = settings.value("paramList").value<QVector<QVector<float>>>();
    if (rows.size() != 64 || rows.first().size() != 6)
        return 1;
    QTextStream(stdout) << rows.at(0).at(0) << ' ' << settings.value("counter").toInt() << ' '
                        << settings.value("group/note").toString();
    rows[0][0] = static_cast<float>(round);
    settings.setValue("paramList", QVariant::fromValue(rows));
    settings.setValue("counter", round);
    settings.setValue("group/note", "round; " + QString::number(round));
    return 0;
}
