#include "view/OpenGL.h"

#include "view/SetColor.h"

#include <QColor>
#include <qopengl.h>

#include <array>
#include <cstddef>
#include <limits>

namespace {

using Point = std::array<float, 3>;
using TexturePoint = std::array<float, 2>;

// A table of corners and one of faces, whose entries are indices of corners. The small differences between values that
// geometry would have equal (0.618 beside 0.618034) are part of the figures.

constexpr std::array<Point, 4> tetrahedronCorners = {{
    {0.0F, 0.0F, 1.732051F},
    {1.632993F, 0.0F, -0.5773503F},
    {-0.8164966F, 1.414214F, -0.5773503F},
    {-0.8164966F, -1.414214F, -0.5773503F},
}};

constexpr std::array<std::array<std::size_t, 3>, 4> tetrahedronFaces = {{
    {0, 1, 2},
    {0, 2, 3},
    {0, 3, 1},
    {1, 3, 2},
}};

constexpr std::array<Point, 6> octahedronCorners = {{
    {0.0F, 0.0F, 1.414F},
    {1.414F, 0.0F, 0.0F},
    {0.0F, 1.414F, 0.0F},
    {-1.414F, 0.0F, 0.0F},
    {0.0F, -1.414F, 0.0F},
    {0.0F, 0.0F, -1.414F},
}};

constexpr std::array<std::array<std::size_t, 3>, 8> octahedronFaces = {{
    {0, 1, 2},
    {0, 2, 3},
    {0, 3, 4},
    {0, 4, 1},
    {1, 4, 5},
    {1, 5, 2},
    {2, 5, 3},
    {3, 5, 4},
}};

/// The corners of the cube with edges of 2 `s`.
constexpr std::array<Point, 8> cubeCorners(float s)
{
    return {{
        {s, s, s},
        {-s, s, s},
        {-s, -s, s},
        {s, -s, s},
        {s, -s, -s},
        {s, s, -s},
        {-s, s, -s},
        {-s, -s, -s},
    }};
}

constexpr std::array<Point, 8> unitCubeCorners = cubeCorners(1.0F);
constexpr std::array<Point, 8> smallCubeCorners = cubeCorners(0.707F);

constexpr std::array<std::array<std::size_t, 4>, 6> cubeFaces = {{
    {3, 0, 1, 2},
    {3, 4, 5, 0},
    {0, 5, 6, 1},
    {1, 6, 7, 2},
    {2, 7, 4, 3},
    {5, 4, 7, 6},
}};

struct TexturedCorner
{
    Point point;
    TexturePoint texture;
};

// clang-format off
constexpr std::array<std::array<TexturedCorner, 4>, 6> texturedCubeFaces = {{
    {{ // front
        {{-1.0F, -1.0F,  1.0F}, {0.0F, 0.0F}},
        {{ 1.0F, -1.0F,  1.0F}, {1.0F, 0.0F}},
        {{ 1.0F,  1.0F,  1.0F}, {1.0F, 1.0F}},
        {{-1.0F,  1.0F,  1.0F}, {0.0F, 1.0F}},
    }},
    {{ // back
        {{-1.0F, -1.0F, -1.0F}, {1.0F, 0.0F}},
        {{-1.0F,  1.0F, -1.0F}, {1.0F, 1.0F}},
        {{ 1.0F,  1.0F, -1.0F}, {0.0F, 1.0F}},
        {{ 1.0F, -1.0F, -1.0F}, {0.0F, 0.0F}},
    }},
    {{ // left
        {{-1.0F, -1.0F, -1.0F}, {0.0F, 0.0F}},
        {{-1.0F, -1.0F,  1.0F}, {1.0F, 0.0F}},
        {{-1.0F,  1.0F,  1.0F}, {1.0F, 1.0F}},
        {{-1.0F,  1.0F, -1.0F}, {0.0F, 1.0F}},
    }},
    {{ // right
        {{ 1.0F, -1.0F, -1.0F}, {1.0F, 0.0F}},
        {{ 1.0F,  1.0F, -1.0F}, {1.0F, 1.0F}},
        {{ 1.0F,  1.0F,  1.0F}, {0.0F, 1.0F}},
        {{ 1.0F, -1.0F,  1.0F}, {0.0F, 0.0F}},
    }},
    {{ // top
        {{-1.0F,  1.0F, -1.0F}, {0.0F, 1.0F}},
        {{-1.0F,  1.0F,  1.0F}, {0.0F, 0.0F}},
        {{ 1.0F,  1.0F,  1.0F}, {1.0F, 0.0F}},
        {{ 1.0F,  1.0F, -1.0F}, {1.0F, 1.0F}},
    }},
    {{ // bottom
        {{-1.0F, -1.0F, -1.0F}, {1.0F, 1.0F}},
        {{ 1.0F, -1.0F, -1.0F}, {0.0F, 1.0F}},
        {{ 1.0F, -1.0F,  1.0F}, {0.0F, 0.0F}},
        {{-1.0F, -1.0F,  1.0F}, {1.0F, 0.0F}},
    }},
}};
// clang-format on

constexpr std::array<Point, 20> dodecahedronCorners = {{
    {0.0F, 0.0F, 1.07047F},
    {0.713644F, 0.0F, 0.797878F},
    {-0.356822F, 0.618F, 0.797878F},
    {-0.356822F, -0.618F, 0.797878F},
    {0.797878F, 0.618034F, 0.356822F},
    {0.797878F, -0.618F, 0.356822F},
    {-0.934172F, 0.381966F, 0.356822F},
    {0.136294F, 1.0F, 0.356822F},
    {0.136294F, -1.0F, 0.356822F},
    {-0.934172F, -0.381966F, 0.356822F},
    {0.934172F, 0.381966F, -0.356822F},
    {0.934172F, -0.381966F, -0.356822F},
    {-0.797878F, 0.618F, -0.356822F},
    {-0.136294F, 1.0F, -0.356822F},
    {-0.136294F, -1.0F, -0.356822F},
    {-0.797878F, -0.618034F, -0.356822F},
    {0.356822F, 0.618F, -0.797878F},
    {0.356822F, -0.618F, -0.797878F},
    {-0.713644F, 0.0F, -0.797878F},
    {0.0F, 0.0F, -1.07047F},
}};

constexpr std::array<std::array<std::size_t, 5>, 12> dodecahedronFaces = {{
    {0, 1, 4, 7, 2},
    {0, 2, 6, 9, 3},
    {0, 3, 8, 5, 1},
    {1, 5, 11, 10, 4},
    {2, 7, 13, 12, 6},
    {3, 9, 15, 14, 8},
    {4, 10, 16, 13, 7},
    {5, 8, 14, 17, 11},
    {6, 12, 18, 15, 9},
    {10, 11, 17, 19, 16},
    {12, 13, 16, 19, 18},
    {14, 15, 18, 19, 17},
}};

constexpr int dodecahedronFaceCount = static_cast<int>(dodecahedronFaces.size());

/// textPolygon(5), corner for corner of a face.
constexpr std::array<TexturePoint, 5> pentagonTexture = {{
    {0.5F, 0.0F},
    {0.97552824F, 0.34549147F},
    {0.7938926F, 0.9045085F},
    {0.20610736F, 0.9045085F},
    {0.02447175F, 0.34549147F},
}};

constexpr float icosahedronA = 0.5257311F;
constexpr float icosahedronB = 0.8506508F;

constexpr std::array<Point, 12> icosahedronCorners = {{
    {-icosahedronA, 0.0F, icosahedronB},
    {icosahedronA, 0.0F, icosahedronB},
    {-icosahedronA, 0.0F, -icosahedronB},
    {icosahedronA, 0.0F, -icosahedronB},
    {0.0F, icosahedronB, icosahedronA},
    {0.0F, icosahedronB, -icosahedronA},
    {0.0F, -icosahedronB, icosahedronA},
    {0.0F, -icosahedronB, -icosahedronA},
    {icosahedronB, icosahedronA, 0.0F},
    {-icosahedronB, icosahedronA, 0.0F},
    {icosahedronB, -icosahedronA, 0.0F},
    {-icosahedronB, -icosahedronA, 0.0F},
}};

// clang-format off
constexpr std::array<std::array<std::size_t, 3>, 20> icosahedronFaces = {{
    {0, 4, 1},
    {0, 9, 4},
    {9, 5, 4},
    {4, 5, 8},
    {4, 8, 1},
    {8, 10, 1},
    {8, 3, 10},
    {5, 3, 8},
    {5, 2, 3},
    {2, 7, 3},
    {7, 10, 3},
    {7, 6, 10},
    {7, 11, 6},
    {11, 0, 6},
    {0, 1, 6},
    {6, 1, 10},
    {9, 0, 11},
    {9, 11, 2},
    {9, 2, 5},
    {7, 2, 11},
}};
// clang-format on

/// Sends the corners of one face, in order.
template <typename Corners, typename Face>
void sendFace(const Corners &corners, const Face &face)
{
    for (const std::size_t corner : face)
        glVertex3fv(corners[corner].data());
}

/// Draws the faces one by one, each in the next of `colors` if there are any.
template <typename Corners, typename Faces>
void drawFaces(int mode, const QColor *colors, const Corners &corners, const Faces &faces)
{
    for (std::size_t i = 0; i < faces.size(); ++i) {
        glBegin(static_cast<GLenum>(mode));
        if (colors)
            setColor(colors[i]);
        sendFace(corners, faces[i]);
        glEnd();
    }
}

} // namespace

