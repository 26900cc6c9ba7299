// Measures the greatest error of the vector sine over every positive float of its range, about 1.25 billion, for each
// available instruction set. A negative angle gives the negative sine. Counts the sines of animated presets that are
// left to libm.
//
// SineErrorBenchmark [N] measures every Nth float, and fewer frames. The reference is the sine of a long double with 64
// bits or more, whose error is some 2000 times smaller. Exits with 1 if an error exceeds the bound.

#include "engine/DampedSine.h"
#include "engine/Pendrix3D.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

using Kernel = void(const float *angles, double *sines, int count);
Kernel vectorSinesBaseline;
Kernel vectorSinesAvx2;
Kernel vectorSinesAvx512;

namespace {

constexpr double bound = 0x1.cp-36;
constexpr float rangeEnd = 0x1p+22F;

struct Set
{
    const char *name;
    DampedSineMethod method;
    Kernel *kernel;
    double worst;
    float worstAngle;
};

std::vector<Set> availableSets()
{
    const std::vector<Set> all = {
#ifdef PENDRIX_HAS_KERNEL_Baseline
        {"baseline", DampedSineMethod::Baseline, vectorSinesBaseline, 0.0, 0.0F},
#endif
#ifdef PENDRIX_HAS_KERNEL_Avx2
        {"avx2", DampedSineMethod::Avx2, vectorSinesAvx2, 0.0, 0.0F},
#endif
#ifdef PENDRIX_HAS_KERNEL_Avx512
        {"avx512", DampedSineMethod::Avx512, vectorSinesAvx512, 0.0, 0.0F},
#endif
    };
    std::vector<Set> available;
    for (const Set &set : all) {
        if (isAvailable(set.method))
            available.push_back(set);
    }
    return available;
}

/// Compares the sines of `angles` by every set. Updates the worst errors of the sets.
void compare(const std::vector<float> &angles, std::vector<Set> &sets)
{
    std::vector<long double> exact(angles.size());
    for (std::size_t i = 0; i < angles.size(); ++i)
        exact[i] = std::sin(static_cast<long double>(angles[i]));
    std::vector<double> sines(angles.size());
    for (Set &set : sets) {
        set.kernel(angles.data(), sines.data(), static_cast<int>(angles.size()));
        for (std::size_t i = 0; i < angles.size(); ++i) {
            auto error = static_cast<double>(std::abs((static_cast<long double>(sines[i]) - exact[i]) / exact[i]));
            if (std::isnan(error))
                error = std::numeric_limits<double>::infinity();
            if (error > set.worst) {
                set.worst = error;
                set.worstAngle = angles[i];
            }
        }
    }
}

void reportFallbacks(const std::vector<Set> &sets, int framesOfPreset)
{
    std::printf("\nSines of animated presets left to libm (%d frames each):\n", framesOfPreset);
    for (const Set &set : sets) {
        setDampedSineMethod(set.method);
        long undecided = 0;
        long all = 0;
        std::vector<float> angles;
        std::vector<float> amplitudes;
        std::vector<float> displacements;
        for (int frame = 0; frame < 12 * framesOfPreset; ++frame) {
            if (frame % framesOfPreset == 0)
                pdx3.set(frame / framesOfPreset);
            const std::array<std::pair<float, float>, 3> axes = {
                {{0.0F, pdx3.freq2}, {pdx3.phase1 * pdx3.twoPi, pdx3.freq1}, {pdx3.phase2 * pdx3.twoPi, pdx3.freq3}}};
            angles.clear();
            amplitudes.clear();
            for (const auto &[offset, frequency] : axes) {
                float t = 0.0F;
                float amplitude = pdx3.total;
                for (int i = 0; i < pdx3.nPoints; ++i) {
                    t = static_cast<float>(static_cast<double>(t) + 0.02);
                    amplitude -= pdx3.step;
                    angles.push_back(offset + frequency * t);
                    amplitudes.push_back(amplitude);
                }
            }
            displacements.resize(angles.size());
            all += static_cast<long>(angles.size());
            undecided +=
                dampedSines(angles.data(), amplitudes.data(), displacements.data(), static_cast<int>(angles.size()));
            pdx3.freq1 = static_cast<float>(static_cast<double>(pdx3.freq1) + 0.0004);
            pdx3.freq3 = static_cast<float>(static_cast<double>(pdx3.freq3) + 0.0004);
        }
        std::printf("%-9s %ld of %ld\n", set.name, undecided, all);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (std::numeric_limits<long double>::digits < 64) {
        (void)std::fputs("SineErrorBenchmark: no reference: long double has less than 64 bits\n", stderr);
        return EXIT_FAILURE;
    }
    const long every = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1;
    const auto stride = static_cast<std::uint32_t>(std::clamp(every, 1L, 1000000L));
    std::uint32_t end = 0;
    std::memcpy(&end, &rangeEnd, sizeof end);

    std::vector<Set> sets = availableSets();
    constexpr std::size_t blockLength = 4096;
    std::vector<float> angles;
    long count = 0;
    for (std::uint32_t bits = 1; bits <= end; bits += stride) {
        float angle = 0.0F;
        std::memcpy(&angle, &bits, sizeof angle);
        angles.push_back(angle);
        ++count;
        if (angles.size() == blockLength || end - bits < stride) {
            compare(angles, sets);
            angles.clear();
        }
    }

    std::printf("Greatest relative error of the vector sine, %ld angles of 2^-149 to 2^22; bound 2^%.3f:\n", count,
                std::log2(bound));
    int outcome = EXIT_SUCCESS;
    for (const Set &set : sets) {
        std::printf("%-9s 2^%.3f = %.4f * 2^-36, at %.9g%s\n", set.name, std::log2(set.worst), set.worst * 0x1p+36,
                    static_cast<double>(set.worstAngle), set.worst < bound ? "" : "  EXCEEDS THE BOUND");
        if (!(set.worst < bound))
            outcome = EXIT_FAILURE;
    }
    reportFallbacks(sets, stride == 1 ? 1000 : 10);
    return outcome;
}
