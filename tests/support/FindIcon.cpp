// Looks an icon up as a desktop does: find-icon NAME
// Prints the sizes in which the system's fallback theme has it, a line each, and fails if it has none.

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
