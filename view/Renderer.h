#pragma once

#include "view/OpenGL.h"

#include <QOpenGLWidget>
#include <QPoint>

/// An OpenGL view that draws at a fixed frame rate and that the user turns with the mouse.
///
/// Knows the perspective and the camera, not the scene: a subclass draws that in renderScene. The camera looks along
/// the negative z axis at a scene that is turned by three angles and pushed away by `distance`.
/// Angles are ints in 1/16 degree, 5760 to a full turn, kept in 0 to 5760.
/// Dragging with the left button turns the scene about x and y, with the right button about x and z, by half a degree
/// per pixel; with both, the left button's rule holds. The middle button does nothing.
class Renderer : public QOpenGLWidget, public OpenGL
{
    Q_OBJECT

public:
    /// A view with all angles 0 and a frame timer of 15 frames per second, which runs from here on.
    explicit Renderer(QWidget *parent);

    /// Adds the frame timer of 15 frames per second, as the constructor does.
    void _init();

    /// Adds a frame timer of `fps` frames per second; its interval is 1000 / `fps` in whole milliseconds, truncated.
    ///
    /// Timers of earlier calls keep running until the view is destroyed: the rates add up, which is intended.
    /// With an `fps` of 0 the new timer stands still and the running ones go on; so it does when the interval is
    /// negative or fits no int, as with an `fps` that is NaN or nearly 0.
    void setFPS(float fps);

    /// Multiplies a perspective onto the current matrix of the current context: a vertical field of view of `fovY`
    /// degrees, `aspect` as width by height, and the near and far planes at `zNear` and `zFar`, both positive.
    void perspectiveGL(double fovY, double aspect, double zNear, double zFar);

    /// Draws the scene. Called as the last step of every paint, with the context current.
    virtual void renderScene() = 0;

    /// Sets the scene up, once, before the first paint, with the context current.
    virtual void initScene() = 0;

signals:
    /// The angle about x, y or z has changed to `angle`, in 1/16 degree.
    void xRotationChanged(int angle);
    void yRotationChanged(int angle);
    void zRotationChanged(int angle);
    /// A button was pressed or double-clicked on the view; `event` is the mouse event as received.
    void clicked(QMouseEvent *event);
    void doubleClicked(QMouseEvent *event);

private slots:
    /// Schedules a paint; several requests before it is done become one. Hides QWidget::repaint, which paints at once.
    void repaint();

public slots:
    /// Turns the scene about the x axis to `angle`, in 1/16 degree.
    /// The angle is first brought into 0 to 5760; a full turn stays 5760 and is not folded to 0.
    /// Emits xRotationChanged with the stored value and schedules a paint, but only if the angle changed.
    void setXRotation(int angle);
    /// As setXRotation, about the y axis.
    void setYRotation(int angle);
    /// As setXRotation, about the z axis.
    void setZRotation(int angle);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

    void initializeGL() override;
    void resizeGL(int w, int h) override;
    void paintGL() override;

    /// Rotation about the diagonal (1, 1, 1) in degrees, the first to act on the scene.
    float spinAngle = 0.0F;
    /// When false, a paint sets up no camera and only calls renderScene.
    bool applyView = true;
    /// Free for a subclass; the view does not read it.
    float spare = 0.0F;
    /// Translation of the turned scene along z, in scene units; negative moves it away from the eye.
    float distance = -6.0F;
    /// Position of the last press or move, in widget coordinates.
    QPoint lastPos;
    /// Angles about the axes, in 1/16 degree, 0 to 5760.
    int xRot = 0;
    int yRot = 0;
    int zRot = 0;

private:
    void turn(int &stored, qint64 angle, void (Renderer::*changed)(int));
};
