// The program's window with nothing in it: its form and its frame rate, but no curve, no rows, no icons, no settings.
//
// What the program costs beyond this is its own; start-and-frames.sh measures it.

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
