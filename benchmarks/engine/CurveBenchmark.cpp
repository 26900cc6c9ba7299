// clazy:excludeall=non-pod-global-static (that is how benchmarks are registered)

// A whole pass of the engine in each colour mode, beside the bare sines of the same arguments.

#include "engine/Pendrix3D.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

/// The arguments of all sines of the engine's present curve, in the order in which they are computed.
std::vector<double> sineArguments()
{
    std::vector<double> arguments;
    arguments.reserve(static_cast<std::size_t>(pdx3.nPoints) * 3);
    float t = 0.0F;
    for (int i = 0; i < pdx3.nPoints; ++i) {
        t = static_cast<float>(static_cast<double>(t) + 0.02);
        arguments.push_back(static_cast<double>(pdx3.freq2 * t));
        arguments.push_back(static_cast<double>(pdx3.phase1 * pdx3.twoPi + pdx3.freq1 * t));
        arguments.push_back(static_cast<double>(pdx3.phase2 * pdx3.twoPi + pdx3.freq3 * t));
    }
    return arguments;
}

void bareSines(benchmark::State &state)
{
    pdx3.set(0);
    const std::vector<double> arguments = sineArguments();
    while (state.KeepRunning()) {
        for (const double argument : arguments)
            benchmark::DoNotOptimize(std::sin(argument));
    }
}

void pass(benchmark::State &state)
{
    const QVector<float> row = pdx3.presets.at(0);
    pdx3.set(row[0], row[1], row[2], row[3], row[4], static_cast<int>(state.range(0)));
    while (state.KeepRunning()) {
        pdx3.calcCoords();
        benchmark::DoNotOptimize(pdx3.points.constData());
    }
}

} // namespace

BENCHMARK(bareSines)->Unit(benchmark::kMicrosecond);
BENCHMARK(pass)->ArgName("mode")->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);
