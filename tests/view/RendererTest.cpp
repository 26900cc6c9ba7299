// The view's angles, signals, frame timers and mouse, in a real window.

#include "view/Renderer.h"

#include "tests/support/ApplicationTest.h"

#include <QMetaMethod>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTimer>
#include <QWindow>

#include <limits>

namespace {

class Probe : public Renderer
{
public:
    explicit Probe(QWidget *parent = nullptr) : Renderer(parent) { resize(200, 150); }

    void renderScene() override { ++paints; }
    void initScene() override { ++setUps; }

    using Renderer::applyView;
    using Renderer::distance;
    using Renderer::lastPos;
    using Renderer::spare;
    using Renderer::spinAngle;
    using Renderer::xRot;
    using Renderer::yRot;
    using Renderer::zRot;

    QList<QTimer *> timers() const { return findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly); }

    void stopTimers() const
    {
        const QList<QTimer *> all = timers();
        for (QTimer *timer : all)
            timer->stop();
    }

    int paints = 0;
    int setUps = 0;
};

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

using Angles = QVector<int>;

Angles anglesOf(const Probe &view)
{
    return {view.xRot, view.yRot, view.zRot};
}

} // namespace

class RendererTest : public QObject
{
    Q_OBJECT

private slots:
    void fieldsAtFirst()
    {
        const Probe view;
        QCOMPARE(view.spinAngle, 0.0F);
        QCOMPARE(view.applyView, true);
        QCOMPARE(view.spare, 0.0F);
        QCOMPARE(view.distance, -6.0F);
        QCOMPARE(view.lastPos, QPoint(0, 0));
        QCOMPARE(anglesOf(view), Angles({0, 0, 0}));
        QVERIFY(!view.hasMouseTracking());
        QCOMPARE(view.updateBehavior(), QOpenGLWidget::NoPartialUpdate);
    }

    void metaObject()
    {
        const QMetaObject &meta = Renderer::staticMetaObject;
        QCOMPARE(QByteArray(meta.className()), QByteArray("Renderer"));
        QCOMPARE(meta.superClass(), &QOpenGLWidget::staticMetaObject);
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
        QCOMPARE(meta.propertyCount(), QOpenGLWidget::staticMetaObject.propertyCount());
    }

    void castsByClassName()
    {
        Probe view;
        QCOMPARE(view.qt_metacast("Renderer"), static_cast<void *>(&view));
        QCOMPARE(view.qt_metacast("OpenGL"), static_cast<void *>(&view));
        QCOMPARE(view.qt_metacast("QOpenGLWidget"), static_cast<void *>(static_cast<QOpenGLWidget *>(&view)));
        QVERIFY(!view.qt_metacast("PendrixWidget"));
        QVERIFY(!view.qt_metacast(nullptr));
    }

