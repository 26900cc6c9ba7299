#include "view/OpenGL.h"

#include "view/SendColor.h"

#include <QColor>
#include <qopengl.h>

#include <array>
#include <cstddef>
#include <limits>

namespace {

using Point = std::array<float, 3>;
using TexturePoint = std::array<float, 2>;
template <std::size_t vertexCount>
using Face = std::array<std::size_t, vertexCount>; // indices of vertices
using Triangle = Face<3>;
using Square = Face<4>;
using Pentagon = Face<5>;

// The inconsistent rounding of equal coordinates (0.618 and 0.618034) is intended.

constexpr std::array<Point, 4> tetrahedronVertices = {{
    {0.0F, 0.0F, 1.732051F},
    {1.632993F, 0.0F, -0.5773503F},
    {-0.8164966F, 1.414214F, -0.5773503F},
    {-0.8164966F, -1.414214F, -0.5773503F},
}};

constexpr std::array<Triangle, 4> tetrahedronFaces = {{{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {1, 3, 2}}};

constexpr std::array<Point, 6> octahedronVertices = {{
    {0.0F, 0.0F, 1.414F},
    {1.414F, 0.0F, 0.0F},
    {0.0F, 1.414F, 0.0F},
    {-1.414F, 0.0F, 0.0F},
    {0.0F, -1.414F, 0.0F},
    {0.0F, 0.0F, -1.414F},
}};

constexpr std::array<Triangle, 8> octahedronFaces = {
    {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}, {1, 4, 5}, {1, 5, 2}, {2, 5, 3}, {3, 5, 4}}};

constexpr std::array<Point, 8> cubeVertices = {{
    {1.0F, 1.0F, 1.0F},
    {-1.0F, 1.0F, 1.0F},
    {-1.0F, -1.0F, 1.0F},
    {1.0F, -1.0F, 1.0F},
    {1.0F, -1.0F, -1.0F},
    {1.0F, 1.0F, -1.0F},
    {-1.0F, 1.0F, -1.0F},
    {-1.0F, -1.0F, -1.0F},
}};

constexpr std::array<Square, 6> cubeFaces = {
    {{3, 0, 1, 2}, {3, 4, 5, 0}, {0, 5, 6, 1}, {1, 6, 7, 2}, {2, 7, 4, 3}, {5, 4, 7, 6}}};

/// The corners of a texture, anticlockwise.
constexpr std::array<TexturePoint, 4> squareTexture = {{{0.0F, 0.0F}, {1.0F, 0.0F}, {1.0F, 1.0F}, {0.0F, 1.0F}}};

struct TexturedSquare
{
    Square vertices;
    std::size_t firstTexture; ///< the texture's corner at the first vertex; the others follow
};

constexpr std::array<TexturedSquare, 6> texturedCubeFaces = {{
    {{2, 3, 0, 1}, 0}, // front
    {{7, 6, 5, 4}, 1}, // back
    {{7, 2, 1, 6}, 0}, // left
    {{4, 5, 0, 3}, 1}, // right
    {{6, 1, 0, 5}, 3}, // top
    {{7, 4, 3, 2}, 2}, // bottom
}};

constexpr std::array<Point, 20> dodecahedronVertices = {{
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

constexpr std::array<Pentagon, 12> dodecahedronFaces = {{
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

/// The texture coordinates of a face's vertices, the results of textPolygon(5).
constexpr std::array<TexturePoint, 5> pentagonTexture = {{
    {0.5F, 0.0F},
    {0.97552824F, 0.34549147F},
    {0.7938926F, 0.9045085F},
    {0.20610736F, 0.9045085F},
    {0.02447175F, 0.34549147F},
}};

constexpr float icosahedronA = 0.5257311F;
constexpr float icosahedronB = 0.8506508F;

constexpr std::array<Point, 12> icosahedronVertices = {{
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

constexpr std::array<Triangle, 20> icosahedronFaces = {{{0, 4, 1},  {0, 9, 4},  {9, 5, 4},  {4, 5, 8},  {4, 8, 1},
                                                        {8, 10, 1}, {8, 3, 10}, {5, 3, 8},  {5, 2, 3},  {2, 7, 3},
                                                        {7, 10, 3}, {7, 6, 10}, {7, 11, 6}, {11, 0, 6}, {0, 1, 6},
                                                        {6, 1, 10}, {9, 0, 11}, {9, 11, 2}, {9, 2, 5},  {7, 2, 11}}};

/// Sends the vertices of one face in order, after its colour if `color` is not null.
template <typename Face>
void sendFace(const QColor *color, const Point *vertices, const Face &face)
{
    if (color)
        sendColor(*color);
    for (const std::size_t vertex : face)
        glVertex3fv(vertices[vertex].data());
}

/// Draws each face as a primitive `mode`.
template <typename Faces>
void drawFaces(int mode, const QColor *colors, const Point *vertices, const Faces &faces)
{
    for (const auto &face : faces) {
        glBegin(static_cast<GLenum>(mode));
        sendFace(colors ? colors++ : nullptr, vertices, face);
        glEnd();
    }
}

} // namespace

void OpenGL::tetrahedron(int mode, QColor *colors)
{
    drawFaces(mode, colors, tetrahedronVertices.data(), tetrahedronFaces);
}

void OpenGL::octahedron(int mode, QColor *colors)
{
    drawFaces(mode, colors, octahedronVertices.data(), octahedronFaces);
}

void OpenGL::cube(int mode, QColor *colors)
{
    drawFaces(mode, colors, cubeVertices.data(), cubeFaces);
}

void OpenGL::dodecahedron(int mode, QColor *colors)
{
    drawFaces(mode, colors, dodecahedronVertices.data(), dodecahedronFaces);
}

void OpenGL::icosahedron(int mode, QColor *colors)
{
    glBegin(static_cast<GLenum>(mode));
    for (const Triangle &face : icosahedronFaces)
        sendFace(colors ? colors++ : nullptr, icosahedronVertices.data(), face);
    glEnd();
}

float *OpenGL::cubeCoords(int i, float scale)
{
    static Point scaled;
    scaled.fill(std::numeric_limits<float>::quiet_NaN());
    const auto vertex = static_cast<std::size_t>(i); // beyond the table if negative
    for (std::size_t k = 0; vertex < cubeVertices.size() && k < scaled.size(); ++k)
        scaled[k] = 0.707F * cubeVertices[vertex][k] * scale;
    return scaled.data();
}

void OpenGL::cubeFace(int face)
{
    const int remainder = face % 6;
    if (remainder < 0)
        return;
    const auto &[vertices, firstTexture] = texturedCubeFaces[static_cast<std::size_t>(remainder)];
    glBegin(GL_QUADS);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        glTexCoord2fv(squareTexture[(firstTexture + i) % squareTexture.size()].data());
        glVertex3fv(cubeVertices[vertices[i]].data());
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
    const auto index = static_cast<std::size_t>(face); // beyond the table if negative
    if (index >= dodecahedronFaces.size())
        return;
    const Pentagon &vertices = dodecahedronFaces[index];
    glBegin(GL_TRIANGLE_FAN);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        glTexCoord2fv(pentagonTexture[i].data());
        glVertex3fv(dodecahedronVertices[vertices[i]].data());
    }
    glEnd();
}

void OpenGL::dodecahedronSolid()
{
    for (int face = 0; face < 12; ++face)
        dodecahedronFace(face);
}
