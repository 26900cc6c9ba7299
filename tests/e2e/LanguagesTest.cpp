// Users whose language has other numbers, or runs from right to left.

#include "tests/e2e/Rows.h"

class LanguagesTest : public QObject
{
    Q_OBJECT

private slots:
    void languages_data()
    {
        QTest::addColumn<RunningProgram::Environment>("environment");
        QTest::addColumn<QStringList>("arguments");
        using Environment = RunningProgram::Environment;
        QTest::newRow("German") << Environment{{"LC_ALL", "de_DE.UTF-8"}} << QStringList();
        QTest::newRow("German numbers only")
            << Environment{{"LANG", "en_GB.UTF-8"}, {"LC_NUMERIC", "de_DE.UTF-8"}} << QStringList();
        QTest::newRow("Arabic") << Environment{{"LANG", "ar_EG.UTF-8"}, {"LC_ALL", "ar_EG.UTF-8"}} << QStringList();
        QTest::newRow("from right to left") << Environment{{"LC_ALL", "ar_EG.UTF-8"}} << QStringList("-reverse");
    }

    void languages()
    {
        QFETCH(RunningProgram::Environment, environment);
        QFETCH(QStringList, arguments);
        RunningProgram program;
        QVERIFY(program.start(environment, arguments));
        QCOMPARE(RunningProgram::copy(), presetText());
        Rows rows = distinctRows();
        RunningProgram::paste(textOf(rows));
        QVERIFY(program.findCells());
        QCOMPARE(program.cellStep().x() < 0, !arguments.isEmpty());
        program.click(program.cell(4, 1));
        COMPARE_SOON(shownBy(program), 4);

        // A full stop in every language, in the editor as on the clipboard.
        RunningProgram::type("2.5");
        QVERIFY(program.closeEditor("Return"));
        rows[4][1] = 2.5F;
        program.click(program.cell(5, 1));
        RunningProgram::type("3,5");
        QVERIFY(program.closeEditor("Return"));
        QCOMPARE(RunningProgram::copy(), withTop(presetText(), rows));
        QCOMPARE(program.close(), 0);

        QVERIFY(program.start());
        QCOMPARE(RunningProgram::copy(), withTop(presetText(), rows));
        QCOMPARE(program.close(), 0);
    }
};

PENDRIX_END_TO_END_MAIN(LanguagesTest)
#include "LanguagesTest.moc"
