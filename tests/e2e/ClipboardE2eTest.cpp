// Copy and paste between the program and a spreadsheet.

#include "tests/e2e/Rows.h"

class ClipboardE2eTest : public QObject
{
    Q_OBJECT

    RunningProgram program;

private slots:
    void initTestCase() { QVERIFY(program.start()); }
    void cleanupTestCase() { QCOMPARE(program.close(), 0); }

    void spreadsheetReturnsChangedRows()
    {
        QByteArray text = RunningProgram::copy();
        QCOMPARE(text, presetText());
        text.replace("6\t-3\t2\t0.21\t0.3\t0", "6.5\t-3\t2\t0.21\t1e-07\t3");
        text.chop(2);
        text += "4\n";
        RunningProgram::paste(QByteArray(text).replace("\n", "\r\n"));
        QCOMPARE(RunningProgram::copy(), text);
    }

    void pasteLeavesCurveUntilSelection()
    {
        RunningProgram::paste(textOf(distinctRows()));
        QVERIFY(program.paintsFrames(3));
        QCOMPARE(shownBy(program), -1);
        program.click(program.cell(4, 0));
        COMPARE_SOON(shownBy(program), 4);
    }
};

PENDRIX_END_TO_END_MAIN(ClipboardE2eTest)
#include "ClipboardE2eTest.moc"
