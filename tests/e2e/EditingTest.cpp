// Typing into the table.

#include "tests/e2e/Rows.h"

class EditingTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<RunningProgram> program;
    Rows rows;

    /// The table as text, with `rows` at its top.
    QByteArray expected() const { return withTop(presetText(), rows); }

private slots:
    void init()
    {
        rows = distinctRows();
        program = std::make_unique<RunningProgram>();
        QVERIFY(program->start());
        RunningProgram::paste(textOf(rows));
        QVERIFY(program->findCells());
        COMPARE_SOON(shownBy(*program), 0);
    }

    void cleanup() { QCOMPARE(program->close(), 0); }

    void theCurveFollowsWhenTheRowIsSelectedAgain()
    {
        program->click(program->cell(0, 1));
        RunningProgram::type("0.0094");
        QVERIFY(program->closeEditor("Return"));
        rows[0][1] = 0.0094F;
        QCOMPARE(RunningProgram::copy(), expected());
        QVERIFY(program->showsFrames(3));
        QCOMPARE(shownBy(*program), 0);

        // Another click on the cell that is selected selects nothing.
        program->click(program->cell(0, 1));
        QVERIFY(program->showsFrames(5));
        QCOMPARE(shownBy(*program), 0);

        program->click(program->cell(1, 0));
        COMPARE_SOON(shownBy(*program), 1);
        program->click(program->cell(0, 0));
        COMPARE_SOON(shownBy(*program), 4); // the row has that one's curve now
    }

    void waysIntoAnEditor()
    {
        program->doubleClick(program->cell(3, 1));
        RunningProgram::type("1.5");
        QVERIFY(program->closeEditor("Return"));
        rows[3][1] = 1.5F;
        QCOMPARE(RunningProgram::copy(), expected());

        // The old text is selected, and can be written on.
        program->click(program->cell(4, 0));
        RunningProgram::press({"F2", "End"});
        RunningProgram::type("25");
        QVERIFY(program->closeEditor("Return"));
        rows[4][0] = 2025.0F;
        QCOMPARE(RunningProgram::copy(), expected());
    }

    void waysOut()
    {
        program->click(program->cell(2, 0));
        RunningProgram::type("7");
        QVERIFY(program->closeEditor("Escape"));
        QCOMPARE(RunningProgram::copy(), expected());

        // Tab goes on to the next cell and opens it.
        RunningProgram::type("8");
        RunningProgram::press({"Tab"});
        RunningProgram::type("9");
        QVERIFY(program->closeEditor("KP_Enter"));
        rows[2][0] = 8.0F;
        rows[2][1] = 9.0F;
        QCOMPARE(RunningProgram::copy(), expected());

        program->click(program->cell(5, 1));
        RunningProgram::type("10");
        program->click(program->cell(6, 0));
        rows[5][1] = 10.0F;
        QCOMPARE(RunningProgram::copy(), expected());
    }

    void numbersAndRubbish()
    {
        const struct
        {
            const char *typed;
            float stored; // NaN if the old value stays
        } texts[] = {
            {"abc", std::nanf("")},  {"1e3", 1000.0F},         {"1,5", std::nanf("")},
            {"-0.5", -0.5F},         {"--1", std::nanf("")},   {"1e39", std::nanf("")},
            {" 7 ", 7.0F},           {".25", 0.25F},           {"1 2", std::nanf("")},
            {"0x10", std::nanf("")}, {"3.5kg", std::nanf("")},
        };
        program->click(program->cell(1, 0));
        for (const auto &text : texts) {
            RunningProgram::press({"F2", "ctrl+a"});
            RunningProgram::type(text.typed);
            QVERIFY(program->closeEditor("Return"));
            if (!std::isnan(text.stored))
                rows[1][0] = text.stored;
            QCOMPARE(RunningProgram::copy(), expected());
        }
        RunningProgram::press({"F2", "ctrl+a", "Delete"});
        QVERIFY(program->closeEditor("Return"));
        QCOMPARE(RunningProgram::copy(), expected());
    }

    void copyAndPasteInAnEditorAreTheEditors()
    {
        program->click(program->cell(2, 0));
        RunningProgram::press({"F2"});
        QCOMPARE(RunningProgram::copy(), QByteArray("20"));
        RunningProgram::paste("2.75");
        QVERIFY(program->closeEditor("Return"));
        rows[2][0] = 2.75F;
        QCOMPARE(RunningProgram::copy(), expected());
    }

    void theLastRow()
    {
        // Up and Down, for Ctrl moves to a cell and does not select it.
        RunningProgram::press({"ctrl+End", "Up", "Down"});
        RunningProgram::type("64");
        QVERIFY(program->closeEditor("Return"));
        QByteArray text = expected();
        text.chop(2);
        QCOMPARE(RunningProgram::copy(), text + "64\n");
    }
};

PENDRIX_END_TO_END_MAIN(EditingTest)
#include "EditingTest.moc"
