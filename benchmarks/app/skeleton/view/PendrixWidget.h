#pragma once

#include "view/Camera.h"

#include <QOpenGLWidget>
#include <QTimer>
#include <QtMath>
#include <qopengl.h>

#include <array>
#include <complex>

/// Replaces the program's view: draws a line strip with the same number of points at the same frame rate, from a
/// constant array of 7 floats per point.
class PendrixWidget : public QOpenGLWidget
{
public:
    explicit PendrixWidget(QWidget *parent) : QOpenGLWidget(parent)
    {
        auto *timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, qOverload<>(&QWidget::update));
        timer->start(66);
    }

protected:
    /// Fills the array with the first preset's curve after about 50 frames, by complex rotations instead of sines.
    void initializeGL() override
    {
        using Swing = std::complex<double>;
        const Swing xStep = std::polar(1.0, 2.0 * 0.02);
        const Swing yStep = std::polar(1.0, 1.02 * 0.02);
        const Swing zStep = std::polar(1.0, 3.02 * 0.02);
        Swing x = 1.0;
        Swing y = std::polar(1.0, 0.46 * 2.0 * M_PI);
        Swing z = 1.0;
        double amplitude = 1.0;
        for (Point &point : points) {
            x *= xStep;
            y *= yStep;
            z *= zStep;
            amplitude -= 6e-5;
            const auto share = static_cast<float>(amplitude);
            point = {static_cast<float>(amplitude * x.imag()),
                     static_cast<float>(amplitude * y.imag()),
                     static_cast<float>(amplitude * z.imag()),
                     share,
                     1.0F - share,
                     1.0F,
                     1.0F};
        }
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
    }

    void resizeGL(int w, int h) override
    {
        const double t = Camera::nearHalfHeight;
        const double aspect = Camera::aspectRatio(w, h);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glFrustum(-aspect * t, aspect * t, -t, t, Camera::nearPlane, Camera::farPlane);
        glMatrixMode(GL_MODELVIEW);
    }

    void paintGL() override
    {
        glLoadIdentity();
        glTranslatef(0.0F, 0.0F, Camera::curveDistance);
        glRotatef(180.0F, 1.0F, 0.0F, 0.0F);
        glBegin(GL_LINE_STRIP);
        for (const Point &point : points) {
            glVertex3f(point[0], point[1], point[2]);
            glColor4f(point[3], point[4], point[5], point[6]);
        }
        glEnd();
    }

private:
    using Point = std::array<float, 7>; // position and colour
    inline static std::array<Point, 16666> points;
};
