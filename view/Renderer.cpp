#include "view/Renderer.h"

#include "numerics/FloatModel.h"
#include "numerics/Truncate.h"

#include <QMouseEvent>
#include <QTimer>
#include <qopengl.h>

#include <cmath>

namespace {

constexpr int fullTurn = 5760;
constexpr float degreesPerUnit = 0.0625F;
constexpr int unitsPerPixel = 8;

/// `angle` brought into 0 to 5760 by whole turns, as few as are needed: 5760 stays, 5761 becomes 1, -5760 becomes 0.
int normalised(qint64 angle)
{
    if (angle < 0)
        return static_cast<int>((angle % fullTurn + fullTurn) % fullTurn);
    if (angle > fullTurn)
        return static_cast<int>((angle - 1) % fullTurn + 1);
    return static_cast<int>(angle);
}

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
    auto *timer = new QTimer(this);
    if (fps == 0.0F) {
        timer->stop();
        return;
    }
    const int interval = truncatedOr(1000.0 / static_cast<double>(fps), -1);
    if (interval >= 0)
        timer->start(interval);
    connect(timer, SIGNAL(timeout()), this, SLOT(repaint()));
}

void Renderer::perspectiveGL(double fovY, double aspect, double zNear, double zFar)
{
    constexpr double pi = 3.14159265358979323846;
    const double fH = std::tan(fovY / 360.0 * pi) * zNear;
    const double fW = fH * aspect;
    glFrustum(-fW, fW, -fH, fH, zNear, zFar);
}

void Renderer::repaint()
{
    QWidget::update();
}

void Renderer::setXRotation(int angle)
{
    turn(xRot, angle, &Renderer::xRotationChanged);
}

void Renderer::setYRotation(int angle)
{
    turn(yRot, angle, &Renderer::yRotationChanged);
}

void Renderer::setZRotation(int angle)
{
    turn(zRot, angle, &Renderer::zRotationChanged);
}

void Renderer::turn(int &stored, qint64 angle, void (Renderer::*changed)(int))
{
    const int unit = normalised(angle);
    if (unit == stored)
        return;
    stored = unit;
    emit(this->*changed)(unit);
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
    // A synthetic event may stand anywhere in the int range; its distance then needs more than an int.
    const qint64 dx = qint64{event->x()} - lastPos.x();
    const qint64 dy = qint64{event->y()} - lastPos.y();
    if (event->buttons() & Qt::LeftButton) {
        turn(xRot, xRot + unitsPerPixel * dy, &Renderer::xRotationChanged);
        turn(yRot, yRot + unitsPerPixel * dx, &Renderer::yRotationChanged);
    } else if (event->buttons() & Qt::RightButton) {
        turn(xRot, xRot + unitsPerPixel * dy, &Renderer::xRotationChanged);
        turn(zRot, zRot + unitsPerPixel * dx, &Renderer::zRotationChanged);
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
    const auto aspect = static_cast<double>(static_cast<float>(w) / static_cast<float>(h));
    constexpr double t = 0.4142135623730951; // tan 22.5 degrees, half of the 45 degree vertical field of view
    glFrustum(-aspect * t, aspect * t, -t, t, 1.0, 1000.0);
    glMatrixMode(GL_MODELVIEW);
}

void Renderer::paintGL()
{
    // No glClear: QOpenGLWidget clears the frame itself, with the clear colour that is set here.
    if (applyView) {
        glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
        glLoadIdentity();
        glTranslatef(0.0F, 0.0F, distance);
        // Half a turn about x: y points down on the screen, as on a drawing table seen from above.
        glRotatef(180.0F - static_cast<float>(xRot) * degreesPerUnit, 1.0F, 0.0F, 0.0F);
        glRotatef(static_cast<float>(yRot) * degreesPerUnit, 0.0F, 1.0F, 0.0F);
        glRotatef(static_cast<float>(zRot) * degreesPerUnit, 0.0F, 0.0F, 1.0F);
        glRotatef(spinAngle, 1.0F, 1.0F, 1.0F);
    }
    renderScene();
}
