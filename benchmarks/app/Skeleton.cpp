// A lower bound for the cost of the program's window: the same form and the same frames, drawn from a static array,
// without engine, rows, icons and settings. start-and-frames.sh compares the program with it.

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
