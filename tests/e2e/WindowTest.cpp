// The window's size, position, docks and column widths, in one run and in the next.

#include "tests/e2e/Rows.h"

#include <QScreen>

class WindowTest : public QObject
{
    Q_OBJECT

    RunningProgram program;

    void restart()
    {
        QCOMPARE(program.close(), 0);
        QVERIFY(program.start());
    }

private slots:
    void initTestCase() { QVERIFY(program.start()); }
    void cleanupTestCase() { QCOMPARE(program.close(), 0); }

    void closedTableStaysClosedUntilReopened()
    {
        program.click(program.geometryOf("close-button").center());
        VERIFY_SOON(program.ask("table").isEmpty());
        restart();
        QVERIFY(program.ask("table").isEmpty());

        program.click(program.geometryOf("menu Edit").center() + QPoint(100, 0), 1, 3);
        RunningProgram::press({"Down", "Return"});
        VERIFY_SOON(!program.ask("table").isEmpty());
    }

    void sizePositionColumnsAndEditsSurviveRestart()
    {
        const QRect title = program.geometryOf("title 0");
        const QPoint border(title.right(), title.center().y());
        program.drag(border, border - QPoint(40, 0), {1});
        COMPARE_SOON(program.geometryOf("title 0").width(), title.width() - 40);
        program.click(program.cell(0, 0));
        QVERIFY(program.edit("12.5"));

        const QString id = QString::number(program.window());
        const QRect before = program.geometry();
        Desktop::xdotool({"windowmove", id, "100", "80", "windowsize", id, "851", "685"});
        COMPARE_SOON(program.geometry().size(), QSize(851, 685));
        VERIFY_SOON(program.geometry().left() < before.left() - 50);
        const QRect after = program.geometry();
        for (int i = 0; i < 2; ++i) {
            restart();
            COMPARE_SOON(program.geometry(), after);
            QCOMPARE(program.geometryOf("title 0").width(), title.width() - 40);
            QVERIFY(RunningProgram::copy().startsWith("12.5\t2\t3\t"));
        }
    }

    void wholeScreenSurvivesRestart()
    {
        RunningProgram::paste(textOf(distinctRows()));
        const QRect before = program.geometry();
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const auto isMaximised = [&] {
            const QRect now = program.geometry();
            return now.width() >= screen.width() - 4 && now.height() > screen.height() - 40 && now != screen;
        };
        RunningProgram::press({"alt+F10"});
        VERIFY_SOON(isMaximised());
        restart();
        VERIFY_SOON(isMaximised());
        RunningProgram::press({"alt+F10"});
        COMPARE_SOON(program.geometry(), before);

        RunningProgram::press({"alt+F11"});
        COMPARE_SOON(program.geometry(), screen);
        restart();
        COMPARE_SOON(program.geometry(), screen);
        program.click(program.cell(4, 1));
        COMPARE_SOON(shownBy(program), 4); // the picture fits the view
        RunningProgram::press({"alt+F11"});
        COMPARE_SOON(program.geometry(), before);
    }
};

PENDRIX_END_TO_END_MAIN(WindowTest)
#include "WindowTest.moc"
