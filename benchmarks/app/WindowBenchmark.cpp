// clazy:excludeall=non-pod-global-static (Google Benchmark registers benchmarks with them)

// Loading and saving the settings, copying and pasting the rows.
// Requires a display: scripts/on-virtual-display.sh WindowBenchmark

#include "app/Clipboard.h"
#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"

#include <QApplication>

#include <benchmark/benchmark.h>

namespace {

void loadSettings(benchmark::State &state)
{
    MainWindow window; // loads them once
    while (state.KeepRunning()) {
        state.PauseTiming();
        window.saveSettings(); // closes the settings file
        state.ResumeTiming();
        window.loadSettings();
    }
}

void saveSettings(benchmark::State &state)
{
    MainWindow window;
    while (state.KeepRunning()) {
        window.saveSettings();
        state.PauseTiming();
        window.loadSettings();
        state.ResumeTiming();
    }
}

void copyRows(benchmark::State &state)
{
    while (state.KeepRunning())
        copyParamsToClipboard(pdx3);
}

void pasteRows(benchmark::State &state)
{
    copyParamsToClipboard(pdx3);
    while (state.KeepRunning())
        pasteParamsFromClipboard(pdx3);
}

} // namespace

BENCHMARK(loadSettings)->Unit(benchmark::kMicrosecond);
BENCHMARK(saveSettings)->Unit(benchmark::kMicrosecond);
BENCHMARK(copyRows)->Unit(benchmark::kMicrosecond);
BENCHMARK(pasteRows)->Unit(benchmark::kMicrosecond);

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