void OpenGL::tetrahedron(int mode, QColor *colors)
{
    drawFaces(mode, colors, tetrahedronCorners, tetrahedronFaces);
}

void OpenGL::octahedron(int mode, QColor *colors)
{
    drawFaces(mode, colors, octahedronCorners, octahedronFaces);
}

void OpenGL::cube(int mode, QColor *colors)
{
    drawFaces(mode, colors, unitCubeCorners, cubeFaces);
}

void OpenGL::dodecahedron(int mode, QColor *colors)
{
    drawFaces(mode, colors, dodecahedronCorners, dodecahedronFaces);
}

void OpenGL::icosahedron(int mode, QColor *colors)
{
    glBegin(static_cast<GLenum>(mode));
    for (std::size_t i = 0; i < icosahedronFaces.size(); ++i) {
        if (colors)
            setColor(colors[i]);
        sendFace(icosahedronCorners, icosahedronFaces[i]);
    }
    glEnd();
}

float *OpenGL::cubeCoords(int i, float scale)
{
    static Point scaled;
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const auto corner = static_cast<std::size_t>(i); // a negative index lies beyond every table
    scaled = corner < smallCubeCorners.size() ? smallCubeCorners[corner] : Point{none, none, none};
    for (float &coordinate : scaled)
        coordinate *= scale;
    return scaled.data();
}

void OpenGL::cubeFace(int face)
{
    const int remainder = face % 6;
    if (remainder < 0)
        return;
    glBegin(GL_QUADS);
    for (const TexturedCorner &corner : texturedCubeFaces[static_cast<std::size_t>(remainder)]) {
        glTexCoord2fv(corner.texture.data());
        glVertex3fv(corner.point.data());
    }
    glEnd();
}

void OpenGL::drawScene()
{
    cubeFace(1);
    cubeFace(2);
    cubeFace(5);
}

void OpenGL::cubeTextured()
{
    for (int face = 0; face < 6; ++face)
        cubeFace(face);
}

void OpenGL::dodecahedronFace(int face)
{
    if (face < 0 || face >= dodecahedronFaceCount)
        return;
    const auto &corners = dodecahedronFaces[static_cast<std::size_t>(face)];
    glBegin(GL_TRIANGLE_FAN);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        glTexCoord2fv(pentagonTexture[i].data());
        glVertex3fv(dodecahedronCorners[corners[i]].data());
    }
    glEnd();
}

void OpenGL::dodecahedronSolid()
{
    for (int face = 0; face < dodecahedronFaceCount; ++face)
        dodecahedronFace(face);
}
