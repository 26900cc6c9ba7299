#include "app/MainWindow.h"
#include "app/TerminationSignals.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    // Otherwise Qt closes the window when a session manager saves the session without ending it.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    QApplication application(argc, argv);
    closeOnTerminationSignals(&application);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
