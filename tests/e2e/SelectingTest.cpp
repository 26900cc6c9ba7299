// Choosing the curve in the table.

#include "tests/e2e/Rows.h"

class SelectingTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<RunningProgram> program;

private slots:
    void init()
    {
        program = std::make_unique<RunningProgram>();
        QVERIFY(program->start());
        RunningProgram::paste(textOf(distinctRows()));
        QVERIFY(program->findCells());
        COMPARE_SOON(shownBy(*program), 0);
    }

    void cleanup() { QCOMPARE(program->close(), 0); }

    void aClick()
    {
        for (const auto &cell : {QPoint(0, 5), QPoint(1, 2), QPoint(2, 7), QPoint(1, 0)}) {
            program->click(program->cell(cell.y(), cell.x()));
            COMPARE_SOON(shownBy(*program), cell.y());
        }
        QVERIFY(isBlue(program->picture()));
    }

    void arrowKeys()
    {
        RunningProgram::press({"Down", "Down", "Down"});
        COMPARE_SOON(shownBy(*program), 3);
        RunningProgram::press({"Right", "Right", "Up"});
        COMPARE_SOON(shownBy(*program), 2);
        RunningProgram::press({"End", "Down"});
        COMPARE_SOON(shownBy(*program), 3);
        RunningProgram::press({"Home", "Up", "Up", "Up", "Up", "Up"});
        COMPARE_SOON(shownBy(*program), 0);
    }

    void aRangeShowsTheFirstRowThatIsNewInIt()
    {
        program->click(program->cell(2, 1));
        COMPARE_SOON(shownBy(*program), 2);
        program->click(program->cell(6, 1), {"shift"});
        COMPARE_SOON(shownBy(*program), 3);
        RunningProgram::press({"shift+Down"});
        COMPARE_SOON(shownBy(*program), 7);
    }

    void ctrlAddsAndTakesAway()
    {
        program->click(program->cell(1, 1));
        program->click(program->cell(5, 0), {"ctrl"});
        COMPARE_SOON(shownBy(*program), 5);
        QCOMPARE(selectionIn(program->picture()).height(), 4 * program->cellStep().y() + program->firstCell().height());

        // What is taken away leaves the curve as it is.
        program->click(program->cell(5, 0), {"ctrl"});
        COMPARE_SOON(selectionIn(program->picture()).height(), program->firstCell().height());
        QVERIFY(program->showsFrames(3));
        QCOMPARE(shownBy(*program), 5);
    }

    void labelsAndTitles()
    {
        program->click(program->rowLabel(4));
        COMPARE_SOON(shownBy(*program), 4);
        COMPARE_SOON(selectionIn(program->picture()).height(), program->firstCell().height());
        QVERIFY(selectionIn(program->picture()).width() > 2 * program->cellStep().x());

        program->click(program->columnTitle(1));
        COMPARE_SOON(shownBy(*program), 0);
        QVERIFY(selectionIn(program->picture()).height() > 10 * program->cellStep().y());
    }

    void thePresetsHaveTheirColours()
    {
        RunningProgram::paste(presetText());
        program->click(program->cell(4, 0));
        VERIFY_SOON(shows(program->picture(), {2.0F, 2.0F, 11.0F, 0.25F, 1.5e-8F, 2.0F}, {}, 400));
        QVERIFY(!isBlue(program->picture()));
    }
};

PENDRIX_END_TO_END_MAIN(SelectingTest)
#include "SelectingTest.moc"