    void angles_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("stored");
        constexpr int lowest = std::numeric_limits<int>::min();
        constexpr int highest = std::numeric_limits<int>::max();
        QTest::newRow("1") << 1 << 1;
        QTest::newRow("-1") << -1 << 5759;
        QTest::newRow("5759") << 5759 << 5759;
        QTest::newRow("5760") << 5760 << 5760;
        QTest::newRow("5761") << 5761 << 1;
        QTest::newRow("-5759") << -5759 << 1;
        QTest::newRow("-5760") << -5760 << 0;
        QTest::newRow("-5761") << -5761 << 5759;
        QTest::newRow("11520") << 11520 << 5760;
        QTest::newRow("11521") << 11521 << 1;
        QTest::newRow("-11520") << -11520 << 0;
        // Whole turns away from the ends of the range: 2^31 = 372827 * 5760 + 128.
        QTest::newRow("lowest") << lowest << 5760 - 128;
        QTest::newRow("highest") << highest << 127;
    }

    void angles()
    {
        QFETCH(int, angle);
        QFETCH(int, stored);
        for (int axis = 0; axis < 3; ++axis) {
            Probe view;
            const auto set = QVector<void (Renderer::*)(int)>{&Renderer::setXRotation, &Renderer::setYRotation,
                                                              &Renderer::setZRotation}
                                 .at(axis);
            QSignalSpy spies[] = {{&view, &Renderer::xRotationChanged},
                                  {&view, &Renderer::yRotationChanged},
                                  {&view, &Renderer::zRotationChanged}};
            (view.*set)(2880);
            (view.*set)(angle);
            Angles expected(3, 0);
            expected[axis] = stored;
            QCOMPARE(anglesOf(view), expected);
            for (int other = 0; other < 3; ++other)
                QCOMPARE(spies[other].count(), other == axis ? 2 : 0);
            QCOMPARE(spies[axis].at(1).at(0).toInt(), stored);

            (view.*set)(angle);
            (view.*set)(stored);
            QCOMPARE(spies[axis].count(), 2);
        }
    }

    void fullTurnAndNoTurnAreKeptApart()
    {
        Probe view;
        QSignalSpy spy(&view, &Renderer::xRotationChanged);
        view.setXRotation(0);
        view.setXRotation(-5760);
        QCOMPARE(spy.count(), 0);
        view.setXRotation(5760);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(view.xRot, 5760);
        view.setXRotation(0);
        QCOMPARE(spy.count(), 2);
        QCOMPARE(view.xRot, 0);
    }

    void timers_data()
    {
        QTest::addColumn<float>("fps");
        QTest::addColumn<int>("interval"); // -1: stands still
        constexpr float inf = std::numeric_limits<float>::infinity();
        QTest::newRow("15") << 15.0F << 66;
        QTest::newRow("60") << 60.0F << 16;
        QTest::newRow("3000") << 3000.0F << 0;
        QTest::newRow("0.5") << 0.5F << 2000;
        QTest::newRow("inf") << inf << 0;
        QTest::newRow("0") << 0.0F << -1;
        QTest::newRow("-0") << -0.0F << -1;
        QTest::newRow("negative") << -15.0F << -1;
        QTest::newRow("negative, less than a millisecond") << -3000.0F << 0;
        QTest::newRow("a frame in ages") << 1e-9F << -1;
        QTest::newRow("subnormal") << 1e-45F << -1;
        QTest::newRow("nan") << std::numeric_limits<float>::quiet_NaN() << -1;
    }

    void timers()
    {
        QFETCH(float, fps);
        QFETCH(int, interval);
        Probe view;
        QCOMPARE(view.timers().size(), 1);
        const QTimer *first = view.timers().at(0);
        QCOMPARE(first->interval(), 66);
        QVERIFY(first->isActive());
        QVERIFY(!first->isSingleShot());
        QCOMPARE(first->timerType(), Qt::CoarseTimer);
        QCOMPARE(first->parent(), &view);

        view.setFPS(fps);
        QCOMPARE(view.timers().size(), 2);
        const QTimer *second = view.timers().at(1);
        QVERIFY(first->isActive());
        QCOMPARE(second->isActive(), interval >= 0);
        if (interval >= 0)
            QCOMPARE(second->interval(), interval);
        QCOMPARE(second->parent(), &view);

        view._init();
        QCOMPARE(view.timers().size(), 3);
        QCOMPARE(view.timers().at(2)->interval(), 66);
        QVERIFY(view.timers().at(2)->isActive());
    }

    void timersDriveThePaints()
    {
        Probe view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTRY_COMPARE(view.setUps, 1);
        const int before = view.paints;
        QTRY_VERIFY(view.paints >= before + 5);
        QCOMPARE(view.setUps, 1);

        view.stopTimers();
        QTest::qWait(200);
        const int still = view.paints;
        QTest::qWait(300);
        QCOMPARE(view.paints, still);

        view.setFPS(100.0F);
        QTRY_VERIFY(view.paints >= still + 5);

        view.stopTimers();
        view.setFPS(3000.0F); // whenever there is nothing else to do
        const int then = view.paints;
        QTRY_VERIFY(view.paints >= then + 5);
    }

    void requestsBecomeOnePaint()
    {
        Probe view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTRY_VERIFY(view.paints > 0);
        view.stopTimers();
        QTest::qWait(200);
        const int before = view.paints;
        for (int i = 1; i <= 10; ++i)
            view.setXRotation(10 * i);
        for (int i = 0; i < 10; ++i)
            QVERIFY(QMetaObject::invokeMethod(&view, "repaint"));
        QCOMPARE(view.paints, before);
        QTRY_COMPARE(view.paints, before + 1);
        QTest::qWait(200);
        QCOMPARE(view.paints, before + 1);

        // The angle that is set already schedules nothing.
        view.setXRotation(100);
        view.setXRotation(100 - 5760);
        QTest::qWait(200);
        QCOMPARE(view.paints, before + 1);
    }

    void dragLeft()
    {
        Probe view;
        QSignalSpy x(&view, &Renderer::xRotationChanged);
        QSignalSpy y(&view, &Renderer::yRotationChanged);
        drag(view, Qt::LeftButton, {50, 50}, {60, 54});
        QCOMPARE(anglesOf(view), Angles({32, 80, 0}));
        QCOMPARE(x.count(), 1);
        QCOMPARE(y.count(), 1);
        QCOMPARE(view.lastPos, QPoint(60, 54));

        sendMouse(view, QEvent::MouseMove, {59, 40}, Qt::NoButton, Qt::LeftButton);
        QCOMPARE(anglesOf(view), Angles({32 - 112 + 5760, 72, 0}));
    }

    void dragRight()
    {
        Probe view;
        drag(view, Qt::RightButton, {50, 50}, {60, 54});
        QCOMPARE(anglesOf(view), Angles({32, 0, 80}));
        QCOMPARE(view.lastPos, QPoint(60, 54));
    }

    void dragWithOtherButtons()
    {
        Probe view;
        drag(view, Qt::LeftButton | Qt::RightButton, {50, 50}, {60, 54});
        QCOMPARE(anglesOf(view), Angles({32, 80, 0}));
        drag(view, Qt::MiddleButton, {50, 50}, {0, 0});
        QCOMPARE(anglesOf(view), Angles({32, 80, 0}));
        QCOMPARE(view.lastPos, QPoint(0, 0));
        drag(view, Qt::MiddleButton | Qt::RightButton, {50, 50}, {51, 50});
        QCOMPARE(anglesOf(view), Angles({32, 80, 8}));

        view.setMouseTracking(true); // as a host might; else no such event arrives
        sendMouse(view, QEvent::MouseMove, {99, 98}, Qt::NoButton, Qt::NoButton);
        QCOMPARE(anglesOf(view), Angles({32, 80, 8}));
        QCOMPARE(view.lastPos, QPoint(99, 98));
    }

    void dragSignalsXFirst()
    {
        Probe view;
        QStringList order;
        // When a signal comes, the angle is stored, and the position of the move is not.
        const auto note = [&](const char *axis, int stored, int angle) {
            QCOMPARE(stored, angle);
            QCOMPARE(view.lastPos, QPoint(0, 0));
            order << QString("%1 %2").arg(axis).arg(angle);
        };
        connect(&view, &Renderer::xRotationChanged, this, [&](int angle) { note("x", view.xRot, angle); });
        connect(&view, &Renderer::yRotationChanged, this, [&](int angle) { note("y", view.yRot, angle); });
        connect(&view, &Renderer::zRotationChanged, this, [&](int angle) { note("z", view.zRot, angle); });
        drag(view, Qt::LeftButton, {0, 0}, {1, 2});
        drag(view, Qt::RightButton, {0, 0}, {1, 2});
        drag(view, Qt::LeftButton, {0, 0}, {1, 0});
        drag(view, Qt::RightButton, {0, 0}, {0, 0});
        QCOMPARE(order, QStringList({"x 16", "y 8", "x 32", "z 8", "y 16"}));
    }

    void dragAcrossTheWholeRange()
    {
        Probe view;
        constexpr int lowest = std::numeric_limits<int>::min() + 1; // the toolkit's rounding allows no less
        constexpr int highest = std::numeric_limits<int>::max();
        drag(view, Qt::LeftButton, {lowest, highest}, {highest, lowest});
        // 8 (2^32 - 2) is 2032 more than 5965232 whole turns.
        QCOMPARE(anglesOf(view), Angles({5760 - 2032, 2032, 0}));
    }

    void clicks()
    {
        Probe view;
        const QMouseEvent *seen = nullptr;
        int clicked = 0;
        int doubleClicked = 0;
        connect(&view, &Renderer::clicked, this, [&](QMouseEvent *event) {
            ++clicked;
            seen = event;
            QCOMPARE(view.lastPos, event->pos());
        });
        connect(&view, &Renderer::doubleClicked, this, [&](QMouseEvent *event) {
            ++doubleClicked;
            seen = event;
        });

        QMouseEvent press(QEvent::MouseButtonPress, QPointF(7.6, 9.4), Qt::MiddleButton, Qt::MiddleButton, {});
        QApplication::sendEvent(&view, &press);
        QCOMPARE(seen, &press);
        QCOMPARE(clicked, 1);
        QCOMPARE(view.lastPos, QPoint(8, 9));

        QVERIFY(press.isAccepted()); // the toolkit's own handler would have passed it on

        QMouseEvent twice(QEvent::MouseButtonDblClick, QPointF(70, 90), Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&view, &twice);
        QCOMPARE(seen, &twice);
        QCOMPARE(clicked, 1);
        QCOMPARE(doubleClicked, 1);
        QVERIFY(twice.isAccepted());
        QCOMPARE(view.lastPos, QPoint(8, 9));
        QCOMPARE(anglesOf(view), Angles({0, 0, 0}));
    }

    void dragThroughTheWindowSystem()
    {
        QWidget window;
        Probe view(&window);
        view.setGeometry(20, 10, 200, 150);
        window.resize(300, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        int clicked = 0;
        connect(&view, &Renderer::clicked, this, [&] { ++clicked; });

        QWindow *handle = window.windowHandle();
        QTest::mousePress(handle, Qt::LeftButton, {}, {70, 60});
        QCOMPARE(view.lastPos, QPoint(50, 50));
        QTest::mouseMove(handle, {80, 64});
        QTRY_COMPARE(anglesOf(view), Angles({32, 80, 0}));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, {80, 64});
        QTest::mouseMove(handle, {90, 90}); // without a button nothing arrives
        QTest::qWait(50);
        QCOMPARE(anglesOf(view), Angles({32, 80, 0}));

        QTest::mousePress(handle, Qt::RightButton, {}, {70, 60});
        QTest::mouseMove(handle, {80, 64});
        QTRY_COMPARE(anglesOf(view), Angles({64, 80, 80}));
        QTest::mouseRelease(handle, Qt::RightButton, {}, {80, 64});
        QCOMPARE(clicked, 2);
    }
};

PENDRIX_APPLICATION_TEST_MAIN(RendererTest)
#include "RendererTest.moc"
