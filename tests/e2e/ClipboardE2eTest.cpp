// Copy and paste, with a spreadsheet on the other side.

#include "tests/e2e/Rows.h"

class ClipboardE2eTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<RunningProgram> program;

private slots:
    void init()
    {
        program = std::make_unique<RunningProgram>();
        QVERIFY(program->start());
    }

    void cleanup() { QCOMPARE(program->close(), 0); }

    void thereAndBack()
    {
        QByteArray text = RunningProgram::copy();
        QCOMPARE(text, presetText());
        // What a spreadsheet of another system makes of it, with a change in the twelfth and the last row.
        text.replace("6\t-3\t2\t0.21\t0.3\t0", "6.5\t-3\t2\t0.21\t1e-07\t3");
        text.chop(2);
        text += "4\n";
        RunningProgram::paste(QByteArray(text).replace("\n", "\r\n"));
        QCOMPARE(RunningProgram::copy(), text);
    }

    void untidyText()
    {
        RunningProgram::paste("\r\nfreq1\tfreq2\tfreq3\tphase1\tphase2\tcolor\r\n" // takes a row and changes nothing
                              "a line that takes none\r\n"
                              "21\t\t22\t23\t24\t25\t26\t\r\n"
                              "1\t2\t3\t4\t5\r\n"
                              " 31\t32 \tabc\t3,5\t35\t1e39\r\n\r\n"
                              "\t41\t42\t43\t44\t45\t46\n");
        QList<QByteArray> lines = presetText().split('\n');
        lines[1] = "21\t22\t23\t24\t25\t26";
        lines[2] = "31\t32\t1\t0.25\t35\t4";
        lines[3] = "41\t42\t43\t44\t45\t46";
        QCOMPARE(RunningProgram::copy(), lines.join('\n'));
    }

    void tooManyLines()
    {
        QByteArray text;
        for (int i = 0; i < 70; ++i)
            text += QByteArray("1\t2\t3\t4\t5\t") + QByteArray::number(i) + '\n';
        RunningProgram::paste(text);
        QCOMPARE(RunningProgram::copy(), text.left(text.indexOf("\t64\n")).chopped(9));
    }

    void nothingToPaste()
    {
        for (const char *text : {"", "\n", "hello", "1;2;3;4;5;6\n"}) {
            RunningProgram::paste(text);
            QCOMPARE(RunningProgram::copy(), presetText());
        }
    }

    void theCurveIsLeftAloneUntilARowIsSelected()
    {
        RunningProgram::paste(textOf(distinctRows()));
        QCOMPARE(RunningProgram::copy(), withTop(presetText(), distinctRows()));
        QVERIFY(program->showsFrames(3));
        QVERIFY(!isBlue(program->picture()));
        QCOMPARE(shownBy(*program), -1);
        QVERIFY(program->findCells());
        COMPARE_SOON(shownBy(*program), 0);
    }

    void theMenu()
    {
        // Edit with the mouse, its entries with keys and with the mouse.
        Desktop::putOnClipboard("before");
        program->click({58, 11});
        RunningProgram::press({"Down", "Return"});
        VERIFY_SOON(Desktop::isNewOnClipboard());
        QCOMPARE(Desktop::clipboard(), presetText());

        Desktop::putOnClipboard(textOf(distinctRows()));
        program->click({58, 11});
        RunningProgram::press({"Down", "Down", "Return"});
        VERIFY_SOON(Desktop::isTakenFromClipboard());
        QCOMPARE(RunningProgram::copy(), withTop(presetText(), distinctRows()));
    }
};

PENDRIX_END_TO_END_MAIN(ClipboardE2eTest)
#include "ClipboardE2eTest.moc"
