#include "tests/e2e/Desktop.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPixmap>
#include <QProcess>
#include <QScreen>

// After Qt's headers: X11 defines macros with common names.
#include <X11/Xlib.h>

namespace {

Display *display()
{
    static Display *const connection = XOpenDisplay(nullptr);
    return connection;
}

/// Returns whether the window manager gives the keyboard focus to new windows, which it does not before it is ready.
bool isWindowManagerReady()
{
    constexpr int timeout = 200; // ms
    QWindow window;
    window.show();
    return QTest::qWaitForWindowActive(&window, timeout);
}

bool isTaken = false;

/// Clipboard text that records when a program reads it.
class Offer : public QMimeData
{
public:
    explicit Offer(const QByteArray &text) { setText(QString::fromUtf8(text)); }

protected:
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    using WantedType = QVariant::Type;
#else
    using WantedType = QMetaType;
#endif
    QVariant retrieveData(const QString &type, WantedType wanted) const override
    {
        isTaken = true;
        return QMimeData::retrieveData(type, wanted);
    }
};

} // namespace

bool Desktop::startWindowManager()
{
    static struct Manager : QProcess
    {
        ~Manager() override
        {
            kill();
            waitForFinished();
        }
    } manager;
    manager.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    manager.start("openbox", {"--config-file", PENDRIX_WINDOW_MANAGER_SETTINGS});
    return manager.waitForStarted() && QTest::qWaitFor(isWindowManagerReady, timeout);
}

void Desktop::close(WId window)
{
    constexpr long fromPager = 2; // source of the request: a task bar or pager
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display(), "_NET_CLOSE_WINDOW", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = CurrentTime;
    event.xclient.data.l[1] = fromPager;
    XSendEvent(display(), DefaultRootWindow(display()), False, SubstructureRedirectMask | SubstructureNotifyMask,
               &event);
    XFlush(display());
}

QImage Desktop::picture(const QRect &area)
{
    QScreen *screen = QGuiApplication::primaryScreen();
    const QRect visible = area & screen->geometry();
    return screen->grabWindow(0, visible.x(), visible.y(), visible.width(), visible.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

void Desktop::xdotool(const QStringList &arguments)
{
    if (QProcess::execute("xdotool", arguments) != 0)
        QTest::qFail(qPrintable("xdotool failed: " + arguments.join(' ')), __FILE__, __LINE__);
}

QStringList Desktop::moveTo(QPoint point)
{
    return {"mousemove", QString::number(point.x()), QString::number(point.y())};
}

void Desktop::putOnClipboard(const QByteArray &text)
{
    isTaken = false;
    QGuiApplication::clipboard()->setMimeData(new Offer(text));
}

bool Desktop::isTakenFromClipboard()
{
    return isTaken;
}

bool Desktop::isNewOnClipboard()
{
    return !QGuiApplication::clipboard()->ownsClipboard();
}

QByteArray Desktop::clipboard()
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", "clipboard", "-out"});
    // Keep the event loop running: this process may own the clipboard.
    if (!QTest::qWaitFor([&xclip] { return xclip.state() == QProcess::NotRunning; }, timeout))
        xclip.kill();
    return xclip.readAllStandardOutput();
}
