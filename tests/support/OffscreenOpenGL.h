#pragma once

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <qopengl.h>

#include <memory>
#include <utility>

/// Fixed-function OpenGL without a window: its context is the current one, and what is drawn goes into a square of
/// colours and depths. Needs a QGuiApplication.
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
        buffer = std::move(square);
    }

    bool isValid() const { return buffer != nullptr; }

    /// What has been drawn, top row first and without its alpha.
    QImage picture() const
    {
        QImage pixels(buffer->size(), QImage::Format_RGB32);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glReadPixels(0, 0, pixels.width(), pixels.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels.bits());
        return pixels.mirrored(); // OpenGL's rows go up
    }

    /// Makes a new texture of `picture`, with its lower left at (0, 0), and binds it. It goes with the context.
    static void bindTexture(const QImage &picture, int filter)
    {
        const QImage pixels = picture.convertToFormat(QImage::Format_RGB32).mirrored();
        unsigned texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, pixels.width(), pixels.height(), 0, GL_BGRA,
                     GL_UNSIGNED_INT_8_8_8_8_REV, pixels.constBits());
    }

private:
    QOffscreenSurface surface;
    QOpenGLContext context;
    std::unique_ptr<QOpenGLFramebufferObject> buffer;
};
