// Behaviour that must not depend on the version of Qt, for scripts/compare-qt.sh:
//   CompareQt texts               prints the texts of random rows in the table, its editor and the clipboard, and the
//   bits
//                                 of texts that are entered and pasted
//   CompareQt create FOLDER ...   creates a random settings file in each folder: rows, column widths, layout, geometry
//   and
//                                 entries of other programs
//   CompareQt visit FOLDER ...    opens and closes the window with the settings file in each folder

#include "app/Clipboard.h"
#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "table/TableParams.h"
#include "tests/support/FloatBits.h"
#include "ui_MainWindow.h"

#include <QClipboard>
#include <QLineEdit>
#include <QSettings>
#include <QStyledItemDelegate>
#include <QtTest>

#include <cstdio>
#include <random>
#include <utility>

namespace {

void print(const QByteArray &line)
{
    (void)std::puts(line.constData());
}

/// Returns a number from 0 to `count` - 1. The distributions of the standard library are not portable.
int below(std::mt19937 &random, int count)
{
    return static_cast<int>(random() % static_cast<std::uint32_t>(count));
}

/// Fills the engine's rows: in half of the cells any float, in the others a number as a user types it.
void fillRows(std::mt19937 &random)
{
    for (QVector<float> &row : pdx3.paramList) {
        for (float &value : row)
            value =
                below(random, 2) == 0 ? anyFloat(random) : static_cast<float>(below(random, 20001) - 10000) / 1000.0F;
    }
}

/// Returns a text that may or may not be a number.
QString anyText(std::mt19937 &random)
{
    static const QStringList parts = {"1",   "25",  "0.7",  "-",  "+", ".", "e",      "e39",    "e-46",
                                      "inf", "nan", "0x10", ",5", " ", "7", "999999", "\u0663", "\u2003"};
    QString text;
    for (int count = 1 + below(random, 3); count > 0; --count)
        text += parts.at(below(random, static_cast<int>(parts.size())));
    return text;
}

void printTexts()
{
    std::mt19937 random(6);
    TableParams table;
    auto *const delegate = qobject_cast<QStyledItemDelegate *>(table.itemDelegate());
    for (int list = 0; list < 20; ++list) {
        fillRows(random);
        for (int row = 0; row < 64; ++row) {
            for (int column = 0; column < 6; ++column) {
                const QModelIndex cell = table.model->index(row, column);
                const std::unique_ptr<QWidget> editor(delegate->createEditor(&table, {}, cell));
                delegate->setEditorData(editor.get(), cell);
                print(delegate->displayText(cell.data(), table.locale()).toUtf8() + '|' +
                      qobject_cast<QLineEdit *>(editor.get())->text().toUtf8());
                const QString text = anyText(random);
                qobject_cast<QLineEdit *>(editor.get())->setText(text);
                delegate->setModelData(editor.get(), table.model, cell);
                print(text.toUtf8() + ": " + QByteArray::number(bitsOf(pdx3.paramList.at(row).at(column)), 16));
            }
        }

        copyParamsToClipboard(pdx3);
        print(QGuiApplication::clipboard()->text().toUtf8());
        QString text;
        for (int field = 0; field < 64 * 6; ++field)
            text += anyText(random) + (field % 6 == 5 ? '\n' : '\t');
        QGuiApplication::clipboard()->setText(text);
        pasteParamsFromClipboard(pdx3);
        for (const QVector<float> &row : std::as_const(pdx3.paramList)) {
            for (const float value : row)
                print(QByteArray::number(bitsOf(value), 16));
        }
    }
}

void create(const QString &folder, std::mt19937 &random)
{
    static const QByteArrayList foreign = {"counter=7\n",
                                           "note=\"a, b\"\n",
                                           "list=@Variant(\\0\\0\\0\t\\0\\0\\0\\0)\n",
                                           "; a comment\n",
                                           "\n",
                                           "size=@Size(3 4)\r\n",
                                           "open=\"x\n",
                                           "end=1\\\n",
                                           "name=\xC3\xA4\xFF\n",
                                           "colswidth=lower\n",
                                           "a b=%20\n"};
    QByteArray text = below(random, 4) == 0 ? "" : "[General]\n";
    for (int count = below(random, 8); count > 0; --count)
        text += foreign.at(below(random, static_cast<int>(foreign.size())));
    if (below(random, 2) == 0)
        text += "[other]\nparamList=7\n" + foreign.at(0);
    QFile file(folder + "/quillmoss/pdx3.conf");
    QDir().mkpath(folder + "/quillmoss");
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    file.close();

    MainWindow window;
    fillRows(random);
    for (int column = 0; column < 6; ++column)
        window.ui->tableParams->setColumnWidth(column, 20 + below(random, 200));
    window.ui->dockParams->setVisible(below(random, 3) > 0);
    window.ui->mainToolBar->setVisible(below(random, 3) > 0);
    window.addToolBar(static_cast<Qt::ToolBarArea>(1 << below(random, 4)), window.ui->mainToolBar);
    window.setGeometry(below(random, 600), 20 + below(random, 400), 400 + below(random, 600), 300 + below(random, 500));
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        qFatal("no window");
}

void visit()
{
    pdx3.resetParamList();
    MainWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        qFatal("no window");
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QStringList folders = QCoreApplication::arguments().mid(1);
    const QString command = folders.isEmpty() ? QString() : folders.takeFirst();
    if (command == "texts")
        printTexts();
    std::mt19937 random(7);
    for (const QString &folder : std::as_const(folders)) {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
        if (command == "create")
            create(folder, random);
        else if (command == "visit")
            visit();
    }
    return 0;
}
