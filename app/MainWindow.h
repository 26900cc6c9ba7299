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

    /// Opens the settings and applies them to the window, the table and the engine's parameter list. Missing, damaged
    /// and malformed values leave everything as it is. Reports nothing. Called once, by the constructor.
    void loadSettings();

    /// Saves the window, the table and the engine's parameter list, and deletes `settings`. The file changes as a whole
    /// or not at all, and foreign entries stay. Returns within seconds even if another program holds the lock; the
    /// file then stays as it is. Called once, by the destructor.
    void saveSettings();

    /// Returns the text of the file at `path`, read as UTF-8 up to the first zero byte. Empty if it cannot be opened.
    QString readTextFile(const QString &path);

    /// The form's objects. Owned.
    Ui_MainWindow *ui;
    /// Null before loading, and if the settings file is not a regular file or cannot be read: then nothing is saved.
    /// Dangling after saveSettings.
    QSettings *settings = nullptr;

private slots:
    // Connected by name to the triggered signal of the form's actions.
    void on_actioncopy_triggered();
    void on_actionpaste_triggered();
    void on_actionreset_triggered();
    void on_actionabout_triggered();
};
