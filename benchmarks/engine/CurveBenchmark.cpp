// clazy:excludeall=non-pod-global-static (Google Benchmark registers benchmarks with globals)

// The engine's share of a frame: the bare sines of a curve by libm, all damped sines by each method, a pass and a pass
// with draw in each colour mode by each method, draw alone, and the palette.

#include "color/ColorScale.h"
#include "engine/DampedSine.h"
#include "engine/Pendrix3D.h"

#include "tests/support/ReferenceCurve.h"

#include <benchmark/benchmark.h>

#include <qopengl.h>

#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace {

/// The angles of all sines of the engine's current curve, axis by axis, and their amplitudes.
struct Oscillations
{
    std::vector<float> angles;
    std::vector<float> amplitudes;
};

Oscillations oscillations()
{
    const std::vector<std::pair<float, float>> axes = {
        {0.0F, pdx3.freq2}, {pdx3.phase1 * pdx3.twoPi, pdx3.freq1}, {pdx3.phase2 * pdx3.twoPi, pdx3.freq3}};
    Oscillations all;
    for (const auto &[offset, frequency] : axes) {
        float t = 0.0F;
        float amplitude = pdx3.total;
        for (int i = 0; i < pdx3.nPoints; ++i) {
            t = static_cast<float>(static_cast<double>(t) + 0.02);
            amplitude -= pdx3.step;
            all.angles.push_back(offset + frequency * t);
            all.amplitudes.push_back(amplitude);
        }
    }
    return all;
}

void bareSines(benchmark::State &state)
{
    pdx3.set(0);
    const Oscillations all = oscillations();
    const std::vector<double> arguments(all.angles.begin(), all.angles.end());
    while (state.KeepRunning()) {
        for (const double argument : arguments)
            benchmark::DoNotOptimize(std::sin(argument));
    }
}

/// Selects the method of the benchmark's first argument. Skips the benchmark and returns false if it is not available.
bool selectMethod(benchmark::State &state)
{
    const auto method = static_cast<DampedSineMethod>(state.range(0));
    if (!isAvailable(method))
        state.SkipWithError("method not available");
    setDampedSineMethod(method);
    return isAvailable(method);
}

/// Makes preset 0 current, in the colour mode of the benchmark's last argument.
void selectMode(int mode)
{
    const QVector<float> row = pdx3.presets.at(0);
    pdx3.set(row[0], row[1], row[2], row[3], row[4], mode);
}

void dampedSinesOnly(benchmark::State &state)
{
    if (!selectMethod(state))
        return;
    pdx3.set(0);
    const Oscillations all = oscillations();
    std::vector<float> displacements(all.angles.size());
    while (state.KeepRunning()) {
        dampedSines(all.angles.data(), all.amplitudes.data(), displacements.data(),
                    static_cast<int>(all.angles.size()));
        benchmark::DoNotOptimize(displacements.data());
    }
}

void pass(benchmark::State &state)
{
    if (!selectMethod(state))
        return;
    selectMode(static_cast<int>(state.range(1)));
    while (state.KeepRunning()) {
        pdx3.calcCoords();
        benchmark::DoNotOptimize(pdx3.points.constData());
    }
}

/// The entry points of OpenGL do nothing here.
void passAndDraw(benchmark::State &state)
{
    if (!selectMethod(state))
        return;
    selectMode(static_cast<int>(state.range(1)));
    while (state.KeepRunning()) {
        pdx3.draw();
        pdx3.calcCoords();
    }
}

void pointByPoint(benchmark::State &state)
{
    selectMode(static_cast<int>(state.range(0)));
    const ReferenceCurve curve = ReferenceCurve::current();
    while (state.KeepRunning())
        benchmark::DoNotOptimize(curve.points().data());
}

void draw(benchmark::State &state)
{
    pdx3.set(0);
    while (state.KeepRunning())
        pdx3.draw();
}

/// The lower limit of draw: the same calls with floats that are ready to use.
void drawFloats(benchmark::State &state)
{
    pdx3.set(0);
    std::vector<std::array<float, 7>> vertices;
    for (int i = 0; i < pdx3.nPoints; ++i) {
        const CurvePoint &point = pdx3.points.at(i);
        const QColor &color = pdx3.colors.at(i);
        vertices.push_back({point.x, point.y, point.z, static_cast<float>(color.redF()),
                            static_cast<float>(color.greenF()), static_cast<float>(color.blueF()), 1.0F});
    }
    while (state.KeepRunning()) {
        glBegin(GL_LINE_STRIP);
        for (const auto &vertex : vertices) {
            glVertex3f(vertex[0], vertex[1], vertex[2]);
            glColor4f(vertex[3], vertex[4], vertex[5], vertex[6]);
        }
        glEnd();
    }
}

void palette(benchmark::State &state)
{
    while (state.KeepRunning()) {
        for (int i = 0; i < 512; ++i)
            benchmark::DoNotOptimize(ColorScaleHSL(0x0000FF, 0xFF0000, static_cast<float>(i) / 512.0F));
    }
}

void allMethods(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("method")->DenseRange(0, 3);
}

void allMethodsAndModes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgNames({"method", "mode"})
        ->ArgsProduct(
            {benchmark::CreateDenseRange(0, 3, 1), benchmark::CreateDenseRange(0, Pendrix3D::colorModeCount, 1)});
}

} // namespace

BENCHMARK(bareSines)->Unit(benchmark::kMicrosecond);
BENCHMARK(pointByPoint)->ArgName("mode")->DenseRange(0, Pendrix3D::colorModeCount)->Unit(benchmark::kMicrosecond);
BENCHMARK(dampedSinesOnly)->Apply(allMethods)->Unit(benchmark::kMicrosecond);
BENCHMARK(pass)->Apply(allMethodsAndModes)->Unit(benchmark::kMicrosecond);
BENCHMARK(passAndDraw)->Apply(allMethodsAndModes)->Unit(benchmark::kMicrosecond);
BENCHMARK(draw)->Unit(benchmark::kMicrosecond);
BENCHMARK(drawFloats)->Unit(benchmark::kMicrosecond);
BENCHMARK(palette)->Unit(benchmark::kMicrosecond);
