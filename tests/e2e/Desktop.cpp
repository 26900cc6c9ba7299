#include "tests/e2e/Desktop.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QProcess>

#include <cstring>

// After Qt's headers: X11 defines macros of everyday names.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace {

/// Windows come and go while we look; that one has gone is an answer and no error.
int ignoreError(Display * /*display*/, XErrorEvent * /*event*/)
{
    return 0;
}

Display *display()
{
    static Display *const connection = [] {
        XSetErrorHandler(ignoreError);
        return XOpenDisplay(nullptr);
    }();
    return connection;
}

/// The values of the window's property `name`: a list of `type`, in 32 bits each.
QVector<unsigned long> propertyOf(Window window, const char *name, Atom type)
{
    Atom actualType = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char *data = nullptr;
    QVector<unsigned long> values;
    if (XGetWindowProperty(display(), window, XInternAtom(display(), name, False), 0, 1000, False, type, &actualType,
                           &format, &count, &left, &data) == Success &&
        data) {
        if (actualType == type && format == 32) {
            values.resize(static_cast<int>(count));
            std::memcpy(values.data(), data, count * sizeof(unsigned long));
        }
        XFree(data);
    }
    return values;
}

bool isTaken = false;

/// A text on the clipboard that knows when it is taken.
class Offer : public QMimeData
{
public:
    explicit Offer(const QByteArray &text) { setText(QString::fromUtf8(text)); }

protected:
    QVariant retrieveData(const QString &type, QVariant::Type wanted) const override
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
    return manager.waitForStarted() &&
           QTest::qWaitFor(
               [] {
                   return !propertyOf(DefaultRootWindow(display()), "_NET_SUPPORTING_WM_CHECK", XA_WINDOW).isEmpty();
               },
               patience);
}

QVector<WId> Desktop::windowsOf(qint64 pid)
{
    const QVector<unsigned long> all = propertyOf(DefaultRootWindow(display()), "_NET_CLIENT_LIST", XA_WINDOW);
    QVector<WId> windows;
    for (const unsigned long window : all) {
        if (propertyOf(window, "_NET_WM_PID", XA_CARDINAL).value(0) == static_cast<unsigned long>(pid))
            windows << window;
    }
    return windows;
}

QString Desktop::titleOf(WId window)
{
    char *name = nullptr;
    if (!XFetchName(display(), window, &name) || !name)
        return {};
    QString title = QString::fromUtf8(name);
    XFree(name);
    return title;
}

QRect Desktop::geometryOf(WId window)
{
    XWindowAttributes attributes = {};
    int x = 0;
    int y = 0;
    Window child = 0;
    if (!XGetWindowAttributes(display(), window, &attributes) ||
        !XTranslateCoordinates(display(), window, attributes.root, 0, 0, &x, &y, &child))
        return {};
    return {x, y, attributes.width, attributes.height};
}

WId Desktop::activeWindow()
{
    // Not what the window manager says is active: the keys go there a moment later.
    Window window = 0;
    int revert = 0;
    XGetInputFocus(display(), &window, &revert);
    return window;
}

void Desktop::close(WId window)
{
    constexpr long fromTheUser = 2; // by way of a program that looks after others' windows
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display(), "_NET_CLOSE_WINDOW", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = CurrentTime;
    event.xclient.data.l[1] = fromTheUser;
    XSendEvent(display(), DefaultRootWindow(display()), False, SubstructureRedirectMask | SubstructureNotifyMask,
               &event);
    XFlush(display());
}

void Desktop::touch(const QStringList &words)
{
    if (QProcess::execute("xdotool", words) != 0)
        QTest::qFail(qPrintable("xdotool has failed: " + words.join(' ')), __FILE__, __LINE__);
}

void Desktop::click(WId window, QPoint point)
{
    touch({"mousemove", "--window", QString::number(window), QString::number(point.x()), QString::number(point.y()),
           "click", "1"});
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
    // It may be ourselves whom it asks.
    if (!QTest::qWaitFor([&xclip] { return xclip.state() == QProcess::NotRunning; }, patience))
        xclip.kill();
    return xclip.readAllStandardOutput();
}
