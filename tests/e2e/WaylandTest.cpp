// A session under Wayland, in a compositor that is itself a window on the display.

#include "tests/e2e/Rows.h"

#include <QScreen>

class WaylandTest : public QObject
{
    Q_OBJECT

    QTemporaryDir runtime;
    QProcess compositor;
    RunningProgram program;

    /// Returns a size that leaves room for the pointer beside the compositor's window. If the pointer is in that window
    /// when it opens, the compositor may report it in the upper left corner for the rest of the session.
    static QSize compositorSize() { return QGuiApplication::primaryScreen()->size() - QSize(8, 8); }

    void start()
    {
        program.launch({{"WAYLAND_DISPLAY", "wayland-of-the-test"},
                        {"QT_QPA_PLATFORM", "wayland"},
                        {"XDG_RUNTIME_DIR", runtime.path()}});
        QVERIFY(program.paintsFrames(3));
        // Locate the window with the pointer: the middle of the screen is in the window.
        const QPoint middle(compositorSize().width() / 2, compositorSize().height() / 2);
        QVector<int> pointer;
        Desktop::xdotool(Desktop::moveTo(middle - QPoint(1, 0)) + Desktop::moveTo(middle));
        VERIFY_SOON((pointer = program.ask("pointer")) != QVector<int>({0, 0}));
        program.corner = middle - QPoint(pointer.at(0), pointer.at(1));
        VERIFY_SOON(shows(program.view(), {1.0F, 2.0F, 3.0F, 0.46F, 1.5e-8F, 1.0F}, {}, 400));
    }

    /// Closes the window with the button of its frame, which Qt draws itself under Wayland.
    void close()
    {
        program.click({program.geometryOf("view").right() + program.geometryOf("table").left() - 10, -15});
        QCOMPARE(program.exitCode(), 0);
    }

private slots:
    void initTestCase()
    {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("XDG_RUNTIME_DIR", runtime.path());
        compositor.setProcessEnvironment(variables);
        const QSize size = compositorSize();
        Desktop::xdotool(Desktop::moveTo({size.width() + 4, size.height() + 4}));
        compositor.setStandardErrorFile(QProcess::nullDevice());
        compositor.setStandardOutputFile(QProcess::nullDevice());
        compositor.start("weston", {"--backend=x11-backend.so", "--use-pixman", "--no-config", "--idle-time=0",
                                    "--socket=wayland-of-the-test", "--width=" + QString::number(size.width()),
                                    "--height=" + QString::number(size.height())});
        VERIFY_SOON(QFile::exists(runtime.filePath("wayland-of-the-test")));
    }

    void cleanupTestCase()
    {
        compositor.terminate();
        QVERIFY(compositor.waitForFinished(Desktop::timeout));
    }

    void sessionSelectsEditsTurnsAndRestarts()
    {
        start();
        program.click(program.cell(1, 0));
        VERIFY_SOON(shows(program.view(), {2.0F, 3.0F, 4.0F, 0.25F, 0.0F, 2.0F}, {}, 400));
        RunningProgram::press({"Up", "Tab"});
        COMPARE_SOON(program.selection(), Cells({QPoint(1, 0)}));
        QVERIFY(program.edit("0.002"));
        RunningProgram::press({"Down", "Up"});
        const Row edited = {1.0F, 0.002F, 3.0F, 0.46F, 1.5e-8F, 1.0F};
        VERIFY_SOON(shows(program.view(), edited, {}, 400));

        // The compositor draws the pointer into the picture: keep it within the curve's bounding rectangle.
        const QPoint middle = program.geometryOf("view").center();
        program.drag(middle - QPoint(60, 0), middle + QPoint(60, 0), {1});
        VERIFY_SOON(shows(program.view(), edited, {0.0F, 60.0F, 0.0F}, 400));
        QVERIFY(!shows(program.view(), edited, {}, 400));
        const QSize size = program.geometryOf("view").size();
        close();

        start();
        QCOMPARE(program.geometryOf("view").size(), size);
        program.click(program.cell(0, 0));
        VERIFY_SOON(shows(program.view(), edited, {}, 400));
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
