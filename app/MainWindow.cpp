#include "app/MainWindow.h"

#include "table/Model.h"
#include "ui_MainWindow.h"

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), ui(new Ui_MainWindow)
{
    ui->setupUi(this);
    // The docks fill the window.
    centralWidget()->hide();
    if (ui->tableParams->model)
        ui->tableParams->model->refresh();
}

MainWindow::~MainWindow()
{
    delete ui;
}

void MainWindow::on_actioncopy_triggered() {}

void MainWindow::on_actionpaste_triggered() {}

void MainWindow::on_actionreset_triggered() {}

void MainWindow::on_actionabout_triggered() {}
