// The curve's view in pixels: a real window with software OpenGL, its frames read back.

#include "view/PendrixWidget.h"

#include "engine/Pendrix3D.h"
#include "tests/support/ApplicationTest.h"

#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <qopengl.h>

#include <array>
#include <cmath>
#include <limits>

namespace {

/// What a frame was drawn from.
struct Scene
{
    QVector<CurvePoint> points;
    QSize size;
    std::array<int, 3> angles = {};
};

/// The view, which keeps its last frame and what it was drawn from.
class Probe : public PendrixWidget
{
public:
    Probe() : PendrixWidget(nullptr) {}

    void paintGL() override
    {
        ++paints;
        scene = {pdx3.points, size(), {xRot, yRot, zRot}};
        PendrixWidget::paintGL();

        const QSize pixels = size() * devicePixelRatio();
        frame = QImage(pixels, QImage::Format_RGB32);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glReadPixels(0, 0, pixels.width(), pixels.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, frame.bits());
        frame = frame.mirrored(); // OpenGL's rows go up
    }

    void stop()
    {
        const QList<QTimer *> timers = findChildren<QTimer *>();
        for (QTimer *timer : timers)
            timer->stop();
        QTest::qWait(200);
    }

    int paints = 0;
    Scene scene;
    QImage frame;
};

/// Where the camera puts the point, in pixels from the top left of a picture of `pixels`.
QPointF onScreen(const CurvePoint &point, const Scene &scene, const QSize &pixels)
{
    const auto radians = [](double units) { return units / 16.0 * std::acos(-1.0) / 180.0; };
    const auto turned = [](double &a, double &b, double angle) {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double first = a * c - b * s;
        b = a * s + b * c;
        a = first;
    };
    auto x = double(point.x);
    auto y = double(point.y);
    auto z = double(point.z);
    turned(x, y, radians(scene.angles[2]));
    turned(z, x, radians(scene.angles[1]));
    turned(y, z, radians(2880 - scene.angles[0]));
    z -= 5.0;

    // 45 degrees of view from the top to the bottom.
    const double half = std::tan(std::acos(-1.0) / 8.0);
    const double aspect = double(scene.size.width()) / double(scene.size.height());
    return {(x / (-z * half * aspect) + 1.0) / 2.0 * pixels.width(), (1.0 - y / (-z * half)) / 2.0 * pixels.height()};
}

bool isLit(const QImage &picture, int x, int y)
{
    return picture.valid(x, y) && (picture.pixel(x, y) & 0xFFFFFFU) != 0;
}

/// Empty if `picture` shows the curve of `scene`: every point is lit and nothing beside the curve is. Else what is
/// wrong.
QByteArray fault(const QImage &picture, const Scene &scene)
{
    QVector<QPointF> path;
    for (const CurvePoint &point : scene.points)
        path.append(onScreen(point, scene, picture.size()));

    // Where the strip may light a pixel: up to a pixel away from it.
    QImage allowed(picture.size(), QImage::Format_RGB32);
    allowed.fill(Qt::black);
    for (int i = 0; i < path.size(); ++i) {
        const int x = static_cast<int>(std::floor(path.at(i).x()));
        const int y = static_cast<int>(std::floor(path.at(i).y()));
        bool lit = !picture.valid(x, y);
        for (int dx = -1; dx <= 1; ++dx) {
            for (int dy = -1; dy <= 1; ++dy)
                lit = lit || isLit(picture, x + dx, y + dy);
        }
        if (!lit)
            return "point " + QByteArray::number(i) + " is not drawn";

        const QPointF way = i ? path.at(i) - path.at(i - 1) : QPointF();
        const int steps = 1 + static_cast<int>(2.0 * std::hypot(way.x(), way.y()));
        for (int step = 0; step <= steps; ++step) {
            const QPointF at = path.at(i) - way * step / steps;
            for (int dx = -1; dx <= 1; ++dx) {
                for (int dy = -1; dy <= 1; ++dy) {
                    const QPoint pixel(static_cast<int>(std::floor(at.x())) + dx,
                                       static_cast<int>(std::floor(at.y())) + dy);
                    if (allowed.valid(pixel))
                        allowed.setPixel(pixel, 0xFFFFFF);
                }
            }
        }
    }
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isLit(picture, x, y) && !isLit(allowed, x, y))
                return "pixel " + QByteArray::number(x) + ", " + QByteArray::number(y) + " is lit beside the curve";
        }
    }
    return {};
}

