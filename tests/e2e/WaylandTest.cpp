// A session under Wayland: in a compositor that is itself a window on the display.

#include "tests/e2e/Rows.h"

#include <QPixmap>
#include <QScreen>

class WaylandTest : public QObject
{
    Q_OBJECT

    QTemporaryDir runtime;
    QTemporaryDir settings;
    QProcess compositor;
    QProcess program;

    /// The compositor leaves room on the display for the pointer, which waits there for the session to begin: if it is
    /// in the window when that opens, the compositor may take it to be in the upper left corner ever after.
    static QSize compositorSize() { return QGuiApplication::primaryScreen()->size() - QSize(8, 8); }

    static QImage picture()
    {
        const QSize size = compositorSize();
        const QPixmap screen = QGuiApplication::primaryScreen()->grabWindow(0, 0, 0, size.width(), size.height());
        return screen.toImage().convertToFormat(QImage::Format_RGB32);
    }

    /// Moves the pointer to `from`, given from the upper left corner of the view, and does `words` there.
    static void touchAt(QPoint from, const QStringList &words)
    {
        const QPoint point = viewIn(picture()).topLeft() + from;
        Desktop::touch(QStringList({"mousemove", QString::number(point.x()), QString::number(point.y())}) + words);
    }

    void start()
    {
        program.start(PENDRIX_INSTALLED_PROGRAM, QStringList());
        VERIFY_SOON(shows(picture(), firstPreset, {}, 400));
    }

    /// Closes the window with the button of its frame, which is the program's own under Wayland.
    void close()
    {
        touchAt({viewIn(picture()).width() - 4, -84}, {"click", "1"});
        VERIFY_SOON(program.state() == QProcess::NotRunning);
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(program.readAllStandardError(), QByteArray());
    }

    const Row firstPreset = {1.0F, 2.0F, 3.0F, 0.46F, 1.5e-8F, 1.0F};
    const QPoint firstCell = {-290, 30};

private slots:
    void initTestCase()
    {
        QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
        surroundings.insert("XDG_RUNTIME_DIR", runtime.path());
        compositor.setProcessEnvironment(surroundings);
        const QSize size = compositorSize();
        Desktop::touch({"mousemove", QString::number(size.width() + 4), QString::number(size.height() + 4)});
        compositor.setStandardErrorFile(QProcess::nullDevice());
        compositor.setStandardOutputFile(QProcess::nullDevice());
        compositor.start("weston", {"--backend=x11-backend.so", "--use-pixman", "--no-config", "--idle-time=0",
                                    "--socket=wayland-of-the-test", "--width=" + QString::number(size.width()),
                                    "--height=" + QString::number(size.height())});
        VERIFY_SOON(QFile::exists(runtime.filePath("wayland-of-the-test")));

        for (const char *name : {"DISPLAY", "LC_ALL", "LC_NUMERIC", "LANG", "LANGUAGE"})
            surroundings.remove(name);
        surroundings.insert("WAYLAND_DISPLAY", "wayland-of-the-test");
        surroundings.insert("QT_QPA_PLATFORM", "wayland");
        surroundings.insert("XDG_CONFIG_HOME", settings.path());
        surroundings.insert("HOME", settings.path());
        program.setProcessEnvironment(surroundings);
    }

    void cleanupTestCase()
    {
        program.kill();
        program.waitForFinished();
        compositor.terminate();
        QVERIFY(compositor.waitForFinished(Desktop::patience));
    }

    void aSession()
    {
        start();
        const auto view = [] { return picture().copy(viewIn(picture())); };
        for (int i = 0; i < 3; ++i) {
            const QImage before = view();
            VERIFY_SOON(view() != before);
        }

        // Choosing with a click and with a key, and an edit.
        touchAt(firstCell, {"click", "1"});
        VERIFY_SOON(!selectionIn(picture()).isEmpty());
        RunningProgram::press({"Down"});
        const Row secondPreset = {2.0F, 3.0F, 4.0F, 0.25F, 0.0F, 2.0F};
        VERIFY_SOON(shows(picture(), secondPreset, {}, 400));
        QVERIFY(!shows(picture(), firstPreset, {}, 400));
        const QRect second = selectionIn(picture());
        RunningProgram::press({"Up", "Tab"});
        VERIFY_SOON(selectionIn(picture()).top() < second.top() && selectionIn(picture()).left() > second.left() + 50);
        QVERIFY(enter("0.002", picture));
        RunningProgram::press({"Down", "Up"});
        const Row edited = {1.0F, 0.002F, 3.0F, 0.46F, 1.5e-8F, 1.0F};
        VERIFY_SOON(shows(picture(), edited, {}, 400));

        // A drag turns it.
        touchAt({100, 200},
                {"mousedown", "1", "mousemove_relative", "60", "0", "mousemove_relative", "60", "0", "mouseup", "1"});
        VERIFY_SOON(shows(picture(), edited, {0.0, 60.0, 0.0}, 400));
        const QSize size = viewIn(picture()).size();
        QVERIFY(!shows(picture(), edited, {}, 400));
        close();

        // The edit and the window's size are kept.
        QVERIFY(QFile::exists(settings.filePath("quillmoss/pdx3.conf")));
        start();
        QCOMPARE(viewIn(picture()).size(), size);
        touchAt(firstCell, {"click", "1"});
        VERIFY_SOON(shows(picture(), edited, {}, 400));
        close();
    }
};

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    WaylandTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "WaylandTest.moc"
