#include "view/Renderer.h"

#include "numerics/FloatModel.h"
#include "numerics/Truncate.h"
#include "view/Camera.h"

#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QTimer>
#include <QtMath>
#include <qopengl.h>

#include <cmath>

namespace {

/// Units of an angle per pixel of a drag: half a degree.
constexpr int unitsPerPixel = 8;

} // namespace

Renderer::Renderer(QWidget *parent) : QOpenGLWidget(parent)
{
    setFPS(15.0F);
}

void Renderer::_init()
{
    setFPS(15.0F);
}

void Renderer::setFPS(float fps)
{
    auto *timer = new QTimer(this); // stopped
    if (fps == 0.0F)
        return;
    // The timer stays stopped for negative intervals, which QTimer rejects, and for those that do not fit an int.
    const int interval = truncatedOr(1000.0 / static_cast<double>(fps), -1);
    if (interval >= 0)
        timer->start(interval);
    connect(timer, SIGNAL(timeout()), this, SLOT(repaint()));
}

void Renderer::perspectiveGL(double fovY, double aspect, double zNear, double zFar)
{
    const double fH = std::tan(fovY / 360.0 * M_PI) * zNear;
    const double fW = fH * aspect;
    glFrustum(-fW, fW, -fH, fH, zNear, zFar);
}

void Renderer::repaint()
{
    QWidget::update();
}

void Renderer::setXRotation(int angle)
{
    setAngle(xRot, angle, &Renderer::xRotationChanged);
}

void Renderer::setYRotation(int angle)
{
    setAngle(yRot, angle, &Renderer::yRotationChanged);
}

void Renderer::setZRotation(int angle)
{
    setAngle(zRot, angle, &Renderer::zRotationChanged);
}

void Renderer::setAngle(int &stored, qint64 angle, void (Renderer::*changed)(int))
{
    const int normalised = Camera::normalisedAngle(angle);
    if (normalised == stored)
        return;
    stored = normalised;
    emit(this->*changed)(normalised);
    update();
}

void Renderer::mousePressEvent(QMouseEvent *event)
{
    lastPos = event->pos();
    emit clicked(event);
}

void Renderer::mouseDoubleClickEvent(QMouseEvent *event)
{
    emit doubleClicked(event);
}

void Renderer::mouseMoveEvent(QMouseEvent *event)
{
    // The difference of two ints can exceed the int range.
    const qint64 dx = qint64{event->pos().x()} - lastPos.x();
    const qint64 dy = qint64{event->pos().y()} - lastPos.y();
    if (event->buttons() & Qt::LeftButton) {
        setAngle(xRot, xRot + unitsPerPixel * dy, &Renderer::xRotationChanged);
        setAngle(yRot, yRot + unitsPerPixel * dx, &Renderer::yRotationChanged);
    } else if (event->buttons() & Qt::RightButton) {
        setAngle(xRot, xRot + unitsPerPixel * dy, &Renderer::xRotationChanged);
        setAngle(zRot, zRot + unitsPerPixel * dx, &Renderer::zRotationChanged);
    }
    lastPos = event->pos();
}

void Renderer::initializeGL()
{
    glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_DONT_CARE);
    initScene();
}

void Renderer::resizeGL(int w, int h)
{
    glViewport(0, 0, w, h);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    constexpr double halfHeight = Camera::nearHalfHeight;
    const double halfWidth = Camera::aspectRatio(w, h) * halfHeight;
    glFrustum(-halfWidth, halfWidth, -halfHeight, halfHeight, Camera::nearPlane, Camera::farPlane);
    glMatrixMode(GL_MODELVIEW);
}

void Renderer::paintGL()
{
    // No glClear: QOpenGLWidget of Qt 5 clears each frame with the clear colour.
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // That of Qt 6 may discard the frame without clearing it: with some drivers, the previous one remains.
    if (const QOpenGLContext *current = QOpenGLContext::currentContext())
        current->functions()->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
#endif
    if (applyView) {
        glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
        glLoadIdentity();
        glTranslatef(0.0F, 0.0F, distance);
        glRotatef(Camera::degreesAboutX(xRot), 1.0F, 0.0F, 0.0F);
        glRotatef(Camera::degrees(yRot), 0.0F, 1.0F, 0.0F);
        glRotatef(Camera::degrees(zRot), 0.0F, 0.0F, 1.0F);
        glRotatef(spinAngle, 1.0F, 1.0F, 1.0F);
    }
    renderScene();
}