QRect litArea(const QImage &picture)
{
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isLit(picture, x, y))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

} // namespace

#define VERIFY_PICTURE(picture, scene)                                                                                 \
    do {                                                                                                               \
        const QByteArray wrong = fault(picture, scene);                                                                \
        QVERIFY2(wrong.isEmpty(), wrong);                                                                              \
    } while (false)

class PendrixWidgetTest : public QObject
{
    Q_OBJECT

    /// Lets `view` draw one more frame. The one after a resize is drawn twice before it reaches the screen, and the
    /// toolkit clears only between two that do: it shows two steps of the animation.
    static void drawOnce(Probe &view)
    {
        const int paints = view.paints;
        view.update();
        QTRY_VERIFY(view.paints > paints);
    }

    /// Shows `view` and waits for `frames` frames and one more; then it stands still.
    static void run(Probe &view, QSize size, int frames)
    {
        view.resize(size);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTRY_VERIFY(view.paints >= frames);
        view.stop();
        drawOnce(view);
    }

private slots:
    void init() { pdx3.set(0); }

    void scaleFactorIsTheOneAskedFor()
    {
        const QByteArray factor = qgetenv("QT_SCALE_FACTOR");
        Probe view;
        run(view, {100, 100}, 1);
        QCOMPARE(view.devicePixelRatio(), factor.isEmpty() ? 1 : factor.toInt());
    }

    void showsThePresets()
    {
        for (int preset = 0; preset < 12; ++preset) {
            pdx3.set(preset);
            Probe view;
            run(view, {420, 360}, 2);
            VERIFY_PICTURE(view.frame, view.scene);
        }
    }

    void fillsItsWidget()
    {
        // A curve that swings 1 unit to every side: 5 units away under 45 degrees of view it spans nearly half of
        // the height, whatever the density of the screen.
        pdx3.set(1.0F, 1.0F, 0.0F, 0.25F, 0.0F, 5);
        Probe view;
        run(view, {420, 360}, 2);
        const int ratio = view.devicePixelRatio();
        QCOMPARE(view.frame.size(), QSize(420, 360) * ratio);
        const QRect area = litArea(view.frame);
        const double span = 360.0 * ratio / (5.0 * std::tan(std::acos(-1.0) / 8.0));
        QVERIFY2(std::abs(area.height() - span) < 0.02 * span + 2, QByteArray::number(area.height()));
        QVERIFY2(std::abs(area.width() - span) < 0.02 * span + 2, QByteArray::number(area.width()));
        QVERIFY(std::abs(area.center().x() - 210 * ratio) <= 2 * ratio);
        QVERIFY(std::abs(area.center().y() - 180 * ratio) <= 2 * ratio);
    }

    void yPointsDown()
    {
        // Nothing swings, y stands out by a quarter of a turn and only decays: a line from the centre to y = 1.
        Probe view;
        run(view, {300, 300}, 1);
        pdx3.set(0.0F, 0.0F, 0.0F, 0.25F, 0.0F, 5);
        drawOnce(view);
        const QRect area = litArea(view.frame);
        QVERIFY(area.top() >= 148 * view.devicePixelRatio());
        QVERIFY(area.bottom() > 200 * view.devicePixelRatio());
    }

    void colorsAreThePalettes()
    {
        pdx3.set(1.0F, 2.0F, 3.0F, 0.46F, 0.0F, 5); // every point in the palette's first colour
        Probe view;
        run(view, {300, 300}, 3);
        for (int y = 0; y < view.frame.height(); ++y) {
            for (int x = 0; x < view.frame.width(); ++x) {
                const QRgb pixel = view.frame.pixel(x, y) & 0xFFFFFFU;
                QVERIFY2(pixel == 0 || pixel == 0x0000FF, QByteArray::number(pixel, 16));
            }
        }
        QVERIFY(!litArea(view.frame).isEmpty());
    }

