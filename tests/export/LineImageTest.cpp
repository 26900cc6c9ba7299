// Rendering of lines to an image.

#include "export/LineImage.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

namespace {

constexpr QRgb red = 0xFFFF0000U;
constexpr QRgb green = 0xFF00FF00U;
constexpr QRgb blue = 0xFF0000FFU;
constexpr QRgb black = 0xFF000000U;

struct Vertex
{
    double x;
    double y;
    double nearness;
    QRgb color;
};

/// Returns the image of the line through `vertices`. The first vertex has the colour of the second.
QImage imageOfLine(const QVector<Vertex> &vertices, int width, int height, double lineWidth, const QColor &background)
{
    Drawing drawing;
    for (const Vertex &v : vertices) {
        drawing.points.append({v.x, v.y, v.nearness});
        if (drawing.points.size() > 1)
            drawing.colors.append(v.color);
    }
    drawing.colors.append(0);
    return imageOf(drawing, Page{double(width), double(height), lineWidth, background, {}});
}

/// Returns the part of the pixels of `image` that the line covers, in pixels.
double coveredArea(const QImage &image)
{
    double area = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            area += qRed(image.pixel(x, y)) / 255.0;
    }
    return area;
}

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
        // A steep edge has more steps of coverage than a row of samples.
        const QImage edge = imageOfLine({{-60.15, -60.0, 0.2, red}, {-40.15, 60.0, 0.2, red}}, 4, 20, 100.0, Qt::black);
        QSet<QRgb> steps;
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 4; ++x)
                steps.insert(edge.pixel(x, y));
        }
        QVERIFY2(steps.size() > 5, qPrintable(QString::number(steps.size())));
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
        const double area = coveredArea(image);
        const QPointF difference = end - QPointF(10.0, 10.0);
        const double length = std::sqrt(QPointF::dotProduct(difference, difference));
        const double expected = 3.0 * length + 1.5 * 1.5 * 3.14159; // with the round ends
        QVERIFY2(std::abs(area - expected) < 0.02 * expected, qPrintable(QString::number(area)));
    }

    void colorsAreInterpolatedBetweenVertices()
    {
        const QImage image = imageOfLine({{-50.0, 1.0, 0.2, red}, {0.0, 1.0, 0.2, red}, {100.0, 1.0, 0.2, blue}}, 100,
                                         2, 2.0, Qt::black);
        for (const int x : {0, 25, 50, 75, 99}) { // in steps of 4 pixels
            QVERIFY(std::abs(qRed(image.pixel(x, 1)) - 255 * (100 - x) / 100) <= 6);
            QVERIFY(std::abs(qBlue(image.pixel(x, 1)) - 255 * x / 100) <= 6);
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

    void thinLineIsContinuous()
    {
        // A line of a quarter of a pixel, the thinnest width, at many angles: every pixel row has a covered sample.
        for (int x = -80; x <= 80; x += 5) {
            const QImage image =
                imageOfLine({{90.0, -5.0, 0.2, red}, {90.0 + x, 85.0, 0.2, red}}, 180, 80, minLineWidth, Qt::black);
            for (int y = 0; y < 80; ++y) {
                int brightest = 0;
                for (int i = 0; i < 180; ++i)
                    brightest = std::max(brightest, qRed(image.pixel(i, y)));
                QVERIFY2(brightest > 0, qPrintable(QString("%1: row %2").arg(x).arg(y)));
            }
            const double expected = minLineWidth * std::hypot(x * 80.0 / 90.0, 80.0);
            QVERIFY2(std::abs(coveredArea(image) - expected) < 0.15 * expected,
                     qPrintable(QString("%1: %2 instead of %3").arg(x).arg(coveredArea(image)).arg(expected)));
        }
    }

    void wideLineHidesWhatIsBehind()
    {
        // The image is divided into tiles. Seams or hidden lines would show in the flat areas.
        for (const double width : {60.0, 300.0, 2000.0}) {
            QVector<Vertex> vertices;
            for (int i = 0; i < 3000; ++i) // far
                vertices.append({350.0 + i % 7 * 10.0, 290.0 + i % 5 * 5.0, 0.1, i % 2 == 0 ? green : blue});
            vertices.append({-5000.0, -5000.0, 0.1, green});
            vertices.append({-5000.0, 300.0, 0.2, green});
            vertices.append({5000.0, 300.0, 0.2, red}); // near, over the middle
            const QImage image = imageOfLine(vertices, 700, 600, width, Qt::black);
            const int half = std::min(int(width) / 2, 299) - 1;
            for (int y = 300 - half; y < 300 + half; ++y) {
                for (int x = 0; x < 700; ++x)
                    QVERIFY2(qBlue(image.pixel(x, y)) == 0 && qRed(image.pixel(x, y)) + qGreen(image.pixel(x, y)) > 250,
                             qPrintable(QString("%1,%2").arg(x).arg(y)));
            }
        }
    }

    void smoothSegmentFollowsBezierCurve()
    {
        // A quarter of a circle about (10, 90) with the radius 80.
        constexpr double k = 80.0 * 0.5522847498;
        const Drawing drawing{{{10.0, 10.0, 0.2}, {90.0, 90.0, 0.2}}, {{10.0 + k, 10.0}, {90.0, 90.0 - k}}, {red, red}};
        const QImage image = imageOf(drawing, Page{100.0, 100.0, 2.0, Qt::black, {}});
        for (int degrees = 1; degrees < 90; ++degrees) {
            const double angle = qDegreesToRadians(double(degrees));
            const auto at = [&](double radius) {
                return image.pixel(int(10.0 + radius * std::sin(angle)), int(90.0 - radius * std::cos(angle)));
            };
            QVERIFY(qRed(at(80.0)) > 150);
            QCOMPARE(at(77.0), black);
            QCOMPARE(at(83.0), black);
        }
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
