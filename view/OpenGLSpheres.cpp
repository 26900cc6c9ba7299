#include "view/OpenGL.h"

#include "view/SendColor.h"

#include <QtMath>

#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

namespace {

/// A latitude-longitude sphere of `n` bands: (n + 1)^2 vertices, row by row from pole to pole, and n^2 cells of four
/// indices of vertices. Has no vertices for a negative `n` and no cells for an `n` below 1.
///
/// Allocates each vertex and each cell separately and is drawn through a static pointer: slower than one array, but
/// part of the interface.
struct SphereMesh
{
    using Cell = std::array<std::size_t, 4>;

    SphereMesh(float r, int n)
    {
        const auto radius = static_cast<double>(r);
        const auto row = static_cast<std::size_t>(n) + 1;
        for (int i = 0; i <= n; ++i) {
            const double theta = M_PI * i / n;
            for (int j = 0; j <= n; ++j) {
                const double phi = 2.0 * M_PI * j / n;
                const std::size_t k = vertices.size();
                vertices.emplace_back(new float[3]{
                    static_cast<float>(-radius * std::sin(theta) * std::cos(phi)),
                    static_cast<float>(radius * std::cos(theta)),
                    static_cast<float>(radius * std::sin(theta) * std::sin(phi)),
                });
                if (i < n && j < n)
                    cells.emplace_back(new Cell{k, k + 1, k + 1 + row, k + row});
            }
        }
    }

    std::vector<std::unique_ptr<float[]>> vertices;
    std::vector<std::unique_ptr<Cell>> cells;
};

/// Returns the unit normal of the first three vertices of `cell`.
std::unique_ptr<float[]> normalOf(OpenGL &helpers, const SphereMesh &mesh, const SphereMesh::Cell &cell)
{
    const auto &v = mesh.vertices;
    return std::unique_ptr<float[]>(helpers.calcNormal(v[cell[0]].get(), v[cell[1]].get(), v[cell[2]].get()));
}

} // namespace

void OpenGL::sphere(float r, int n, QColor *colors)
{
    static std::unique_ptr<SphereMesh> mesh;
    mesh = std::make_unique<SphereMesh>(r, n);
    for (std::size_t i = 0; i < mesh->cells.size(); ++i) {
        const SphereMesh::Cell &cell = *mesh->cells[i];
        const auto normal = normalOf(*this, *mesh, cell);
        glBegin(GL_TRIANGLE_FAN);
        sendColor(colors ? colors[i] : QColor(Qt::blue));
        for (const std::size_t vertex : cell) {
            glNormal3fv(normal.get());
            glVertex3fv(mesh->vertices[vertex].get());
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
        for (const std::size_t vertex : *cell)
            glVertex3fv(mesh->vertices[vertex].get());
        glEnd();
    }
    mesh.reset();
}

void OpenGL::sphereTextured(float r, int n)
{
    std::vector<std::array<float, 2>> texture; // of each vertex
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
        for (const std::size_t vertex : *cell) {
            glNormal3fv(normal.get());
            glTexCoord2fv(texture[vertex].data());
            glVertex3fv(mesh->vertices[vertex].get());
        }
        glEnd();
    }
    mesh.reset();
}
