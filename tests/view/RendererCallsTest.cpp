// The view's OpenGL calls, argument for argument.

#include "view/Renderer.h"

#include "tests/support/ApplicationTest.h"
#include "tests/support/FakeOpenGL.h"

#include <qopengl.h>

#include <cmath>

namespace {

using Calls = QVector<OpenGLCall>;

/// A view whose scene is a call that can be told from the view's own.
class Probe : public Renderer
{
public:
    Probe() : Renderer(nullptr) {}

    void renderScene() override { glBegin(GL_POINTS); }
    void initScene() override { glEnd(); }

    using Renderer::applyView;
    using Renderer::distance;
    using Renderer::initializeGL;
    using Renderer::paintGL;
    using Renderer::resizeGL;
    using Renderer::spinAngle;
};

const OpenGLCall sceneSetUp = {"glEnd", {}};
const OpenGLCall sceneDrawn = {"glBegin", {GL_POINTS}};

Calls frustum(int w, int h)
{
    const auto aspect = double(static_cast<float>(w) / static_cast<float>(h));
    const double t = 0.4142135623730951;
    return {
        {"glViewport", {0.0, 0.0, double(w), double(h)}},
        {"glMatrixMode", {GL_PROJECTION}},
        {"glLoadIdentity", {}},
        {"glFrustum", {-aspect * t, aspect * t, -t, t, 1.0, 1000.0}},
        {"glMatrixMode", {GL_MODELVIEW}},
    };
}

Calls camera(double distance, double x, double y, double z, double spin)
{
    return {
        {"glClearColor", {0.0, 0.0, 0.0, 1.0}}, {"glLoadIdentity", {}},
        {"glTranslatef", {0.0, 0.0, distance}}, {"glRotatef", {x, 1.0, 0.0, 0.0}},
        {"glRotatef", {y, 0.0, 1.0, 0.0}},      {"glRotatef", {z, 0.0, 0.0, 1.0}},
        {"glRotatef", {spin, 1.0, 1.0, 1.0}},   sceneDrawn,
    };
}

} // namespace

class RendererCallsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { FakeOpenGL::clear(); }

    void constructionCallsNothing()
    {
        const Probe view;
        QCOMPARE(FakeOpenGL::calls(), Calls());
    }

    void initialise()
    {
        Probe view;
        view.initializeGL();
        const Calls expected = {
            {"glClearColor", {0.0, 0.0, 0.0, 1.0}},
            {"glEnable", {GL_DEPTH_TEST}},
            {"glDepthFunc", {GL_LEQUAL}},
            {"glHint", {GL_PERSPECTIVE_CORRECTION_HINT, GL_DONT_CARE}},
            sceneSetUp,
        };
        QCOMPARE(FakeOpenGL::calls(), expected);
    }

    void resize_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::newRow("square") << 100 << 100;
        QTest::newRow("wide") << 641 << 480;
        QTest::newRow("tall") << 3 << 1001;
        QTest::newRow("one pixel") << 1 << 1;
        QTest::newRow("no height") << 10 << 0;
        QTest::newRow("no width") << 0 << 10;
        QTest::newRow("nothing") << 0 << 0;
        QTest::newRow("beyond a float's whole numbers") << 16777217 << 3;
    }

    void resize()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        Probe view;
        view.resizeGL(w, h);
        QCOMPARE(FakeOpenGL::calls(), frustum(w, h));
    }

    void paintAtRest()
    {
        Probe view;
        view.paintGL();
        QCOMPARE(FakeOpenGL::calls(), camera(-6.0, 180.0, 0.0, 0.0, 0.0));
    }

    void paintTurned()
    {
        Probe view;
        view.setXRotation(33);
        view.setYRotation(5760);
        view.setZRotation(-1);
        view.distance = -2.5F;
        view.spinAngle = 12.25F;
        view.paintGL();
        QCOMPARE(FakeOpenGL::calls(), camera(-2.5, 180.0 - 2.0625, 360.0, 359.9375, 12.25));
    }

    void paintAtEveryAngle()
    {
        Probe view;
        for (int angle = 0; angle <= 2880; angle += 7) {
            view.setXRotation(angle);
            view.setYRotation(5760 - angle);
            view.setZRotation(2 * angle);
            FakeOpenGL::clear();
            view.paintGL();
            // Sixteenths of a degree up to 360 are exact in float and in double alike.
            QCOMPARE(FakeOpenGL::calls(),
                     camera(-6.0, 180.0 - angle / 16.0, (5760 - angle) / 16.0, 2 * angle / 16.0, 0.0));
        }
    }

    void paintWithoutCamera()
    {
        Probe view;
        view.applyView = false;
        view.paintGL();
        QCOMPARE(FakeOpenGL::calls(), Calls{sceneDrawn});
    }

    void inputCallsNothing()
    {
        Probe view;
        view.setXRotation(100);
        QTest::mouseClick(&view, Qt::LeftButton);
        QTest::mouseDClick(&view, Qt::LeftButton);
        QTest::mouseMove(&view, {5, 5});
        view.setFPS(10.0F);
        QCOMPARE(FakeOpenGL::calls(), Calls());
    }

    void perspective()
    {
        Probe view;
        view.perspectiveGL(45.0, 1.5, 1.0, 1000.0);
        view.perspectiveGL(90.0, 2.0, 0.5, 10.0);
        const double pi = std::acos(-1.0);
        const double h1 = std::tan(45.0 / 360.0 * pi) * 1.0;
        const double h2 = std::tan(90.0 / 360.0 * pi) * 0.5;
        const Calls expected = {
            {"glFrustum", {-h1 * 1.5, h1 * 1.5, -h1, h1, 1.0, 1000.0}},
            {"glFrustum", {-h2 * 2.0, h2 * 2.0, -h2, h2, 0.5, 10.0}},
        };
        QCOMPARE(FakeOpenGL::calls(), expected);
    }
};

PENDRIX_APPLICATION_TEST_MAIN(RendererCallsTest)
#include "RendererCallsTest.moc"
