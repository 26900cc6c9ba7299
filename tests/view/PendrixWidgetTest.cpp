// The view of the curve: the calls of a frame, and when it steps the engine.

#include "view/PendrixWidget.h"

#include "engine/Pendrix3D.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/FakeOpenGL.h"

#include <QTimer>
#include <qopengl.h>

namespace {

using Calls = QVector<OpenGLCall>;

class Probe : public PendrixWidget
{
public:
    Probe() : PendrixWidget(nullptr) {}

    using PendrixWidget::distance;
    using PendrixWidget::initializeGL;
    using PendrixWidget::paintGL;
};

/// Returns the calls that draw the engine's current curve.
Calls curveCalls()
{
    FakeOpenGL::clear();
    pdx3.draw();
    return FakeOpenGL::calls();
}

} // namespace

class PendrixWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        pdx3.set(0);
        FakeOpenGL::clear();
    }

    void metaObject()
    {
        const QMetaObject &meta = PendrixWidget::staticMetaObject;
        QCOMPARE(QByteArray(meta.className()), QByteArray("PendrixWidget"));
        QCOMPARE(meta.superClass(), &Renderer::staticMetaObject);
        QCOMPARE(meta.methodCount(), Renderer::staticMetaObject.methodCount());
        Probe view;
        QCOMPARE(view.qt_metacast("PendrixWidget"), static_cast<void *>(static_cast<PendrixWidget *>(&view)));
    }

    void hasOneTimerOfFifteenFrames()
    {
        const Probe view;
        const auto timers = view.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.first()->interval(), 66);
    }

    void initializeGLMovesCamera()
    {
        Probe view;
        QCOMPARE(view.distance, -6.0F);
        view.initializeGL();
        QCOMPARE(view.distance, -5.0F);
        QCOMPARE(FakeOpenGL::calls().size(), 4); // those of Renderer
    }

    void frameShowsCurveBeforeStep()
    {
        Probe view;
        view.initializeGL();
        view.setYRotation(160);
        const Calls camera = {
            {"glClearColor", {0.0, 0.0, 0.0, 1.0}}, {"glLoadIdentity", {}},
            {"glTranslatef", {0.0, 0.0, -5.0}},     {"glRotatef", {180.0, 1.0, 0.0, 0.0}},
            {"glRotatef", {10.0, 0.0, 1.0, 0.0}},   {"glRotatef", {0.0, 0.0, 0.0, 1.0}},
            {"glRotatef", {0.0, 1.0, 1.0, 1.0}},
        };
        for (const float steppedFreq1 : {1.0004F, 1.0008F, 1.0012F}) {
            const Calls expected = camera + curveCalls();
            FakeOpenGL::clear();
            view.paintGL();
            COMPARE_CALLS(expected);
            QCOMPARE(pdx3.freq1, steppedFreq1);
        }
    }

    void selectedRowShowsInNextFrame()
    {
        Probe view;
        view.paintGL();
        pdx3.set(7);
        const Calls expected = curveCalls();
        FakeOpenGL::clear();
        view.paintGL();
        QCOMPARE(FakeOpenGL::calls().mid(7), expected);
    }

    void unseenViewNeverSteps()
    {
        Probe view;
        view.resize(300, 300);
        view.setXRotation(99);
        QVERIFY(QMetaObject::invokeMethod(&view, "repaint")); // as the timer does
        QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
        COMPARE_CALLS({});
        QCOMPARE(pdx3.freq1, 1.0F);
    }

    void everyPaintIsOneStep()
    {
        Probe view;
        view.resize(300, 200);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        for (int i = 1; i <= 3; ++i) {
            view.resize(300 + 10 * i, 200);
            QTRY_VERIFY(FakeOpenGL::calls().contains({"glViewport", {0.0, 0.0, 300.0 + 10 * i, 200.0}}));
        }
        const auto paints = FakeOpenGL::calls().count({"glBegin", {GL_LINE_STRIP}});
        QVERIFY(paints >= 3);
        QCOMPARE(qRound((pdx3.freq1 - 1.0F) / 0.0004F), static_cast<int>(paints));
    }
};

PENDRIX_APPLICATION_TEST_MAIN(PendrixWidgetTest)
#include "PendrixWidgetTest.moc"
