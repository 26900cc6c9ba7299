#include "app/MainWindow.h"
#include "app/TerminationSignals.h"

#include <QApplication>

int main(int argc, char *argv[])
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // Otherwise Qt 5 closes the window when a session manager saves the session without ending it.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
#endif
    QApplication application(argc, argv);
    closeOnTerminationSignals(&application);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
