#pragma once

#include <QColor>
#include <qopengl.h>

/// Makes `color` the current OpenGL colour; ignores its alpha.
inline void sendColor(const QColor &color)
{
    glColor3f(static_cast<float>(color.redF()), static_cast<float>(color.greenF()), static_cast<float>(color.blueF()));
}
