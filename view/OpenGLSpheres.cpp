#include "view/OpenGL.h"

#include "view/SetColor.h"

#include <QtMath>

#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

namespace {

/// A latitude-longitude sphere of `n` bands: (n + 1)^2 corners, row by row from pole to pole, three floats each, and
/// n^2 cells of four indices of corners. Without corners for a negative `n`, without cells for one below 1.
struct SphereMesh
{
    using Cell = std::array<std::size_t, 4>;

    SphereMesh(float r, int n)
    {
        const auto radius = static_cast<double>(r);
        for (int i = 0; i <= n; ++i) {
            const double theta = M_PI * i / n;
            for (int j = 0; j <= n; ++j) {
                const double phi = 2.0 * M_PI * j / n;
                corners.emplace_back(new float[3]{
                    static_cast<float>(-radius * std::sin(theta) * std::cos(phi)),
                    static_cast<float>(radius * std::cos(theta)),
                    static_cast<float>(radius * std::sin(theta) * std::sin(phi)),
                });
            }
        }

        const auto row = static_cast<std::size_t>(n) + 1;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                const std::size_t k = static_cast<std::size_t>(i) * row + static_cast<std::size_t>(j);
                cells.emplace_back(new Cell{k, k + 1, k + 1 + row, k + row});
            }
        }
    }

    std::vector<std::unique_ptr<float[]>> corners;
    std::vector<std::unique_ptr<Cell>> cells;
};

/// The unit normal of the first three corners of `cell`.
std::unique_ptr<float[]> normalOf(OpenGL &helpers, const SphereMesh &mesh, const SphereMesh::Cell &cell)
{
    float *normal =
        helpers.calcNormal(mesh.corners[cell[0]].get(), mesh.corners[cell[1]].get(), mesh.corners[cell[2]].get());
    return std::unique_ptr<float[]>(normal);
}

} // namespace

// The mesh of a sphere stands at a static pointer while the sphere is drawn.

void OpenGL::sphere(float r, int n, QColor *colors)
{
    static std::unique_ptr<SphereMesh> mesh;
    mesh = std::make_unique<SphereMesh>(r, n);
    for (std::size_t i = 0; i < mesh->cells.size(); ++i) {
        const SphereMesh::Cell &cell = *mesh->cells[i];
        const auto normal = normalOf(*this, *mesh, cell);
        glBegin(GL_TRIANGLE_FAN);
        setColor(colors ? colors[i] : QColor(Qt::blue));
        for (const std::size_t corner : cell) {
            glNormal3fv(normal.get());
            glVertex3fv(mesh->corners[corner].get());
        }
        glEnd();
    }
    mesh.reset();
}

void OpenGL::sphereLine(float r, int n)
{
    static std::unique_ptr<SphereMesh> mesh;
    mesh = std::make_unique<SphereMesh>(r, n);
    for (const auto &cell : mesh->cells) {
        glBegin(GL_LINE_LOOP);
        for (const std::size_t corner : *cell)
            glVertex3fv(mesh->corners[corner].get());
        glEnd();
    }
    mesh.reset();
}

void OpenGL::sphereTextured(float r, int n)
{
    std::vector<std::array<float, 2>> texture; // one entry a corner
    for (int i = 0; i <= n; ++i) {
        for (int j = 0; j <= n; ++j)
            texture.push_back(
                {static_cast<float>(j) / static_cast<float>(n), static_cast<float>(i) / static_cast<float>(n)});
    }

    static std::unique_ptr<SphereMesh> mesh;
    mesh = std::make_unique<SphereMesh>(r, n);
    for (const auto &cell : mesh->cells) {
        const auto normal = normalOf(*this, *mesh, *cell);
        glBegin(GL_QUADS);
        for (const std::size_t corner : *cell) {
            glNormal3fv(normal.get());
            glTexCoord2fv(texture[corner].data());
            glVertex3fv(mesh->corners[corner].get());
        }
        glEnd();
    }
    mesh.reset();
}
