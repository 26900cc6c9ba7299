#pragma once

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <qopengl.h>

#include <memory>
#include <utility>

/// Returns the pixels of the current framebuffer from its lower left on, without their alpha.
inline QImage readPixels(const QSize &size)
{
    QImage pixels(size, QImage::Format_RGB32);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, size.width(), size.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels.bits());
    return pixels.mirrored(); // OpenGL's rows run upwards
}

/// Fixed-function OpenGL without a window: makes a context current that draws into a square with a depth buffer. Needs
/// a QGuiApplication.
class OffscreenOpenGL
{
public:
    /// Starts with the state of a new context and a viewport of `side` by `side` pixels. Check isValid.
    explicit OffscreenOpenGL(int side)
    {
        surface.create();
        if (!context.create() || context.format().profile() == QSurfaceFormat::CoreProfile ||
            !context.makeCurrent(&surface))
            return;
        auto square = std::make_unique<QOpenGLFramebufferObject>(side, side, QOpenGLFramebufferObject::Depth);
        if (!square->bind())
            return;
        glViewport(0, 0, side, side);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        buffer = std::move(square);
    }

    bool isValid() const { return buffer != nullptr; }

private:
    QOffscreenSurface surface;
    QOpenGLContext context;
    std::unique_ptr<QOpenGLFramebufferObject> buffer;
};
