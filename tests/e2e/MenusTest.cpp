// The entries of both menus.

#include "tests/e2e/Rows.h"

class MenusTest : public QObject
{
    Q_OBJECT

    RunningProgram program;
    const QByteArray changed = presetsBelow(distinctRows());

    /// Chooses the entry `number`, counted from 1, of a menu.
    void choose(const QByteArray &menu, int number)
    {
        program.click(program.geometryOf("menu " + menu).center());
        RunningProgram::press(number == 1 ? QStringList{"Down", "Return"} : QStringList{"Down", "Down", "Return"});
    }

    /// Chooses File, reset, and clicks on the button `text` of its dialog.
    void answerReset(const QByteArray &text)
    {
        choose("File", 1);
        QVERIFY(program.hasBox());
        QVERIFY(program.paintsFrames(3)); // the curve moves behind the dialog
        Desktop::xdotool(Desktop::moveTo(program.geometryOf("button " + text).center()) + QStringList({"click", "1"}));
        QVERIFY(program.isAlone());
    }

private slots:
    void initTestCase()
    {
        QVERIFY(program.start());
        RunningProgram::paste(textOf(distinctRows()));
        QCOMPARE(RunningProgram::copy(), changed);
    }

    void cleanupTestCase() { QCOMPARE(program.close(), 0); }

    void editMenuCopiesAndPastes()
    {
        Desktop::putOnClipboard("before");
        choose("Edit", 1);
        VERIFY_SOON(Desktop::isNewOnClipboard());
        QCOMPARE(Desktop::clipboard(), changed);

        Desktop::putOnClipboard("9\t9\t9\t9\t9\t9\n");
        choose("Edit", 2);
        VERIFY_SOON(Desktop::isTakenFromClipboard());
        QVERIFY(RunningProgram::copy().startsWith("9\t9\t9\t9\t9\t9\n20\t-0.002\t"));
    }

    void aboutDialogShowsPage()
    {
        choose("File", 2);
        QVERIFY(program.hasBox());
        QVERIFY(program.geometryOf("button OK").isValid());
        RunningProgram::press({"Return"});
        QVERIFY(program.isAlone());
    }

    void cancelledResetChangesNothing()
    {
        RunningProgram::paste(textOf(distinctRows()));
        answerReset("Cancel");
        QCOMPARE(RunningProgram::copy(), changed);
    }

    void confirmedResetSurvivesRestart()
    {
        answerReset("OK");
        QCOMPARE(RunningProgram::copy(), presetText());
        QCOMPARE(program.close(), 0);
        QVERIFY(program.start());
        QCOMPARE(RunningProgram::copy(), presetText());
    }
};

PENDRIX_END_TO_END_MAIN(MenusTest)
#include "MenusTest.moc"
