// Scale factors and locales.

#include "tests/e2e/Rows.h"
#include "tests/support/SampleSize.h"

class EnvironmentTest : public QObject
{
    Q_OBJECT

private slots:
    void scaledWindowBehavesAsUnscaled_data()
    {
        QTest::addColumn<QString>("factor");
        const QStringList factors = {"2", "1.5", "3"};
        for (int i = 0; i < sampleSize(1, static_cast<int>(factors.size())); ++i)
            QTest::newRow(qPrintable(factors.at(i))) << factors.at(i);
    }

    void scaledWindowBehavesAsUnscaled()
    {
        QFETCH(QString, factor);
        const double scale = factor.toDouble();
        const RunningProgram::Environment environment = {{"QT_SCALE_FACTOR", factor}};
        RunningProgram program;
        QVERIFY(program.start(environment));
        const QRect geometry = program.geometry();
        QVERIFY(std::abs(geometry.width() - 701 * scale) < scale);
        QVERIFY(std::abs(geometry.height() - 605 * scale) < scale);

        const int columnWidth = program.cell(0, 1).x() - program.cell(0, 0).x();
        QVERIFY2(std::abs(columnWidth - 100 * scale) <= scale, QByteArray::number(columnWidth)); // at 96 dpi
        RunningProgram::paste(textOf(distinctRows()));
        program.click(program.cell(4, 1));
        COMPARE_SOON(shownBy(program), 4);
        QVERIFY(program.edit("0.002"));
        RunningProgram::press({"Down"});
        program.click(program.cell(4, 1));
        COMPARE_SOON(shownBy(program), 0);

        // Half a degree per unscaled pixel.
        const QPoint start = program.geometryOf("view").center();
        program.drag(start, start + (QPointF(120, 0) * scale).toPoint(), {1});
        VERIFY_SOON(shows(program.view(), cone(0.002F), {0.0F, 60.0F, 0.0F}));

        QCOMPARE(program.close(), 0);
        QVERIFY(program.start(environment));
        // Qt stores the position in unscaled pixels.
        VERIFY_SOON((program.geometry().topLeft() - geometry.topLeft()).manhattanLength() <= 2);
        QCOMPARE(program.geometry().size(), geometry.size());
        QCOMPARE(program.close(), 0);
    }

    void numbersAreEqualInEveryLocale_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<bool>("rightToLeft");
        QTest::newRow("German") << "de_DE.UTF-8" << false;
        QTest::newRow("Arabic, right to left") << "ar_EG.UTF-8" << true;
    }

    void numbersAreEqualInEveryLocale()
    {
        QFETCH(QString, language);
        QFETCH(bool, rightToLeft);
        RunningProgram program;
        QVERIFY(program.start({{"LC_ALL", language}}, rightToLeft ? QStringList("-reverse") : QStringList()));
        QCOMPARE(RunningProgram::copy(), presetText());
        Rows rows = distinctRows();
        RunningProgram::paste(textOf(rows));
        QCOMPARE(program.cell(0, 1).x() < program.cell(0, 0).x(), rightToLeft);

        // The editor accepts a full stop and no comma in every locale.
        program.click(program.cell(4, 1));
        COMPARE_SOON(shownBy(program), 4);
        QVERIFY(program.edit("2.5"));
        rows[4][1] = 2.5F;
        RunningProgram::press({"Down"});
        QVERIFY(program.edit("3,5"));
        QCOMPARE(RunningProgram::copy(), presetsBelow(rows));
        QCOMPARE(program.close(), 0);

        QVERIFY(program.start());
        QCOMPARE(RunningProgram::copy(), presetsBelow(rows));
        QCOMPARE(program.close(), 0);
    }
};

PENDRIX_END_TO_END_MAIN(EnvironmentTest)
#include "EnvironmentTest.moc"
