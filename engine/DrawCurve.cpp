// Separate from Pendrix3D.cpp, so that programs that only compute curves do not link OpenGL.

#include "engine/Pendrix3D.h"

#include <qopengl.h>

#include <algorithm>

void Pendrix3D::draw()
{
    // The lists are public and may have been resized, so clamp the count.
    const int count = std::min({nPoints, points.size(), colors.size()});
    glBegin(GL_LINE_STRIP);
    for (int i = 0; i < count; ++i) {
        const CurvePoint &point = points.at(i);
        glVertex3f(point.x, point.y, point.z);
        qreal r = 0.0;
        qreal g = 0.0;
        qreal b = 0.0;
        qreal a = 1.0;
        // One call instead of four. getRgbF leaves the variables unchanged if the colour is invalid, so an invalid
        // colour is drawn opaque black.
        colors.at(i).getRgbF(&r, &g, &b, &a);
        glColor4f(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b), static_cast<float>(a));
    }
    glEnd();
}
