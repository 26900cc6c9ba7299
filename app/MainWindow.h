#pragma once

#include <QMainWindow>

class QSettings;
class Ui_MainWindow;

/// The program's window: the parameter table in the left dock, the curve in the right one, menus, toolbar, status bar.
///
/// Introduces the table, the curve and the menus to each other; the objects themselves are laid out in MainWindow.ui.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// The form's objects, owned by the window.
    Ui_MainWindow *ui;
    /// The settings store while it is open, else null.
    QSettings *settings = nullptr;

private slots:
    // Connected by name to the triggered signal of the form's actions.
    void on_actioncopy_triggered();
    void on_actionpaste_triggered();
    void on_actionreset_triggered();
    void on_actionabout_triggered();
};
