// The base view: OpenGL calls, angles, signals, frame timers and the mouse.

#include "view/Renderer.h"

#include "tests/support/ApplicationTest.h"
#include "tests/support/FakeOpenGL.h"

#include <QMetaMethod>
#include <QMouseEvent>
#include <QTimer>
#include <QtMath>
#include <qopengl.h>

#include <cmath>
#include <limits>

namespace {

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

using Calls = QVector<OpenGLCall>;
using Angles = QVector<int>;

class Probe : public Renderer
{
public:
    explicit Probe(QWidget *parent = nullptr) : Renderer(parent) { resize(200, 150); }

    /// Two calls that the base view never makes.
    void renderScene() override
    {
        ++paints;
        glBegin(GL_POINTS);
    }
    void initScene() override { glEnd(); }

    using Renderer::applyView;
    using Renderer::distance;
    using Renderer::initializeGL;
    using Renderer::lastPos;
    using Renderer::paintGL;
    using Renderer::resizeGL;
    using Renderer::spare;
    using Renderer::spinAngle;

    Angles angles() const { return {xRot, yRot, zRot}; }

    QList<QTimer *> timers() const { return findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly); }

    void stopTimers() const
    {
        const QList<QTimer *> all = timers();
        for (QTimer *timer : all)
            timer->stop();
    }

    int paints = 0;
};

/// Shows `view` with its timers stopped, and waits until it is painted and no paint is scheduled.
#define SHOW_STOPPED(view)                                                                                             \
    do {                                                                                                               \
        (view).stopTimers();                                                                                           \
        (view).show();                                                                                                 \
        QVERIFY(QTest::qWaitForWindowExposed(&(view)));                                                                \
        QTRY_VERIFY((view).paints > 0);                                                                                \
        QTest::qWait(50);                                                                                              \
    } while (false)

/// Performs the scheduled paints at once.
void paintScheduled()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
}

void sendMouse(Renderer &view, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, at, view.mapToGlobal(at), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
}

/// Presses at `from` with `buttons` and moves to `to`.
void drag(Renderer &view, Qt::MouseButtons buttons, QPoint from, QPoint to)
{
    sendMouse(view, QEvent::MouseButtonPress, from, Qt::LeftButton, buttons);
    sendMouse(view, QEvent::MouseMove, to, Qt::NoButton, buttons);
}

/// Returns the calls of a paint.
Calls camera(double distance, double x, double y, double z, double spin)
{
    return {
        {"glClearColor", {0.0, 0.0, 0.0, 1.0}}, {"glLoadIdentity", {}},
        {"glTranslatef", {0.0, 0.0, distance}}, {"glRotatef", {x, 1.0, 0.0, 0.0}},
        {"glRotatef", {y, 0.0, 1.0, 0.0}},      {"glRotatef", {z, 0.0, 0.0, 1.0}},
        {"glRotatef", {spin, 1.0, 1.0, 1.0}},   {"glBegin", {GL_POINTS}},
    };
}

} // namespace

class RendererTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { FakeOpenGL::clear(); }

    void constructionSetsDefaults()
    {
        const Probe view;
        QCOMPARE(view.spinAngle, 0.0F);
        QCOMPARE(view.applyView, true);
        QCOMPARE(view.spare, 0.0F);
        QCOMPARE(view.distance, -6.0F);
        QCOMPARE(view.lastPos, QPoint(0, 0));
        QCOMPARE(view.angles(), Angles({0, 0, 0}));
        QVERIFY(!view.hasMouseTracking());
        QCOMPARE(view.updateBehavior(), QOpenGLWidget::NoPartialUpdate);
        COMPARE_CALLS({});
    }

    void metaObject()
    {
        const QMetaObject &meta = Renderer::staticMetaObject;
        QCOMPARE(QByteArray(meta.className()), QByteArray("Renderer"));
        QStringList methods;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            methods << QString("%1 %2 %3 %4")
                           .arg(method.methodType() == QMetaMethod::Signal ? "signal" : "slot",
                                method.access() == QMetaMethod::Public ? "public" : "private",
                                QString(method.methodSignature()), QString(method.parameterNames().join(',')));
        }
        const QStringList expected = {
            "signal public xRotationChanged(int) angle",
            "signal public yRotationChanged(int) angle",
            "signal public zRotationChanged(int) angle",
            "signal public clicked(QMouseEvent*) event",
            "signal public doubleClicked(QMouseEvent*) event",
            "slot private repaint() ",
            "slot public setXRotation(int) angle",
            "slot public setYRotation(int) angle",
            "slot public setZRotation(int) angle",
        };
        QCOMPARE(methods, expected);
    }

    void initializeGL()
    {
        Probe view;
        view.initializeGL();
        COMPARE_CALLS({
            {"glClearColor", {0.0, 0.0, 0.0, 1.0}},
            {"glEnable", {GL_DEPTH_TEST}},
            {"glDepthFunc", {GL_LEQUAL}},
            {"glHint", {GL_PERSPECTIVE_CORRECTION_HINT, GL_DONT_CARE}},
            {"glEnd", {}},
        });
    }

    void resizeGL_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::addColumn<double>("halfWidth"); // from an aspect in single precision
        QTest::newRow("square") << 100 << 100 << 0x1.a827999fcef33p-2;
        QTest::newRow("wide") << 641 << 480 << 0x1.1b362cd1ea6c1p-1;
        QTest::newRow("tall") << 3 << 1001 << 0x1.456ce59ae766cp-10;
        QTest::newRow("width beyond float precision") << 16777217 << 3 << 0x1.1ac511a2972abp+21;
        QTest::newRow("no width") << 0 << 10 << 0.0;
        QTest::newRow("no height") << 10 << 0 << std::numeric_limits<double>::infinity();
        QTest::newRow("nothing") << 0 << 0 << std::numeric_limits<double>::quiet_NaN();
    }

    void resizeGL()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        QFETCH(double, halfWidth);
        Probe view;
        view.resizeGL(w, h);
        const double t = 0.4142135623730951;
        COMPARE_CALLS({
            {"glViewport", {0.0, 0.0, double(w), double(h)}},
            {"glMatrixMode", {GL_PROJECTION}},
            {"glLoadIdentity", {}},
            {"glFrustum", {-halfWidth, halfWidth, -t, t, 1.0, 1000.0}},
            {"glMatrixMode", {GL_MODELVIEW}},
        });
    }

    void perspectiveGL_data()
    {
        QTest::addColumn<double>("fovY");
        QTest::addColumn<double>("halfAngle"); // fovY / 360 pi, two roundings
        QTest::newRow("45") << 45.0 << 0x1.921fb54442d18p-2;
        QTest::newRow("90") << 90.0 << 0x1.921fb54442d18p-1;
        QTest::newRow("13") << 13.0 << 0x1.d0ad2c7c63f7cp-4;
        QTest::newRow("33.3") << 33.3 << 0x1.2992580eac536p-2;
    }

    void perspectiveGL()
    {
        QFETCH(double, fovY);
        QFETCH(double, halfAngle);
        Probe view;
        view.perspectiveGL(fovY, 1.3, 0.7, 90.0);
        const double h = std::tan(halfAngle) * 0.7;
        COMPARE_CALLS({{"glFrustum", {-(h * 1.3), h * 1.3, -h, h, 0.7, 90.0}}});
    }

    void paintGLSetsCamera()
    {
        Probe view;
        view.paintGL();
        COMPARE_CALLS(camera(-6.0, 180.0, 0.0, 0.0, 0.0));

        view.setXRotation(33);
        view.setYRotation(5760);
        view.setZRotation(-1);
        view.distance = -2.5F;
        view.spinAngle = 12.25F;
        FakeOpenGL::clear();
        view.paintGL();
        COMPARE_CALLS(camera(-2.5, 177.9375, 360.0, 359.9375, 12.25));
    }

    void paintGLWithoutCameraOnlyRendersScene()
    {
        Probe view;
        view.applyView = false;
        view.paintGL();
        COMPARE_CALLS({{"glBegin", {GL_POINTS}}});
    }

    void inputCallsNoOpenGL()
    {
        Probe view;
        drag(view, Qt::LeftButton, {0, 0}, {5, 5});
        QTest::mouseDClick(&view, Qt::LeftButton);
        view.setFPS(10.0F);
        COMPARE_CALLS({});
    }

    void anglesAreNormalised_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("stored");
        QTest::newRow("1") << 1 << 1;
        QTest::newRow("-1") << -1 << 5759;
        QTest::newRow("5760") << 5760 << 5760;
        QTest::newRow("5761") << 5761 << 1;
        QTest::newRow("-5759") << -5759 << 1;
        QTest::newRow("-5760") << -5760 << 0;
        QTest::newRow("-5761") << -5761 << 5759;
        QTest::newRow("11520") << 11520 << 5760;
        QTest::newRow("11521") << 11521 << 1;
        // 2^31 = 372827 * 5760 + 128
        QTest::newRow("lowest") << lowest << 5760 - 128;
        QTest::newRow("highest") << highest << 127;
    }

    void anglesAreNormalised()
    {
        QFETCH(int, angle);
        QFETCH(int, stored);
        const QVector<void (Renderer::*)(int)> setters = {&Renderer::setXRotation, &Renderer::setYRotation,
                                                          &Renderer::setZRotation};
        for (int axis = 0; axis < 3; ++axis) {
            Probe view;
            QVector<Angles> emitted(3);
            connect(&view, &Renderer::xRotationChanged, this, [&](int value) { emitted[0] << value; });
            connect(&view, &Renderer::yRotationChanged, this, [&](int value) { emitted[1] << value; });
            connect(&view, &Renderer::zRotationChanged, this, [&](int value) { emitted[2] << value; });
            for (const int value : {2880, angle, angle, stored})
                (view.*setters.at(axis))(value);

            Angles expected(3, 0);
            expected[axis] = stored;
            QCOMPARE(view.angles(), expected);
            QVector<Angles> expectedSignals(3);
            expectedSignals[axis] = {2880, stored};
            QCOMPARE(emitted, expectedSignals);
        }
    }

    void fullTurnAndNoTurnAreDistinct()
    {
        Probe view;
        Angles emitted;
        connect(&view, &Renderer::xRotationChanged, this, [&](int value) { emitted << value; });
        for (const int angle : {0, -5760, 5760, 0})
            view.setXRotation(angle);
        QCOMPARE(emitted, Angles({5760, 0}));
    }

    void angleIsStoredThenEmittedThenPainted()
    {
        Probe view;
        SHOW_STOPPED(view);
        const int before = view.paints;
        Angles stored;
        connect(&view, &Renderer::yRotationChanged, this, [&] {
            stored = view.angles();
            paintScheduled();
            QCOMPARE(view.paints, before); // no paint is scheduled yet
        });
        view.setYRotation(10);
        QCOMPARE(stored, Angles({0, 10, 0}));
        QCOMPARE(view.paints, before);
        paintScheduled();
        QCOMPARE(view.paints, before + 1);
    }

    void scheduledPaintsAreMerged()
    {
        Probe view;
        SHOW_STOPPED(view);
        const int before = view.paints;
        for (int i = 1; i <= 10; ++i) {
            view.setXRotation(10 * i);
            QVERIFY(QMetaObject::invokeMethod(&view, "repaint"));
        }
        QCOMPARE(view.paints, before);
        paintScheduled();
        QCOMPARE(view.paints, before + 1);

        view.setXRotation(100); // the stored angle
        view.setXRotation(100 - 5760);
        paintScheduled();
        QCOMPARE(view.paints, before + 1);
    }

    void setFPSAddsTimer_data()
    {
        QTest::addColumn<float>("fps");
        QTest::addColumn<int>("interval"); // -1: stopped
        QTest::newRow("15") << 15.0F << 66;
        QTest::newRow("60") << 60.0F << 16;
        QTest::newRow("3000") << 3000.0F << 0;
        QTest::newRow("0.01") << 0.01F << 100000;
        QTest::newRow("3.0 in single precision") << 333.33334F << 2;
        QTest::newRow("one a day") << 1.1574074e-05F << 86400000;
        QTest::newRow("inf") << std::numeric_limits<float>::infinity() << 0;
        QTest::newRow("0") << 0.0F << -1;
        QTest::newRow("-0") << -0.0F << -1;
        QTest::newRow("interval of -66") << -15.0F << -1;
        QTest::newRow("interval of -1") << -1000.0F << -1;
        QTest::newRow("interval of -0.3") << -3000.0F << 0;
        QTest::newRow("interval beyond int") << 1e-9F << -1;
        QTest::newRow("nan") << std::numeric_limits<float>::quiet_NaN() << -1;
    }

    void setFPSAddsTimer()
    {
        QFETCH(float, fps);
        QFETCH(int, interval);
        Probe view;
        view.setFPS(fps);
        view._init();
        const QList<QTimer *> timers = view.timers();
        QCOMPARE(timers.size(), 3);
        QCOMPARE(timers.at(1)->isActive(), interval >= 0);
        if (interval >= 0)
            QCOMPARE(timers.at(1)->interval(), interval);
        for (const QTimer *timer : {timers.at(0), timers.at(2)}) {
            QVERIFY(timer->isActive());
            QCOMPARE(timer->interval(), 66);
            QVERIFY(!timer->isSingleShot());
            QCOMPARE(timer->timerType(), Qt::CoarseTimer);
        }
    }

    void timersPaint()
    {
        Probe view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTRY_VERIFY(view.paints >= 3);
        QCOMPARE(FakeOpenGL::calls().count({"glHint", {GL_PERSPECTIVE_CORRECTION_HINT, GL_DONT_CARE}}), 1);

        view.stopTimers();
        view.setFPS(3000.0F); // whenever the event loop is idle
        const int before = view.paints;
        QTRY_VERIFY(view.paints >= before + 5);
    }

    void dragRotatesByHalfDegreePerPixel_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<Angles>("expected");
        QTest::newRow("left") << int(Qt::LeftButton) << Angles{32, 80, 0};
        QTest::newRow("right") << int(Qt::RightButton) << Angles{32, 0, 80};
        QTest::newRow("left and right") << int(Qt::LeftButton | Qt::RightButton) << Angles{32, 80, 0};
        QTest::newRow("middle and right") << int(Qt::MiddleButton | Qt::RightButton) << Angles{32, 0, 80};
        QTest::newRow("middle") << int(Qt::MiddleButton) << Angles{0, 0, 0};
        QTest::newRow("none") << int(Qt::NoButton) << Angles{0, 0, 0};
    }

    void dragRotatesByHalfDegreePerPixel()
    {
        QFETCH(int, buttons);
        QFETCH(Angles, expected);
        Probe view;
        view.setMouseTracking(true);
        drag(view, Qt::MouseButtons(buttons), {50, 50}, {60, 54});
        QCOMPARE(view.angles(), expected);
        QCOMPARE(view.lastPos, QPoint(60, 54));
    }

    void dragSignalsXFirst()
    {
        Probe view;
        QStringList order;
        // The angle is stored before the signal, the position of the move after it.
        const auto note = [&](const char *axis, int stored, int angle) {
            QCOMPARE(stored, angle);
            QCOMPARE(view.lastPos, QPoint(0, 0));
            order << QString("%1 %2").arg(axis).arg(angle);
        };
        connect(&view, &Renderer::xRotationChanged, this, [&](int angle) { note("x", view.angles().at(0), angle); });
        connect(&view, &Renderer::yRotationChanged, this, [&](int angle) { note("y", view.angles().at(1), angle); });
        connect(&view, &Renderer::zRotationChanged, this, [&](int angle) { note("z", view.angles().at(2), angle); });
        drag(view, Qt::LeftButton, {0, 0}, {1, 2});
        drag(view, Qt::RightButton, {0, 0}, {1, 2});
        drag(view, Qt::LeftButton, {0, 0}, {1, 0});
        drag(view, Qt::RightButton, {0, 0}, {0, 0});
        drag(view, Qt::LeftButton, {0, 0}, {-2, -5});
        QCOMPARE(order, QStringList({"x 16", "y 8", "x 32", "z 8", "y 16", "x 5752", "y 0"}));
    }

    void dragAcrossIntRange()
    {
        Probe view;
        drag(view, Qt::LeftButton, {lowest + 1, highest}, {highest, lowest + 1}); // Qt's rounding excludes the lowest
        // 8 (2^32 - 2) = 5965232 * 5760 + 2032
        QCOMPARE(view.angles(), Angles({5760 - 2032, 2032, 0}));
    }

    void clicksAreEmittedAndAccepted()
    {
        Probe view;
        QVector<const QMouseEvent *> clicked;
        QVector<const QMouseEvent *> doubleClicked;
        connect(&view, &Renderer::clicked, this, [&](QMouseEvent *event) {
            clicked << event;
            QCOMPARE(view.lastPos, event->pos());
        });
        connect(&view, &Renderer::doubleClicked, this, [&](QMouseEvent *event) { doubleClicked << event; });

        QMouseEvent press(QEvent::MouseButtonPress, QPointF(7.6, 9.4), QPointF(), Qt::MiddleButton, Qt::MiddleButton,
                          {});
        QMouseEvent twice(QEvent::MouseButtonDblClick, QPointF(70, 90), QPointF(), Qt::LeftButton, Qt::LeftButton, {});
        for (QMouseEvent *event : {&press, &twice}) {
            QApplication::sendEvent(&view, event);
            QVERIFY(event->isAccepted()); // QWidget's handlers would ignore it
        }
        QCOMPARE(clicked, QVector<const QMouseEvent *>{&press});
        QCOMPARE(doubleClicked, QVector<const QMouseEvent *>{&twice});
        QCOMPARE(view.lastPos, QPoint(8, 9));
        QCOMPARE(view.angles(), Angles({0, 0, 0}));
    }
};

PENDRIX_APPLICATION_TEST_MAIN(RendererTest)
#include "RendererTest.moc"
