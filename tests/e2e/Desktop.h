#pragma once

#include <QImage>
#include <QRect>
#include <QStringList>
#include <QWindow>
#include <QtTest>

/// The test's X display and its window manager, got from outside the programs on it.
namespace Desktop {

/// Longest wait for any effect, in ms: a software renderer on a loaded machine is slow.
constexpr int timeout = 45000;

/// Starts the window manager, which lives as long as the process, and waits until it gives the keyboard focus to new
/// windows. Returns false if that never happens.
bool startWindowManager();

/// Sends the window manager the request to close the window, as a task bar does.
void close(WId window);

/// Returns a picture of `area` of the screen.
QImage picture(const QRect &area);

/// Runs xdotool. Fails the running test if xdotool fails.
void xdotool(const QStringList &arguments);

/// Returns the arguments that move the pointer to `point` of the screen.
QStringList moveTo(QPoint point);

/// Puts `text` on the clipboard.
void putOnClipboard(const QByteArray &text);

/// Returns whether a program has read the text of the last putOnClipboard.
bool isTakenFromClipboard();

/// Returns whether a program has taken over the clipboard since the last putOnClipboard.
bool isNewOnClipboard();

/// Returns the clipboard's text, as another program receives it.
QByteArray clipboard();

} // namespace Desktop

/// QVERIFY and QCOMPARE with a deadline. QTRY_VERIFY counts its pauses only, not the time that a check takes.
#define VERIFY_SOON(condition) QVERIFY(QTest::qWaitFor([&] { return static_cast<bool>(condition); }, Desktop::timeout))
#define COMPARE_SOON(actual, expected)                                                                                 \
    do {                                                                                                               \
        auto got = (actual);                                                                                           \
        const decltype(got) wanted = (expected);                                                                       \
        if (!QTest::qWaitFor([&] { return (got = (actual)) == wanted; }, Desktop::timeout))                            \
            QCOMPARE(got, wanted);                                                                                     \
    } while (false)
