#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QWindow>
#include <QtTest>

/// The X display that the test has to itself, with a window manager, as seen from outside the programs on it.
namespace Desktop {

/// How long to wait for anything, in ms; a software renderer on a loaded machine takes its time.
constexpr int patience = 20000;

/// Starts the window manager, which lives as long as the process. False if it does not come up.
bool startWindowManager();

/// The windows of the process `pid` that the window manager looks after, oldest first.
QVector<WId> windowsOf(qint64 pid);

/// The window's title.
QString titleOf(WId window);

/// The window without its frame, in pixels of the screen.
QRect geometryOf(WId window);

/// The window that has the keyboard.
WId activeWindow();

/// Asks the window manager to close the window, as a task bar does.
void close(WId window);

/// Pointer and keys, in the words of xdotool. A failure is one of the running test.
void touch(const QStringList &words);

/// Clicks at `point` of the window.
void click(WId window, QPoint point);

/// Puts `text` on the clipboard.
void putOnClipboard(const QByteArray &text);

/// Whether a program has taken the text that putOnClipboard put there last.
bool isTakenFromClipboard();

/// Whether a program has put something on the clipboard since putOnClipboard did.
bool isNewOnClipboard();

/// The clipboard's text, as another program gets it.
QByteArray clipboard();

} // namespace Desktop

/// QVERIFY and QCOMPARE of what may take a while. The toolkit's own count their pauses and not what a look takes.
#define VERIFY_SOON(condition) QVERIFY(QTest::qWaitFor([&] { return static_cast<bool>(condition); }, Desktop::patience))
#define COMPARE_SOON(actual, expected)                                                                                 \
    do {                                                                                                               \
        auto seen = (actual);                                                                                          \
        const decltype(seen) wanted = (expected);                                                                      \
        if (!QTest::qWaitFor([&] { return (seen = (actual)) == wanted; }, Desktop::patience))                          \
            QCOMPARE(seen, wanted);                                                                                    \
    } while (false)
