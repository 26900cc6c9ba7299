// The least that a window like the program's costs: its form and its frames, drawn from a static array. Has no engine,
// no rows, no icons and no settings. start-and-frames.sh compares the program with it.

#include "ui_MainWindow.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QMainWindow window;
    Ui_MainWindow form;
    form.setupUi(&window);
    window.centralWidget()->hide(); // as in the program
    window.show();
    return QApplication::exec();
}
