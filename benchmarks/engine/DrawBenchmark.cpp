// clazy:excludeall=non-pod-global-static (that is how benchmarks are registered)

// Drawing a curve beside a loop that hands ready-made floats to the same entry points, which do nothing.

#include "engine/Pendrix3D.h"

#include <benchmark/benchmark.h>

#include <qopengl.h>

#include <array>
#include <vector>

namespace {

void readyMadeFloats(benchmark::State &state)
{
    pdx3.set(0);
    std::vector<std::array<float, 3>> vertices;
    std::vector<std::array<float, 4>> colors;
    for (int i = 0; i < pdx3.nPoints; ++i) {
        const CurvePoint &point = pdx3.points.at(i);
        const QColor &color = pdx3.colors.at(i);
        vertices.push_back({point.x, point.y, point.z});
        colors.push_back({static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
                          static_cast<float>(color.blueF()), static_cast<float>(color.alphaF())});
    }
    while (state.KeepRunning()) {
        glBegin(GL_LINE_STRIP);
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            glVertex3f(vertices[i][0], vertices[i][1], vertices[i][2]);
            glColor4f(colors[i][0], colors[i][1], colors[i][2], colors[i][3]);
        }
        glEnd();
    }
}

void draw(benchmark::State &state)
{
    pdx3.set(0);
    while (state.KeepRunning())
        pdx3.draw();
}

/// Each color is asked for its components, as after a change of the list from outside.
void drawChangedColors(benchmark::State &state)
{
    pdx3.set(0);
    pdx3.colors[0] = QColor(Qt::white);
    while (state.KeepRunning())
        pdx3.draw();
}

} // namespace

BENCHMARK(readyMadeFloats)->Unit(benchmark::kMicrosecond);
BENCHMARK(draw)->Unit(benchmark::kMicrosecond);
BENCHMARK(drawChangedColors)->Unit(benchmark::kMicrosecond);
