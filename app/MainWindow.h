#pragma once

#include <QMainWindow>

class QSettings;
QT_BEGIN_NAMESPACE
class Ui_MainWindow;
QT_END_NAMESPACE

/// The program's window: the parameter table in the left dock, the curve in the right dock, menus, toolbar, status bar.
///
/// MainWindow.ui has the layout. The constructor loads the settings (rows, layout, geometry, column widths), and the
/// destructor saves them.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Opens the settings and applies them to the window, the table and the engine's parameter list. Ignores missing,
    /// damaged and malformed values. Reports nothing. Called once, by the constructor.
    void loadSettings();

    /// Saves the window, the table and the engine's parameter list, and deletes `settings`. Replaces the file
    /// atomically and keeps foreign entries. Returns within seconds, without saving, if another program holds the lock.
    /// Called once, by the destructor.
    void saveSettings();

    /// Returns the UTF-8 text of the file at `path` up to the first zero byte; an empty string if it cannot be opened.
    QString readTextFile(const QString &path);

    /// The form's objects. Owned.
    Ui_MainWindow *ui;
    /// Null before loading, and if the settings file is not a regular file or cannot be read; saveSettings then saves
    /// nothing. Dangling after saveSettings.
    QSettings *settings = nullptr;

private slots:
    // Connected by name to the triggered signal of the form's actions.
    void on_actioncopy_triggered();
    void on_actionpaste_triggered();
    void on_actionreset_triggered();
    void on_actionabout_triggered();
};
