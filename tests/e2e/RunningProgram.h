#pragma once

#include "tests/e2e/Desktop.h"

#include <QElapsedTimer>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

using Cells = QVector<QPoint>; // column as x, row as y

/// The installed program with a temporary settings folder, operated by pointer and keys. The preloaded WindowReport.cpp
/// reports where its widgets are. All positions are device pixels relative to the window without its frame.
class RunningProgram
{
public:
    using Environment = QMap<QString, QString>;

    RunningProgram() = default;
    ~RunningProgram();
    Q_DISABLE_COPY(RunningProgram)

    /// Starts it without waiting for its window.
    void launch(const Environment &environment = {}, const QStringList &arguments = {});
    /// Starts it; waits until its window has the keyboard focus and shows a curve. Returns false if that never happens.
    bool start(const Environment &environment = {}, const QStringList &arguments = {});
    /// Closes the window through the window manager; returns exitCode().
    int close();
    /// Waits for the end. Returns the exit code; -1 if the program crashed, printed anything or did not end.
    int exitCode();

    /// Returns WindowReport's answer to `question`.
    QVector<int> ask(const QByteArray &question);
    /// Waits until WindowReport reports a geometry as the answer, and returns it.
    QRect geometryOf(const QByteArray &question);
    /// Returns the middle of a cell, counted from 0.
    QPoint cell(int row, int column);
    /// Returns the selected cells.
    Cells selection();
    /// Returns whether a cell is being edited.
    bool isEditing() { return !ask("editor").isEmpty(); }
    /// Returns the X window of the main window.
    WId window() { return static_cast<WId>(ask("window").value(0)); }
    /// Returns the window's geometry on the screen.
    QRect geometry() { return geometryOf("geometry"); }
    /// Returns the position of a point of the window on the screen.
    QPoint onScreen(QPoint point) { return (corner.isNull() ? geometry().topLeft() : corner) + point; }
    /// Returns a picture of the view, taken from the screen.
    QImage view();
    /// Waits until `count` frames have been painted.
    bool paintsFrames(int count);
    /// Waits until the only window, or else the dialog on top of it, has the keyboard focus.
    bool isAlone();
    bool hasBox();

    /// Clicks at `point`, by default once with the left button.
    void click(QPoint point, int count = 1, int button = 1);
    /// Drags from `from` to `to` with the buttons held: 1 left, 2 middle, 3 right.
    void drag(QPoint from, QPoint to, const QVector<int> &buttons);
    /// Presses keys, one after the other, by their xdotool names: "ctrl+v", "Return".
    static void press(const QStringList &keys);
    /// Types `text`, which opens an editor unless one is open, presses `key`, and waits until the editor is closed.
    bool edit(const QString &text, const QString &key = "Return");

    /// Presses Ctrl+C; returns the clipboard's text, or nothing if the program does not set it.
    static QByteArray copy();
    /// Puts `text` on the clipboard, presses Ctrl+V, and waits until the program reads it.
    static void paste(const QByteArray &text);

    /// Its settings folder, empty at first.
    QTemporaryDir settings;
    /// The position of the window on the screen if the program does not know it, as under Wayland.
    QPoint corner;

private:
    QElapsedTimer sincePress;
    QPoint lastPress;
    QProcess process;
};

/// Returns the bounding rectangle of the curve in a picture of the view; empty without a curve.
QRect curveIn(const QImage &view);

/// main of a test program with a window manager on its display.
#define PENDRIX_END_TO_END_MAIN(TestClass)                                                                             \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        QGuiApplication application(argc, argv);                                                                       \
        if (!Desktop::startWindowManager())                                                                            \
            return 1;                                                                                                  \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
