// Separate from Pendrix3D.cpp, so that programs that only compute curves do not link OpenGL.

#include "engine/Pendrix3D.h"

#include <qopengl.h>

#include <algorithm>

// double in Qt 5, float in Qt 6. Rounded to float, the components are the same.
using Component = decltype(QColor().redF());

void Pendrix3D::draw()
{
    // The lists are public and may have been resized, so clamp the count.
    const auto count = std::min<qsizetype>({nPoints, points.size(), colors.size()});
    glBegin(GL_LINE_STRIP);
    for (int i = 0; i < count; ++i) {
        const CurvePoint &point = points.at(i);
        glVertex3f(point.x, point.y, point.z);
        Component r = 0;
        Component g = 0;
        Component b = 0;
        Component a = 1;
        // One call instead of four. getRgbF leaves the variables unchanged if the colour is invalid, so an invalid
        // colour is drawn opaque black.
        colors.at(i).getRgbF(&r, &g, &b, &a);
        glColor4f(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b), static_cast<float>(a));
    }
    glEnd();
}
