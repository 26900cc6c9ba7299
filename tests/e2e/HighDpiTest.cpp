// Screens of higher density.

#include "tests/e2e/Rows.h"

class HighDpiTest : public QObject
{
    Q_OBJECT

private slots:
    void scales_data()
    {
        QTest::addColumn<QString>("factor");
        for (const char *factor : {"1", "1.5", "2", "3"})
            QTest::newRow(factor) << QString(factor);
    }

    void scales()
    {
        QFETCH(QString, factor);
        const double scale = factor.toDouble();
        const RunningProgram::Environment environment = {{"QT_SCALE_FACTOR", factor}};
        RunningProgram program;
        QVERIFY(program.start(environment));
        const QRect place = program.geometry();
        QVERIFY(std::abs(place.width() - 701 * scale) < scale);
        QVERIFY(std::abs(place.height() - 605 * scale) < scale);

        RunningProgram::paste(textOf(distinctRows()));
        QVERIFY(program.findCells(scale));
        QVERIFY(std::abs(program.cellStep().x() - 104 * scale) <= 2 * scale);
        program.click(program.cell(4, 1));
        COMPARE_SOON(shownBy(program), 4);
        QVERIFY(enter("0.002", [&program] { return program.picture(); }));
        RunningProgram::press({"Down"});
        program.click(program.cell(4, 1));
        COMPARE_SOON(shownBy(program), 0);

        // Half a degree for a pixel as the user sees it.
        const QPoint start = viewIn(program.picture()).center();
        program.drag(start, start + (QPointF(120, 0) * scale).toPoint(), {1});
        VERIFY_SOON(shows(program.picture(), cone(0.002F), {0.0, 60.0, 0.0}));

        QCOMPARE(program.close(), 0);
        QVERIFY(program.start(environment));
        // The toolkit keeps the place in the user's pixels, which may lie between two of the screen's.
        VERIFY_SOON((program.geometry().topLeft() - place.topLeft()).manhattanLength() <= 2);
        QCOMPARE(program.geometry().size(), place.size());
        QCOMPARE(program.close(), 0);
    }
};

PENDRIX_END_TO_END_MAIN(HighDpiTest)
#include "HighDpiTest.moc"
