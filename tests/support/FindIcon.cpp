// Looks up an icon as a desktop does: find-icon NAME
// Prints the sizes in which the fallback theme has the icon, one per line; fails if there are none.

#include <QGuiApplication>
#include <QIcon>
#include <QTextStream>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QIcon::setThemeName(QStringLiteral("hicolor"));
    const QList<QSize> sizes = QIcon::fromTheme(QCoreApplication::arguments().value(1)).availableSizes();
    for (const QSize &size : sizes)
        QTextStream(stdout) << size.width() << 'x' << size.height() << '\n';
    return sizes.isEmpty() ? 1 : 0;
}
