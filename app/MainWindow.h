#pragma once

#include <QMainWindow>

class QSettings;
QT_BEGIN_NAMESPACE
class Ui_MainWindow;
QT_END_NAMESPACE

/// The program's window: the parameter table in the left dock, the curve in the right one, menus, toolbar, status bar.
///
/// Its objects are laid out in MainWindow.ui; the table and the curve meet in the global engine, the menus' actions
/// here. What the user leaves behind (rows, layout, size and place, column widths) is loaded when the window is
/// constructed and saved when it is destroyed, and at no other time.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Opens the settings store and applies what it holds to the window, the table and the engine's parameter list.
    /// What is missing, damaged or of another type leaves things as they are; so does a parameter list that is not 64
    /// rows of six. Nothing is reported. A store that would end the program is mended first.
    void loadSettings();

    /// Writes the window, the table and the engine's parameter list to the store and closes it. The store changes as a
    /// whole or not at all, as on a disk without room, and keys of others stay. Called once, by the destructor.
    void saveSettings();

    /// The text of the file at `path`, read as UTF-8 up to the first zero byte; empty if the file cannot be opened.
    QString readTextFile(const QString &path);

    /// The form's objects, owned by the window.
    Ui_MainWindow *ui;
    /// The settings store, from loadSettings to saveSettings; null if it is damaged and cannot be mended.
    QSettings *settings = nullptr;

private slots:
    // Connected by name to the triggered signal of the form's actions.
    void on_actioncopy_triggered();
    void on_actionpaste_triggered();
    void on_actionreset_triggered();
    void on_actionabout_triggered();
};
