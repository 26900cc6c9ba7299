// Rotating the curve with the mouse.

#include "tests/e2e/Rows.h"

class RotationTest : public QObject
{
    Q_OBJECT

    /// A cone. Rotated half way towards the eye, it looks different after a rotation about any axis in either
    /// direction.
    const Row row = cone(0.05F);
    static constexpr float halfWay = 45.0F;

    RunningProgram program;
    QPoint start;

private slots:
    void initTestCase()
    {
        QVERIFY(program.start());
        RunningProgram::paste(textOf({row, cone(1.0F)}));
        program.click(program.cell(0, 0));
        VERIFY_SOON(shows(program.view(), row));
        start = program.geometryOf("view").center();
        program.drag(start, start + QPoint(90, 0), {1}); // half a degree per pixel
        VERIFY_SOON(shows(program.view(), row, {0.0F, halfWay, 0.0F}));
    }

    void cleanupTestCase() { QCOMPARE(program.close(), 0); }

    void dragsRotateCurve()
    {
        const struct
        {
            const char *name;
            QVector<int> buttons;
            QPoint way;
            Rotation rotation;
        } drags[] = {
            {"left", {1}, {80, -50}, {-25.0F, 40.0F, 0.0F}},
            {"right", {3}, {-50, 60}, {30.0F, 0.0F, -25.0F}},
            {"left and right", {3, 1}, {60, 40}, {20.0F, 30.0F, 0.0F}},
            {"middle", {2}, {60, 70}, {0.0F, 0.0F, 0.0F}},
            {"out of the window", {1}, {400, 0}, {0.0F, 200.0F, 0.0F}},
        };
        for (const auto &drag : drags) {
            const Rotation rotated = {drag.rotation.aboutX, halfWay + drag.rotation.aboutY, drag.rotation.aboutZ};
            program.drag(start, start + drag.way, drag.buttons);
            QVERIFY(program.paintsFrames(3));
            QVERIFY2(QTest::qWaitFor([&] { return shows(program.view(), row, rotated); }, Desktop::timeout), drag.name);
            program.drag(start, start - drag.way, drag.buttons);
            VERIFY_SOON(shows(program.view(), row, {0.0F, halfWay, 0.0F}));
        }
    }

    void rotationStaysForNextRow()
    {
        program.click(program.cell(1, 0));
        VERIFY_SOON(shows(program.view(), cone(1.0F), {0.0F, halfWay, 0.0F}));
        QVERIFY(!shows(program.view(), cone(1.0F)));
    }
};

PENDRIX_END_TO_END_MAIN(RotationTest)
#include "RotationTest.moc"
