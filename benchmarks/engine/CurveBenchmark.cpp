// clazy:excludeall=non-pod-global-static (that is how benchmarks are registered)

// A whole pass of the engine in each colour mode, by each method of computing the sines, beside the bare sines of the
// same arguments from the C library; and the palette of the engine's construction.

#include "color/ColorScale.h"
#include "engine/DampedSine.h"
#include "engine/Pendrix3D.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <utility>
#include <vector>

namespace {

/// The angles of all sines of the engine's present curve, axis by axis, and the amplitudes that go with them.
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

/// Goes on with `method`; false, with a word in the report, where it is not to be had.
bool use(benchmark::State &state, DampedSineMethod method)
{
    if (!isAvailable(method))
        state.SkipWithError("this processor or compiler has no such method");
    setDampedSineMethod(method);
    return isAvailable(method);
}

void sinesAlone(benchmark::State &state, DampedSineMethod method)
{
    if (!use(state, method))
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

void pass(benchmark::State &state, DampedSineMethod method)
{
    if (!use(state, method))
        return;
    const QVector<float> row = pdx3.presets.at(0);
    pdx3.set(row[0], row[1], row[2], row[3], row[4], static_cast<int>(state.range(0)));
    while (state.KeepRunning()) {
        pdx3.calcCoords();
        benchmark::DoNotOptimize(pdx3.points.constData());
    }
}

/// Point by point, as the curve is defined, with room for the results at hand.
void pointByPoint(benchmark::State &state)
{
    const QVector<float> row = pdx3.presets.at(0);
    pdx3.set(row[0], row[1], row[2], row[3], row[4], static_cast<int>(state.range(0)));
    QVector<CurvePoint> points;
    QVector<QColor> colors;
    while (state.KeepRunning()) {
        pdx3.amplitude = pdx3.total;
        pdx3.t = 0.0F;
        points.clear();
        colors.clear();
        points.reserve(pdx3.nPoints);
        colors.reserve(pdx3.nPoints);
        for (int i = 0; i < pdx3.nPoints; ++i) {
            pdx3.calcSegment(i);
            points.append({pdx3.x, pdx3.y, pdx3.z});
            colors.append(QColor(pdx3.red, pdx3.green, pdx3.blue));
        }
        benchmark::DoNotOptimize(points.constData());
    }
}

void palette(benchmark::State &state)
{
    while (state.KeepRunning()) {
        for (int i = 0; i < 512; ++i)
            benchmark::DoNotOptimize(ColorScaleHSL(0x0000FF, 0xFF0000, static_cast<float>(i) / 512.0F));
    }
}

} // namespace

BENCHMARK(bareSines)->Unit(benchmark::kMicrosecond);
BENCHMARK(pointByPoint)->ArgName("mode")->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(sinesAlone, library, DampedSineMethod::Library)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(sinesAlone, baseline, DampedSineMethod::Baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(sinesAlone, avx2, DampedSineMethod::Avx2)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(sinesAlone, avx512, DampedSineMethod::Avx512)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pass, library, DampedSineMethod::Library)
    ->ArgName("mode")
    ->DenseRange(0, 5)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pass, baseline, DampedSineMethod::Baseline)
    ->ArgName("mode")
    ->DenseRange(0, 5)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pass, avx2, DampedSineMethod::Avx2)->ArgName("mode")->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pass, avx512, DampedSineMethod::Avx512)
    ->ArgName("mode")
    ->DenseRange(0, 5)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(palette)->Unit(benchmark::kMicrosecond);