    void turnsWithTheMouseAndLeavesNoTrail()
    {
        Probe view;
        run(view, {420, 360}, 3);
        const QImage before = view.frame;
        QWindow *window = view.windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, {100, 100});
        for (int i = 1; i <= 20; ++i) {
            const int paints = view.paints;
            QTest::mouseMove(window, {100 + 3 * i, 100 + 5 * i});
            QTRY_VERIFY(view.paints > paints);
        }
        QTest::mouseRelease(window, Qt::LeftButton, {}, {160, 200});
        QCOMPARE(view.scene.angles, (std::array<int, 3>{800, 480, 0}));
        VERIFY_PICTURE(view.frame, view.scene);

        QTest::mousePress(window, Qt::RightButton, {}, {100, 100});
        for (int i = 1; i <= 10; ++i) {
            const int paints = view.paints;
            QTest::mouseMove(window, {100 + 9 * i, 100});
            QTRY_VERIFY(view.paints > paints);
        }
        QTest::mouseRelease(window, Qt::RightButton, {}, {190, 100});
        QCOMPARE(view.scene.angles, (std::array<int, 3>{800, 480, 720}));
        VERIFY_PICTURE(view.frame, view.scene);
        QVERIFY(view.frame != before);

        // What stands on the screen is the last frame and nothing else.
        QTest::qWait(200);
        QImage shown =
            view.windowHandle()->screen()->grabWindow(view.winId()).toImage().convertToFormat(QImage::Format_RGB32);
        shown.setDevicePixelRatio(1.0);
        QCOMPARE(shown.size(), view.frame.size());
        QCOMPARE(shown, view.frame);
    }

    void everyPaintIsAStepOfTheAnimation()
    {
        Probe view;
        run(view, {300, 200}, 3);
        const auto stepsSince = [](float freq1) { return qRound((pdx3.freq1 - freq1) / 0.0004F); };
        float freq1 = pdx3.freq1;
        int paints = view.paints;
        for (int i = 1; i <= 5; ++i) {
            view.resize(300 + 10 * i, 200);
            QTRY_VERIFY(view.scene.size == view.size());
        }
        QTest::qWait(200);
        QVERIFY(view.paints >= paints + 5);
        QCOMPARE(stepsSince(freq1), view.paints - paints);
        drawOnce(view);
        VERIFY_PICTURE(view.frame, view.scene);

        freq1 = pdx3.freq1;
        paints = view.paints;
        view.setFPS(50.0F);
        QTRY_VERIFY(view.paints >= paints + 10);
        view.stop();
        QCOMPARE(stepsSince(freq1), view.paints - paints);
    }

    void smallestAndOddSizes()
    {
        for (const QSize size : {QSize(1, 1), QSize(1, 200), QSize(200, 1), QSize(37, 91)}) {
            QWidget window;
            window.resize(250, 250);
            auto *view = new Probe;
            view->setParent(&window);
            view->resize(size);
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            QTRY_VERIFY(view->paints >= 2);
            view->stop();
            drawOnce(*view);
            QCOMPARE(view->scene.size, size);
            if (size.width() > 1 && size.height() > 1) // less has no middle of a pixel to draw on
                VERIFY_PICTURE(view->frame, view->scene);
        }
    }

    void curvesThatAreNoNumbersAreDrawnAway()
    {
        const float inf = std::numeric_limits<float>::infinity();
        const float nan = std::numeric_limits<float>::quiet_NaN();
        for (const float value : {nan, inf, -inf}) {
            pdx3.set(value, value, value, value, value, 2);
            Probe view;
            run(view, {100, 100}, 3);
            QVERIFY(litArea(view.frame).isEmpty());
            pdx3.set(0); // and the view has taken no harm
            drawOnce(view);
            VERIFY_PICTURE(view.frame, view.scene);
        }
    }
};

PENDRIX_APPLICATION_TEST_MAIN(PendrixWidgetTest)
#include "PendrixWidgetTest.moc"
