#pragma once

#include "tests/e2e/Desktop.h"

#include <QElapsedTimer>
#include <QImage>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>
#include <memory>

/// The installed program, running, and what a user can do with it. All positions are pixels of the screen, relative to
/// the window without its frame.
class RunningProgram
{
public:
    using Environment = QMap<QString, QString>;

    /// A program with a settings folder of its own, which is empty.
    RunningProgram();
    /// A program that shares the folder `settings`.
    explicit RunningProgram(QString settings);
    ~RunningProgram();
    Q_DISABLE_COPY(RunningProgram)

    /// Starts it, and waits until its window has the keyboard and shows a curve.
    bool start(const Environment &environment = {}, const QStringList &arguments = {});

    /// Whether it runs.
    bool isRunning() const;
    /// The folder that it keeps its settings in.
    QString settings() const { return settingsFolder; }
    /// The exit code once it has ended by itself; -1 if it crashed or printed anything.
    int exitCode();
    /// Its main window.
    WId window() const;
    /// Its open box, once that has the keyboard; 0 if none opens.
    WId box() const;
    /// Waits until there is no window but the main one, and that one has the keyboard.
    bool isAlone() const;

    /// The window's place on the screen.
    QRect geometry() const;
    /// What the window shows.
    QImage picture() const;
    /// Waits until the view has changed `count` times.
    bool showsFrames(int count) const;

    /// Clicks at `point` with the keys of `modifiers` held: "shift", "ctrl".
    void click(QPoint point, const QStringList &modifiers = {});
    void doubleClick(QPoint point);
    /// Moves from `from` to `to` with the buttons held: 1 left, 2 middle, 3 right.
    void drag(QPoint from, QPoint to, const QVector<int> &buttons);
    /// Presses keys, one after the other, by their names: "ctrl+v", "Return".
    static void press(const QStringList &keys);
    static void type(const QString &text);

    /// Presses Ctrl+C, and what the clipboard holds then; nothing if the program puts nothing there.
    static QByteArray copy();
    /// Puts `text` on the clipboard, presses Ctrl+V, and waits until the program takes it.
    static void paste(const QByteArray &text);

    /// The cells of the table, found by going through it from its first one, which is the current one afterwards.
    bool findCells(double scale = 1.0);
    /// The middle of a cell, counted from 0.
    QPoint cell(int row, int column) const;
    /// The middle of a row's label, or of a column's title.
    QPoint rowLabel(int row) const;
    QPoint columnTitle(int column) const;
    QRect firstCell() const { return first; }
    QPoint cellStep() const { return step; }

    /// Waits until the current cell is being edited, presses `key`, and waits until it no longer is. The cells have to
    /// be found before.
    bool closeEditor(const QString &key) const;

    /// Asks the window manager to close the window, waits for the end and tells its exitCode; -1 if there is no end.
    int close();

private:
    /// Lets so much time go by that a press at `point` is no double click together with the one before.
    void startPress(QPoint point);

    QElapsedTimer sincePress;
    QPoint lastPress;
    QProcess process;
    QTemporaryDir ownFolder;
    QString settingsFolder;
    QRect first;
    QPoint step;
};

Q_DECLARE_METATYPE(RunningProgram::Environment)

/// The box around what is selected in the table, by the colour of the selection.
QRect selectionIn(const QImage &picture);

/// Waits until an editor covers some of the current cell of the size `cell`, presses `key`, and waits until none does,
/// as `picture` shows it: the editor takes every key that comes before it is closed. False if it does not come to that.
bool closeEditor(const QString &key, QSize cell, const std::function<QImage()> &picture);

/// Types `text` into the current cell, which is not being edited, and presses Return. `picture` shows the table.
bool enter(const QString &text, const std::function<QImage()> &picture);

/// main of a test program that has the display to itself.
#define PENDRIX_END_TO_END_MAIN(TestClass)                                                                             \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        QGuiApplication application(argc, argv);                                                                       \
        if (!Desktop::startWindowManager())                                                                            \
            return 1;                                                                                                  \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
