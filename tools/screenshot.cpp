// Takes a screenshot of a program: pendrix_screenshot PROGRAM FILE [USE]
// Without arguments, reports by its exit status whether an X display is available.
//
// Starts PROGRAM, waits until its window shows a drawing, runs the command USE, saves a picture of the window as FILE
// (PNG), closes the window as a window manager does, and exits with PROGRAM's status; with 1 after any error.
// Requires a display without a window manager, which would reparent the window.

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTextStream>

#include <algorithm>

// After Qt's headers: X11 defines macros with common names.
#include <X11/Xlib.h>

namespace {

constexpr int timeout = 300000; // ms; a software renderer under valgrind starts slowly
constexpr int pause = 50;       // ms between two checks

/// Returns the first visible top-level window with a title, 0 if there is none.
Window findWindow(Display *display)
{
    Window root = 0;
    Window parent = 0;
    Window *children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count))
        return 0;
    Window found = 0;
    for (unsigned int i = 0; i < count && !found; ++i) {
        XWindowAttributes attributes;
        char *name = nullptr;
        if (XGetWindowAttributes(display, children[i], &attributes) && attributes.map_state == IsViewable &&
            XFetchName(display, children[i], &name) && name) {
            found = children[i];
            XFree(name);
        }
    }
    if (children)
        XFree(children);
    return found;
}

/// Returns whether the right half of `picture` has many vivid pixels; widgets are almost grey.
bool showsDrawing(const QImage &picture)
{
    constexpr int enough = 1000;
    int vivid = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = picture.width() / 2; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const auto range = std::minmax({qRed(pixel), qGreen(pixel), qBlue(pixel)});
            if (range.second - range.first > 128)
                ++vivid;
        }
    }
    return vivid >= enough;
}

/// Sends `window` the close request of a window manager.
void requestClose(Display *display, Window window)
{
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, window, False, NoEventMask, &event);
    XSync(display, False);
}

/// Ignores an X error: a window may be destroyed between two requests.
int ignoreError(Display * /*display*/, XErrorEvent * /*event*/)
{
    return 0;
}

int failed(const QString &why)
{
    QTextStream(stderr) << "pendrix_screenshot: " << why << '\n';
    return 1;
}

} // namespace

int main(int argc, char *argv[])
{
    Display *display = XOpenDisplay(nullptr);
    if (argc == 1)
        return display ? 0 : 1;
    if (!display)
        return failed(QStringLiteral("no X display"));
    XSetErrorHandler(ignoreError);

    QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3 && arguments.size() != 4)
        return failed(QStringLiteral("usage: pendrix_screenshot PROGRAM FILE [USE]"));
    const QString &file = arguments.at(2);

    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(arguments.at(1), QStringList());
    if (!program.waitForStarted())
        return failed(QStringLiteral("cannot start %1").arg(arguments.at(1)));

    QElapsedTimer clock;
    clock.start();
    Window window = 0;
    QImage picture;
    while (!showsDrawing(picture)) {
        if (program.waitForFinished(pause) || program.state() == QProcess::NotRunning)
            return failed(QStringLiteral("the program ended too early"));
        if (clock.elapsed() > timeout)
            return failed(window ? QStringLiteral("the window shows no drawing")
                                 : QStringLiteral("no window appeared"));
        window = findWindow(display);
        if (window)
            picture = QGuiApplication::primaryScreen()->grabWindow(window).toImage();
    }
    if (arguments.size() == 4) {
        QProcess use;
        use.setProcessChannelMode(QProcess::ForwardedChannels);
        use.start(arguments.at(3), QStringList());
        if (!use.waitForFinished(timeout) || use.exitStatus() != QProcess::NormalExit || use.exitCode() != 0)
            return failed(QStringLiteral("%1 failed").arg(arguments.at(3)));
        picture = QGuiApplication::primaryScreen()->grabWindow(window).toImage();
    }
    const bool saved = picture.save(file, "PNG");

    requestClose(display, window);
    if (!program.waitForFinished(timeout))
        return failed(QStringLiteral("the window did not close"));
    if (!saved)
        return failed(QStringLiteral("cannot write %1").arg(file));
    XCloseDisplay(display);
    return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : 1;
}
