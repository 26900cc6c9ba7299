// The margin around a curve.

#include "export/LineImage.h"
#include "tests/support/SampleSize.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

Q_DECLARE_METATYPE(Page)

namespace {

/// Returns the smallest rectangle around the pixels of `image` that differ from the background, black.
QRect drawnBox(const QImage &image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != 0xFF000000U)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

/// Returns `page` with the fit of `curve` to `margin`.
Page fitted(const Curve &curve, Page page, double margin)
{
    page.fit = fitOf(drawingOf(curve, page).bounds(), page, margin);
    return page;
}

} // namespace

class MarginTest : public QObject
{
    Q_OBJECT

private slots:
    void curveFillsPageLessMargin_data()
    {
        QTest::addColumn<int>("preset");
        QTest::addColumn<Page>("page");
        QTest::addColumn<double>("margin");
        const QVector<Turn> turns = {
            {0, 0, 0}, {30 * 16, 25 * 16, 0}, {90 * 16, 0, 45 * 16}, {5001, 1234, 777}, {200 * 16, 300 * 16, 100 * 16}};
        const QVector<QSizeF> sizes = {{300, 300}, {420, 230}, {160, 500}};
        for (int i = 0; i < 180; i += sampleSize(17, 1)) {
            Page page{sizes.at(i % 3).width(), sizes.at(i % 3).height(), 1.0 + i % 7, Qt::black, turns.at(i / 3 % 5)};
            page.isSmooth = i % 2 == 1;
            QTest::addRow("preset %d, turn %d, %gx%g", i / 15 + 1, i / 3 % 5, page.width, page.height)
                << i / 15 << page << double(i % 4 * 13);
        }
    }

    void curveFillsPageLessMargin()
    {
        QFETCH(int, preset);
        QFETCH(Page, page);
        QFETCH(double, margin);
        Curve curve = curveOf(pdx3.presets.at(preset));
        curve.colors.fill(qRgb(255, 255, 255));
        const Page fit = fitted(curve, page, margin);
        const Drawing drawing = drawingOf(curve, fit);
        QVERIFY(!leavesPage(drawing, fit));

        // The drawing is centred, and as wide or as high as possible.
        const QRectF inner(margin, margin, page.width - 2.0 * margin, page.height - 2.0 * margin);
        const auto isCentred = [](const QRectF &bounds, const QRectF &around, double tolerance) {
            const double left = bounds.left() - around.left();
            const double right = around.right() - bounds.right();
            const double top = bounds.top() - around.top();
            const double bottom = around.bottom() - bounds.bottom();
            return std::abs(left - right) <= 2.0 * tolerance && std::abs(top - bottom) <= 2.0 * tolerance &&
                   std::min({left, right, top, bottom}) >= -tolerance && std::min(left, top) <= tolerance;
        };
        const double radius = page.lineWidth / 2.0;
        // The path's own bounds: for lengths in millimetres.
        QVERIFY(isCentred(drawing.bounds().adjusted(-radius, -radius, radius, radius), inner, 0.05));
        const QRect pixels = drawnBox(imageOf(drawing, fit));
        QVERIFY2(isCentred(pixels, inner, 1.0),
                 qPrintable(
                     QString("%1,%2 %3x%4").arg(pixels.x()).arg(pixels.y()).arg(pixels.width()).arg(pixels.height())));

        // Without distortion: all distances grow alike.
        const Drawing before = drawingOf(curve, page);
        for (int i = 0; i < drawing.points.size(); i += 501) {
            const QPointF moved = drawing.position(i) - drawing.position(0);
            const QPointF expected = (before.position(i) - before.position(0)) * fit.fit.scale;
            QVERIFY((moved - expected).manhattanLength() < 1e-9 * page.height);
        }
    }

    void pointIsOnlyCentred()
    {
        const Page page{300.0, 200.0, 4.0, Qt::black, {123, 456, 789}};
        const Curve zeros = curveOf({0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F});
        QCOMPARE(fitted(zeros, page, 10.0).fit.scale, 1.0);
        QCOMPARE(drawnBox(imageOf(drawingOf(zeros, page), fitted(zeros, page, 10.0))).center(), QPoint(149, 99));
        // A line along the viewing direction.
        const Curve line = curveOf({0.0F, 0.0F, 1.0F, 0.0F, 0.0F, 0.0F});
        for (const Turn &turn : {Turn{0, 0, 0}, Turn{180 * 16, 0, 77}}) {
            const Page alongView{300.0, 200.0, 4.0, Qt::black, turn};
            QCOMPARE(fitted(line, alongView, 10.0).fit.scale, 1.0);
        }
        // Seen from the side, it has a length and no width.
        const Page fromSide = fitted(line, Page{300.0, 200.0, 4.0, Qt::black, {0, 90 * 16, 0}}, 10.0);
        QVERIFY(std::abs(drawingOf(line, fromSide).bounds().width() - 276.0) < 1e-6);
    }
};

QTEST_APPLESS_MAIN(MarginTest)
#include "MarginTest.moc"
