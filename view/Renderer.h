#pragma once

#include "view/Camera.h"
#include "view/OpenGL.h"

#include <QOpenGLWidget>
#include <QPoint>

/// Base of an OpenGL view that draws at a fixed frame rate and that the user rotates with the mouse.
///
/// Sets up the perspective and the camera (view/Camera.h); a subclass draws the scene in renderScene. Angles are ints
/// in 1/16 degree, kept in 0 to 5760. Dragging with the left button rotates the scene about x and y, with the right
/// button about x and z, by half a degree per pixel; with both, the left button takes precedence. The middle button
/// does nothing.
class Renderer : public QOpenGLWidget, public OpenGL
{
    Q_OBJECT

public:
    /// Creates a view with all angles 0 and starts a frame timer of 15 frames per second.
    explicit Renderer(QWidget *parent);

    /// Adds a frame timer of 15 frames per second, as the constructor does.
    void _init();

    /// Adds a frame timer of `fps` frames per second; its interval is 1000 / `fps` milliseconds, truncated.
    ///
    /// Timers of earlier calls keep running until the view is destroyed: the rates add up, which is intended.
    /// The new timer stays stopped if `fps` is 0 or NaN, or if the interval is negative or does not fit an int.
    void setFPS(float fps);

    /// Multiplies a perspective onto the current matrix of the current context: a vertical field of view of `fovY`
    /// degrees, `aspect` as width / height, and the near and far planes at `zNear` and `zFar`, both positive.
    void perspectiveGL(double fovY, double aspect, double zNear, double zFar);

    /// Draws the scene. Called as the last step of every paint, with the context current.
    virtual void renderScene() = 0;

    /// Sets up the scene. Called once, before the first paint, with the context current.
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
    /// Schedules a paint; requests before that paint are merged into it. Hides QWidget::repaint, which paints at once.
    void repaint();

public slots:
    /// Sets the angle about the x, y or z axis to `angle`, in 1/16 degree.
    ///
    /// The angle is first normalised to 0 to 5760; a full turn stays 5760 and is not folded to 0. If it then differs
    /// from the stored one, stores it, emits xRotationChanged (or the y or z signal) and schedules a paint.
    void setXRotation(int angle);
    void setYRotation(int angle);
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
    /// Unused; free for a subclass.
    float spare = 0.0F;
    /// Translation of the rotated scene along z, in scene units; negative moves it away from the eye.
    float distance = Camera::defaultDistance;
    /// Position of the last press or move, in widget coordinates.
    QPoint lastPos;
    /// Angles about the axes, in 1/16 degree, 0 to 5760.
    int xRot = 0;
    int yRot = 0;
    int zRot = 0;

private:
    void setAngle(int &stored, qint64 angle, void (Renderer::*changed)(int));
};
