// Turning the curve with the mouse.

#include "tests/e2e/Rows.h"

Q_DECLARE_METATYPE(Turn)

class TurningTest : public QObject
{
    Q_OBJECT

    /// Half way to the eye it looks different after a turn about any axis, to either side.
    const Row row = cone(0.05F);
    static constexpr double halfWay = 45.0;

    std::unique_ptr<RunningProgram> program;
    QPoint start;

private slots:
    void init()
    {
        program = std::make_unique<RunningProgram>();
        QVERIFY(program->start());
        RunningProgram::paste(textOf({row, cone(1.0F)}));
        QVERIFY(program->findCells());
        VERIFY_SOON(shows(program->picture(), row));
        start = viewIn(program->picture()).center();
        // Half a degree a pixel.
        program->drag(start, start + QPoint(90, 0), {1});
        VERIFY_SOON(shows(program->picture(), row, {0.0, halfWay, 0.0}));
    }

    void cleanup() { QCOMPARE(program->close(), 0); }

    void drags()
    {
        const struct
        {
            const char *name;
            QVector<int> buttons;
            QPoint way;
            Turn turn;
        } drags[] = {
            {"left, across", {1}, {120, 0}, {0.0, 60.0, 0.0}},
            {"left, down", {1}, {0, 70}, {35.0, 0.0, 0.0}},
            {"left, back and up", {1}, {-80, -50}, {-25.0, -40.0, 0.0}},
            {"right, across", {3}, {60, 0}, {0.0, 0.0, 30.0}},
            {"right, down", {3}, {0, 70}, {35.0, 0.0, 0.0}},
            {"right, both ways", {3}, {-50, 60}, {30.0, 0.0, -25.0}},
            {"left and right", {1, 3}, {60, 40}, {20.0, 30.0, 0.0}},
            {"right and left", {3, 1}, {60, 40}, {20.0, 30.0, 0.0}},
            {"middle and right", {2, 3}, {60, 40}, {20.0, 0.0, 30.0}},
        };
        for (const auto &drag : drags) {
            program->drag(start, start + drag.way, drag.buttons);
            const Turn turned = {drag.turn.aboutX, halfWay + drag.turn.aboutY, drag.turn.aboutZ};
            const auto isTurned = [&] { return shows(program->picture(), row, turned); };
            QVERIFY2(QTest::qWaitFor(isTurned, Desktop::patience), drag.name);
            QVERIFY(program->showsFrames(3));
            QVERIFY2(isTurned(), drag.name);
            QVERIFY2(!shows(program->picture(), row, {0.0, halfWay, 0.0}), drag.name);
            QVERIFY2(
                !shows(program->picture(), row, {-drag.turn.aboutX, halfWay - drag.turn.aboutY, -drag.turn.aboutZ}),
                drag.name);

            // The next drag goes on from there, and this one back.
            program->drag(start + drag.way, start, drag.buttons);
            VERIFY_SOON(shows(program->picture(), row, {0.0, halfWay, 0.0}));
        }
    }

    void theMiddleButtonTurnsNothing()
    {
        program->drag(start, start + QPoint(60, 70), {2});
        program->drag(start, start + QPoint(30, 0), {3}); // and is seen when this one is
        VERIFY_SOON(shows(program->picture(), row, {0.0, halfWay, 15.0}));
    }

    void outOfTheWindow()
    {
        program->drag(start, start + QPoint(400, 0), {1});
        VERIFY_SOON(shows(program->picture(), row, {0.0, halfWay + 200.0, 0.0}));
    }

    void theTurnStaysWithTheNextRow()
    {
        program->click(program->cell(1, 0));
        VERIFY_SOON(shows(program->picture(), cone(1.0F), {0.0, halfWay, 0.0}));
        QVERIFY(!shows(program->picture(), cone(1.0F)));
    }
};

PENDRIX_END_TO_END_MAIN(TurningTest)
#include "TurningTest.moc"
