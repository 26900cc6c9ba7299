// Rendering of lines to an image.

#include "export/LineImage.h"

#include <QtTest>

namespace {

constexpr QRgb red = 0xFFFF0000U;
constexpr QRgb green = 0xFF00FF00U;
constexpr QRgb blue = 0xFF0000FFU;
constexpr QRgb black = 0xFF000000U;

} // namespace

class LineImageTest : public QObject
{
    Q_OBJECT

private slots:
    void nearerSegmentHidesFartherOne_data()
    {
        QTest::addColumn<double>("nearnessOfFirst");
        QTest::addColumn<double>("nearnessOfSecond");
        QTest::addColumn<QRgb>("visible");
        QTest::newRow("first nearer") << 0.3 << 0.2 << red;
        QTest::newRow("second nearer") << 0.2 << 0.3 << green;
        QTest::newRow("equal: the later one") << 0.2 << 0.2 << green;
    }

    void nearerSegmentHidesFartherOne()
    {
        QFETCH(double, nearnessOfFirst);
        QFETCH(double, nearnessOfSecond);
        // A cross in the middle; the connection runs outside the image.
        const QImage image = imageOfLine({{10.0, -50.0, nearnessOfFirst, red},
                                          {10.0, 50.0, nearnessOfFirst, red},
                                          {-50.0, 50.0, nearnessOfSecond, green},
                                          {-50.0, 10.0, nearnessOfSecond, green},
                                          {50.0, 10.0, nearnessOfSecond, green}},
                                         20, 20, 4.0, Qt::black);
        QTEST(image.pixel(10, 10), "visible");
        QCOMPARE(image.pixel(10, 3), red);
        QCOMPARE(image.pixel(3, 10), green);
        QCOMPARE(image.pixel(3, 3), black);
    }

    void intersectingSegmentsHideEachOtherInPart()
    {
        // Two lines at the same position in the image. One approaches the eye, the other recedes.
        const QImage image = imageOfLine({{0.0, 5.0, 0.1, red},
                                          {100.0, 5.0, 0.3, red},
                                          {100.0, 90.0, 0.3, red},
                                          {100.0, 90.0, 0.1, green},
                                          {100.0, 5.0, 0.1, green},
                                          {0.0, 5.0, 0.3, green}},
                                         100, 10, 2.0, Qt::black);
        QCOMPARE(image.pixel(20, 5), green);
        QCOMPARE(image.pixel(80, 5), red);
    }

    void pixelShowsCoveredShareOfLine()
    {
        // Rows 1 and 2 are half covered.
        const QImage horizontal =
            imageOfLine({{-5.0, 2.0, 0.2, red}, {25.0, 2.0, 0.2, red}}, 20, 4, 1.0, QColor(0, 0, 200));
        for (int x = 0; x < 20; ++x) {
            QCOMPARE(horizontal.pixel(x, 0), qRgb(0, 0, 200));
            QCOMPARE(horizontal.pixel(x, 1), qRgb(128, 0, 100));
            QCOMPARE(horizontal.pixel(x, 2), qRgb(128, 0, 100));
        }
        const QImage vertical =
            imageOfLine({{2.0, -5.0, 0.2, red}, {2.0, 25.0, 0.2, red}}, 4, 20, 1.0, QColor(0, 0, 200));
        for (int y = 0; y < 20; ++y)
            QCOMPARE(vertical.pixel(1, y), qRgb(128, 0, 100));
        // A nearly vertical edge has many steps of coverage.
        const QImage edge =
            imageOfLine({{-60.15, -160.0, 0.2, red}, {-40.15, 160.0, 0.2, red}}, 1, 20, 100.0, Qt::black);
        QSet<QRgb> steps;
        for (int y = 0; y < 20; ++y)
            steps.insert(edge.pixel(0, y));
        QVERIFY(steps.size() > 10);
    }

    void areaIsLengthTimesWidth_data()
    {
        QTest::addColumn<QPointF>("end");
        QTest::newRow("flat") << QPointF(90.0, 20.0);
        QTest::newRow("diagonal") << QPointF(80.0, 80.0);
        QTest::newRow("steep") << QPointF(25.0, 85.0);
        QTest::newRow("backwards") << QPointF(5.0, 60.0);
        QTest::newRow("horizontal") << QPointF(60.0, 10.0);
    }

    void areaIsLengthTimesWidth()
    {
        QFETCH(QPointF, end);
        const QImage image =
            imageOfLine({{10.0, 10.0, 0.2, red}, {end.x(), end.y(), 0.2, red}}, 100, 100, 3.0, Qt::black);
        double area = 0.0;
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 100; ++x)
                area += qRed(image.pixel(x, y)) / 255.0;
        }
        const QPointF difference = end - QPointF(10.0, 10.0);
        const double length = std::sqrt(QPointF::dotProduct(difference, difference));
        const double expected = 3.0 * length + 1.5 * 1.5 * 3.14159; // with the round ends
        QVERIFY2(std::abs(area - expected) < 0.02 * expected, qPrintable(QString::number(area)));
    }

    void colorsAreInterpolatedBetweenVertices()
    {
        const QImage image = imageOfLine({{0.0, 1.0, 0.2, red}, {100.0, 1.0, 0.2, blue}}, 100, 2, 2.0, Qt::black);
        QCOMPARE(image.pixel(0, 1), qRgb(254, 0, 0));
        for (const int x : {25, 50, 75}) {
            QVERIFY(std::abs(qRed(image.pixel(x, 1)) - 255 * (100 - x) / 100) <= 3);
            QVERIFY(std::abs(qBlue(image.pixel(x, 1)) - 255 * x / 100) <= 3);
        }
    }

    void transparentBackgroundKeepsLineColor()
    {
        const QImage image = imageOfLine({{-5.0, 2.0, 0.2, red}, {25.0, 2.0, 0.2, red}}, 20, 5, 1.0, QColor());
        QVERIFY(image.hasAlphaChannel());
        QCOMPARE(image.pixel(5, 1), qRgba(255, 0, 0, 128));
        QCOMPARE(image.pixel(5, 4), qRgba(0, 0, 0, 0));
    }

    void coincidentVerticesDrawDot()
    {
        const QImage image = imageOfLine({{5.0, 5.0, 0.2, red}, {5.0, 5.0, 0.2, red}}, 10, 10, 4.0, Qt::black);
        QCOMPARE(image.pixel(5, 5), red);
        QCOMPARE(image.pixel(5, 8), black);
    }

    void drawsNothingOutsideImage()
    {
        for (const double far : {-1e9, 1e9}) {
            const QImage image = imageOfLine({{far, far, 0.2, red}, {far, 0.0, 0.2, red}}, 3, 20, 5.0, Qt::black);
            QCOMPARE(image.pixel(1, 19), black);
        }
    }
};

QTEST_APPLESS_MAIN(LineImageTest)
#include "LineImageTest.moc"
