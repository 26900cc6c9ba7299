// Compares exported images with the view's pictures of the same curve.

#include "engine/Pendrix3D.h"
#include "export/LineImage.h"
#include "export/Projection.h"
#include "tests/export/ImageComparison.h"
#include "tests/support/SampleSize.h"
#include "view/PendrixWidget.h"

#include <QApplication>
#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace {

constexpr int pictureWidth = 600;
constexpr int pictureHeight = 480;

/// The curve's view without the animation.
class StoppedView : public PendrixWidget
{
public:
    StoppedView() : PendrixWidget(nullptr) { setFixedSize(pictureWidth, pictureHeight); }
    void renderScene() override { pdx3.draw(); }

    QImage picture(const Turn &turn)
    {
        setXRotation(turn.x);
        setYRotation(turn.y);
        setZRotation(turn.z);
        makeCurrent();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT); // grabFramebuffer relies on an earlier paint for that
        return grabFramebuffer().convertToFormat(QImage::Format_RGB32);
    }
};

Page pageOf(const Turn &turn)
{
    return {pictureWidth, pictureHeight, 1.0, Qt::black, turn};
}

/// Returns the image of `curve` in the projection `projection`.
QImage drawn(const Curve &curve, const Projection &projection)
{
    Drawing drawing{{}, {}, curve.colors};
    for (const CurvePoint &p : curve.points)
        drawing.points.append(projection(double(p.x), double(p.y), double(p.z)));
    return imageOf(drawing, pageOf({}));
}

} // namespace

class ScreenshotTest : public QObject
{
    Q_OBJECT

private slots:
    void exportedImagesMatchView()
    {
        const QVector<Turn> turns = {
            {0, 0, 0}, {30 * 16, 25 * 16, 0}, {90 * 16, 0, 45 * 16}, {5001, 1234, 777}, {200 * 16, 300 * 16, 100 * 16}};
        using Mistake = std::function<void(Projection &, const Turn &)>;
        const QVector<Mistake> mistakes = {
            [](Projection &projection, const Turn &turn) { // rotation order
                projection.rotation = rotationAboutZ(turn.z / 16.0) * rotationAboutY(turn.y / 16.0) *
                                      rotationAboutX(180.0 - turn.x / 16.0);
            },
            [](Projection &projection, const Turn & /*turn*/) { // flipped y axis
                for (int i = 0; i < 3; ++i)
                    projection.rotation(1, i) *= -1.0;
            },
            [](Projection &projection, const Turn & /*turn*/) { // field of view
                projection.scale = pictureHeight / 2.0 / std::tan(qDegreesToRadians(45.0 * 1.05 / 2.0));
            },
        };

        StoppedView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QVector<int> found(mistakes.size(), 0);
        int pictures = 0;
        double lowestCorrelation = 1.0;
        double greatestPart = 0.0;
        for (int preset = 0; preset < 12; preset += sampleSize(3, 1)) {
            for (int angle = 0; angle < sampleSize(1, 5); ++angle) {
                const Turn turn = turns.at((preset + angle) % 5);
                QVector<float> row = pdx3.presets.at(preset);
                advance(row, preset * 40);
                const Curve curve = curveOf(row);
                const QImage screenshot = view.picture(turn);
                const ImageComparison result = compareImages(screenshot, drawn(curve, Projection(pageOf(turn))));
                QVERIFY2(result.isAlike(),
                         qPrintable(QString("preset %1, turn %2,%3,%4: correlation %5, %6 of the pixels differ")
                                        .arg(preset + 1)
                                        .arg(turn.x)
                                        .arg(turn.y)
                                        .arg(turn.z)
                                        .arg(result.correlation)
                                        .arg(result.differingPart)));
                ++pictures;
                lowestCorrelation = std::min(lowestCorrelation, result.correlation);
                greatestPart = std::max(greatestPart, result.differingPart);
                for (int i = 0; i < mistakes.size(); ++i) {
                    Projection projection(pageOf(turn));
                    mistakes.at(i)(projection, turn);
                    if (!compareImages(screenshot, drawn(curve, projection)).isAlike())
                        ++found[i];
                }
            }
        }
        qInfo("%d pictures: correlation at least %.3f, at most %.2f %% of the pixels differ", pictures,
              lowestCorrelation, 100.0 * greatestPart);
        qInfo("a wrong rotation order fails in %d, a flipped axis in %d, a wrong field of view in %d", found.at(0),
              found.at(1), found.at(2));
        for (const int count : std::as_const(found))
            QVERIFY(count > 0);
    }
};

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    ScreenshotTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ScreenshotTest.moc"
