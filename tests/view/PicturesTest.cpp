// The drawing helpers and the view of the curve with the real OpenGL library: checks that the calls, which other tests
// compare exactly, produce the expected pictures.

#include "view/PendrixWidget.h"

#include "engine/Pendrix3D.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/OffscreenOpenGL.h"

#include <QTimer>
#include <qopengl.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>

namespace {

/// A view that keeps its last frame.
class Probe : public PendrixWidget
{
public:
    Probe() : PendrixWidget(nullptr)
    {
        const QList<QTimer *> timers = findChildren<QTimer *>();
        for (QTimer *timer : timers)
            timer->stop();
    }

    void paintGL() override
    {
        ++paints;
        PendrixWidget::paintGL();
        frame = readPixels(size() * devicePixelRatio());
    }

    int paints = 0;
    QImage frame;
};

/// Returns the bounding rectangle of the pixels that are not black.
QRect litArea(const QImage &picture)
{
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if ((picture.pixel(x, y) & 0xFFFFFFU) != 0)
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

} // namespace

using Draw = std::function<void(OpenGL &)>;
Q_DECLARE_METATYPE(Draw)

class PicturesTest : public QObject
{
    Q_OBJECT

    /// Shows `view`, whose timers are stopped, and waits for the resulting paints.
    static void show(Probe &view, QSize size)
    {
        view.resize(size);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTRY_VERIFY(view.paints > 0);
        QTest::qWait(50);
    }

    /// Paints the curve of `row` once in `view`.
    static void paint(Probe &view, const QVector<float> &row)
    {
        pdx3.set(row);
        const int before = view.paints;
        view.update();
        QTRY_COMPARE(view.paints, before + 1);
    }

private slots:
    void helperDrawsWithoutErrors_data()
    {
        QTest::addColumn<Draw>("draw");
        QTest::newRow("tetrahedron") << Draw([](OpenGL &gl) { gl.tetrahedron(GL_POLYGON, nullptr); });
        QTest::newRow("octahedron") << Draw([](OpenGL &gl) { gl.octahedron(GL_LINE_LOOP, nullptr); });
        QTest::newRow("cube") << Draw([](OpenGL &gl) { gl.cube(GL_POLYGON, nullptr); });
        QTest::newRow("drawScene") << Draw([](OpenGL &gl) { gl.drawScene(); });
        QTest::newRow("cubeTextured") << Draw([](OpenGL &gl) { gl.cubeTextured(); });
        QTest::newRow("dodecahedron") << Draw([](OpenGL &gl) { gl.dodecahedron(GL_POLYGON, nullptr); });
        QTest::newRow("dodecahedronSolid") << Draw([](OpenGL &gl) { gl.dodecahedronSolid(); });
        QTest::newRow("icosahedron") << Draw([](OpenGL &gl) { gl.icosahedron(GL_TRIANGLES, nullptr); });
        QTest::newRow("sphere") << Draw([](OpenGL &gl) { gl.sphere(1.0F, 8, nullptr); });
        QTest::newRow("sphereLine") << Draw([](OpenGL &gl) { gl.sphereLine(1.0F, 8); });
        QTest::newRow("sphereTextured") << Draw([](OpenGL &gl) { gl.sphereTextured(1.0F, 8); });
        QTest::newRow("lit sphere") << Draw([](OpenGL &gl) {
            gl.setup();
            gl.sceneInit(Qt::black);
            gl.sphere(1.0F, 8, nullptr);
        });
        QTest::newRow("chrysanthemum") << Draw([](OpenGL &gl) { gl.chrysanthemum(); });
        QTest::newRow("circle") << Draw([](OpenGL &gl) { gl.circle(nullptr, 90, 0.0F); });
        QTest::newRow("ellipse") << Draw([](OpenGL &gl) { gl.ellipse(0.0F, 0.0F, 1.0F, 0.5F, 90); });
        QTest::newRow("panel") << Draw([](OpenGL &gl) { gl.panel(1.0F, 1.0F); });
        QTest::newRow("panelFace") << Draw([](OpenGL &gl) { gl.panelFace(1.0F, 1.0F); });
    }

    void helperDrawsWithoutErrors()
    {
        QFETCH(Draw, draw);
        const OffscreenOpenGL offscreen(100);
        QVERIFY(offscreen.isValid());
        glOrtho(-2.0, 2.0, -2.0, 2.0, -4.0, 4.0);
        OpenGL gl;
        draw(gl);
        QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
        QVERIFY(!litArea(readPixels({100, 100})).isEmpty());
    }

    void curveFillsHalfOfHeightAtEveryPixelRatio()
    {
        // The curve has an amplitude of 1 unit in x and y. At a distance of 5 units, a field of view of 45 degrees is
        // 2 tan(22.5 degrees) 5 units high.
        Probe view;
        show(view, {420, 360});
        paint(view, {1.0F, 1.0F, 0.0F, 0.25F, 0.0F, 5.0F});
        const int ratio = qRound(view.devicePixelRatioF());
        QCOMPARE(ratio, qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR")));
        QCOMPARE(view.frame.size(), QSize(420, 360) * ratio);
        const QRect area = litArea(view.frame);
        const double span = 360.0 * ratio / (5.0 * std::tan(std::acos(-1.0) / 8.0));
        QVERIFY2(std::abs(area.height() - span) < 0.02 * span, QByteArray::number(area.height()));
        QVERIFY2(std::abs(area.width() - span) < 0.02 * span, QByteArray::number(area.width()));
        QVERIFY((area.center() - QPoint(210, 180) * ratio).manhattanLength() <= 4 * ratio);
    }

    void decayingYDrawsBlueLineDownwards()
    {
        // The frequencies are 0, and y decays from 1 to 0: a line from the centre downwards.
        Probe view;
        show(view, {300, 300});
        paint(view, {0.0F, 0.0F, 0.0F, 0.25F, 0.0F, 5.0F});
        const int ratio = qRound(view.devicePixelRatioF());
        const QRect area = litArea(view.frame);
        QVERIFY(area.top() >= 148 * ratio && area.bottom() > 200 * ratio);
        QCOMPARE(view.frame.pixelColor(area.center()), QColor(0, 0, 255));
    }

    void framesLeaveNoTrail()
    {
        Probe view;
        show(view, {300, 200});
        paint(view, pdx3.presets.at(0));
        const QImage first = view.frame;
        view.setXRotation(700);
        paint(view, pdx3.presets.at(1));
        QVERIFY(view.frame != first);
        view.setXRotation(0);
        paint(view, pdx3.presets.at(0));
        QCOMPARE(view.frame, first);
    }

    void nonFiniteCurveDrawsNothing()
    {
        Probe view;
        show(view, {100, 100});
        for (const float value : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
            paint(view, QVector<float>(5, value) << 2.0F);
            QVERIFY(litArea(view.frame).isEmpty());
        }
        paint(view, pdx3.presets.at(0));
        QVERIFY(!litArea(view.frame).isEmpty());
    }

    void paintsAtSmallestSizes()
    {
        for (const QSize size : {QSize(1, 1), QSize(1, 90), QSize(90, 1)}) {
            QWidget window;
            window.resize(100, 100);
            auto *view = new Probe;
            view->setParent(&window);
            view->resize(size);
            window.show();
            QTRY_VERIFY(view->paints > 0);
        }
    }
};

PENDRIX_APPLICATION_TEST_MAIN(PicturesTest)
#include "PicturesTest.moc"
