// The first start, as a user who has just installed the program sees it.

#include "tests/e2e/Rows.h"

#include <QDir>

class StartTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstStart()
    {
        const QTemporaryDir settings;
        RunningProgram program(settings.path());
        QVERIFY(program.start());
        QCOMPARE(program.geometry().size(), QSize(701, 605));

        // The curve of the first preset, on the right and in all colours; the table is on the left.
        const QRect view = viewIn(program.picture());
        QVERIFY(view.left() > 701 / 2 && view.width() > 300 && view.height() > 450);
        VERIFY_SOON(shows(program.picture(), {1.0F, 2.0F, 3.0F, 0.46F, 1.5e-8F, 1.0F}, {}, 400));
        QVERIFY(!isBlue(program.picture()));
        QVERIFY(program.showsFrames(5));

        QCOMPARE(RunningProgram::copy(), presetText());
        QCOMPARE(program.close(), 0);

        QFile store(settings.filePath("quillmoss/pdx3.conf"));
        QVERIFY(store.open(QIODevice::ReadOnly));
        const QByteArray text = store.readAll();
        for (const char *key : {"\ngeometry=", "\nwindowState=", "\ncolsWidth=", "\nparamList="})
            QVERIFY2(text.contains(key), key);
        QCOMPARE(QDir(settings.filePath("quillmoss")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList("pdx3.conf"));
    }

    void theSecondStart()
    {
        const QTemporaryDir settings;
        for (int i = 0; i < 2; ++i) {
            RunningProgram program(settings.path());
            QVERIFY(program.start());
            QCOMPARE(program.geometry().size(), QSize(701, 605));
            QCOMPARE(RunningProgram::copy(), presetText());
            QCOMPARE(program.close(), 0);
        }
    }

    void anOptionIsNoneOfItsOwn()
    {
        const QTemporaryDir settings;
        RunningProgram program(settings.path());
        QVERIFY(program.start({}, {"--help", "no-such-file"}));
        QCOMPARE(RunningProgram::copy(), presetText());
        QCOMPARE(program.close(), 0);
    }

    void theCloseButtonOfTheFrame()
    {
        const QTemporaryDir settings;
        RunningProgram program(settings.path());
        QVERIFY(program.start());
        program.click({program.geometry().width() - 8, -10});
        VERIFY_SOON(!program.isRunning());
        QCOMPARE(program.exitCode(), 0);
        QVERIFY(QFile::exists(settings.filePath("quillmoss/pdx3.conf")));
    }
};

PENDRIX_END_TO_END_MAIN(StartTest)
#include "StartTest.moc"
