// Choosing the curve in the table, and editing the table.

#include "tests/e2e/Rows.h"

class TableE2eTest : public QObject
{
    Q_OBJECT

    RunningProgram program;
    Rows rows;

private slots:
    void initTestCase() { QVERIFY(program.start()); }
    void cleanupTestCase() { QCOMPARE(program.close(), 0); }

    void init()
    {
        rows = distinctRows();
        RunningProgram::paste(textOf(rows));
        program.click(program.cell(7, 1));
        COMPARE_SOON(shownBy(program), 7);
    }

    void clicksSelectCurves()
    {
        for (const auto &cell : {QPoint(0, 5), QPoint(1, 2), QPoint(1, 0)}) {
            program.click(program.cell(cell.y(), cell.x()));
            COMPARE_SOON(shownBy(program), cell.y());
        }
        QVERIFY(isBlue(program.view()));
        program.click(program.geometryOf("label 4").center());
        COMPARE_SOON(shownBy(program), 4);
        QCOMPARE(program.selection().size(), 6);
        program.click(program.geometryOf("title 1").center());
        COMPARE_SOON(shownBy(program), 0);
        QCOMPARE(program.selection().size(), 64);

        program.click(program.cell(10, 0)); // a preset
        VERIFY_SOON(shows(program.view(), {1.0F, 2.0F, -1.0F, 0.1F, 0.3F, 2.0F}, {}, 400));
        QVERIFY(!isBlue(program.view()));
    }

    void keysSelectCurves()
    {
        program.click(program.cell(0, 0));
        RunningProgram::press({"Down", "Down", "Right", "Down"});
        COMPARE_SOON(shownBy(program), 3);
        QCOMPARE(program.selection(), Cells({QPoint(1, 3)}));
        RunningProgram::press({"shift+Down"});
        COMPARE_SOON(shownBy(program), 4);
        RunningProgram::press({"Prior", "Down"});
        COMPARE_SOON(shownBy(program), 1);
    }

    void editReachesCurveWhenRowIsSelectedAgain()
    {
        program.click(program.cell(0, 1));
        COMPARE_SOON(shownBy(program), 0);
        QVERIFY(program.edit("0.0094"));
        rows[0][1] = 0.0094F;
        QCOMPARE(RunningProgram::copy(), presetsBelow(rows));
        program.click(program.cell(0, 1)); // the cell is already selected
        QVERIFY(program.paintsFrames(3));
        QCOMPARE(shownBy(program), 0);

        program.click(program.cell(1, 0));
        COMPARE_SOON(shownBy(program), 1);
        program.click(program.cell(0, 0));
        COMPARE_SOON(shownBy(program), 4); // row 4 draws the same curve
    }

    void openEditorKeepsCopyAndPaste()
    {
        program.click(program.cell(2, 0));
        RunningProgram::press({"F2"});
        VERIFY_SOON(program.isEditing());
        QCOMPARE(RunningProgram::copy(), QByteArray("20"));
        RunningProgram::paste("2.75");
        RunningProgram::press({"Return"});
        VERIFY_SOON(!program.isEditing());
        rows[2][0] = 2.75F;
        QCOMPARE(RunningProgram::copy(), presetsBelow(rows));
    }
};

PENDRIX_END_TO_END_MAIN(TableE2eTest)
#include "TableE2eTest.moc"
