#pragma once

#include <QColor>
#include <qopengl.h>

/// Makes `color` the current OpenGL colour, opaque whatever its alpha.
inline void setColor(const QColor &color)
{
    glColor3f(static_cast<float>(color.redF()), static_cast<float>(color.greenF()), static_cast<float>(color.blueF()));
}
