// The first start after the installation, and the next one.

#include "tests/e2e/Rows.h"

#include <QDir>

class StartTest : public QObject
{
    Q_OBJECT

private slots:
    void firstStartShowsFirstPreset()
    {
        RunningProgram program;
        QVERIFY(program.start());
        QCOMPARE(program.geometry().size(), QSize(701, 605));

        // The table is on the left, the curve on the right, in colour and moving.
        const QRect view = program.geometryOf("view");
        QVERIFY(view.left() > program.geometryOf("table").right());
        QVERIFY(view.width() > 300 && view.height() > 450);
        VERIFY_SOON(shows(program.view(), {1.0F, 2.0F, 3.0F, 0.46F, 1.5e-8F, 1.0F}, {}, 400));
        QVERIFY(!isBlue(program.view()));
        const QImage before = program.view();
        VERIFY_SOON(program.view() != before);

        QCOMPARE(RunningProgram::copy(), presetText());
        QCOMPARE(program.close(), 0);
        const QDir folder(program.settings.filePath("quillmoss"));
        QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList("pdx3.conf"));

        QVERIFY(program.start({}, {"--help", "no-such-file"})); // unknown arguments are ignored
        QCOMPARE(program.geometry().size(), QSize(701, 605));
        QCOMPARE(RunningProgram::copy(), presetText());
        QCOMPARE(program.close(), 0);
    }
};

PENDRIX_END_TO_END_MAIN(StartTest)
#include "StartTest.moc"
