// One frame of the curve's view as OpenGL calls, and when the view steps the engine.

#include "view/PendrixWidget.h"

#include "engine/Pendrix3D.h"
#include "tests/support/ApplicationTest.h"
#include "tests/support/FakeOpenGL.h"

#include <QTimer>
#include <qopengl.h>

namespace {

class Probe : public PendrixWidget
{
public:
    Probe() : PendrixWidget(nullptr) {}

    using PendrixWidget::distance;
    using PendrixWidget::initializeGL;
    using PendrixWidget::paintGL;
    using PendrixWidget::xRot;
};

/// The calls that draw the engine's present curve.
QVector<OpenGLCall> strip()
{
    QVector<OpenGLCall> calls;
    calls.reserve(2 * pdx3.points.size() + 2);
    calls.append(OpenGLCall{"glBegin", {GL_LINE_STRIP}});
    for (int i = 0; i < pdx3.points.size(); ++i) {
        const CurvePoint &point = pdx3.points.at(i);
        const QColor &color = pdx3.colors.at(i);
        calls.append(OpenGLCall{"glVertex3f", {point.x, point.y, point.z}});
        calls.append(OpenGLCall{"glColor4f",
                                {static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
                                 static_cast<float>(color.blueF()), static_cast<float>(color.alphaF())}});
    }
    calls.append(OpenGLCall{"glEnd", {}});
    return calls;
}

} // namespace

class PendrixWidgetCallsTest : public QObject
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
        QCOMPARE(meta.propertyCount(), Renderer::staticMetaObject.propertyCount());
        Probe view;
        QCOMPARE(view.qt_metacast("PendrixWidget"), static_cast<void *>(static_cast<PendrixWidget *>(&view)));
        QCOMPARE(view.qt_metacast("Renderer"), static_cast<void *>(static_cast<Renderer *>(&view)));
        QVERIFY(!view.qt_metacast("Probe"));
    }

    void oneTimerOfFifteenFrames()
    {
        const Probe view;
        const auto timers = view.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.first()->interval(), 66);
        QVERIFY(timers.first()->isActive());
    }

    void settingUpMovesTheCamera()
    {
        Probe view;
        QCOMPARE(view.distance, -6.0F);
        view.initializeGL();
        QCOMPARE(view.distance, -5.0F);
        QCOMPARE(FakeOpenGL::calls().size(), 4); // the view's own, none of the scene
    }

    void framesShowTheCurveBeforeTheStep()
    {
        Probe view;
        view.initializeGL();
        view.setYRotation(160);
        const QVector<OpenGLCall> camera = {
            {"glClearColor", {0.0, 0.0, 0.0, 1.0}}, {"glLoadIdentity", {}},
            {"glTranslatef", {0.0, 0.0, -5.0}},     {"glRotatef", {180.0, 1.0, 0.0, 0.0}},
            {"glRotatef", {10.0, 0.0, 1.0, 0.0}},   {"glRotatef", {0.0, 0.0, 0.0, 1.0}},
            {"glRotatef", {0.0, 1.0, 1.0, 1.0}},
        };
        for (int frame = 0; frame < 20; ++frame) {
            const float freq1 = pdx3.freq1;
            const QVector<OpenGLCall> expected = camera + strip();
            FakeOpenGL::clear();
            view.paintGL();
            QCOMPARE(FakeOpenGL::calls(), expected);
            QCOMPARE(pdx3.freq1, static_cast<float>(static_cast<double>(freq1) + 0.0004));
        }
    }

    void selectingAnotherRowShowsInTheNextFrame()
    {
        Probe view;
        view.paintGL();
        pdx3.set(7);
        const QVector<OpenGLCall> expected = strip();
        FakeOpenGL::clear();
        view.paintGL();
        QCOMPARE(FakeOpenGL::calls().mid(7), expected);
    }

    void aViewThatIsNeverShownNeverSteps()
    {
        Probe view;
        view.resize(300, 300);
        view.setXRotation(99);
        QTest::qWait(300);
        QCOMPARE(FakeOpenGL::calls(), QVector<OpenGLCall>());
        QCOMPARE(pdx3.freq1, 1.0F);
    }
};

PENDRIX_APPLICATION_TEST_MAIN(PendrixWidgetCallsTest)
#include "PendrixWidgetCallsTest.moc"
