#include "engine/DampedSine.h"

#include "color/FloatModel.h"

#include <algorithm>
#include <array>

// The kernels of DampedSineKernel.cpp; the build tells which there are.
using Kernel = int(const float *angles, const float *amplitudes, float *displacements, int *doubtful, int count);
Kernel dampedSineKernelBaseline;
Kernel dampedSineKernelAvx2;
Kernel dampedSineKernelAvx512;

namespace {

/// The kernel of `method`; null where there is none, or the processor cannot run it.
Kernel *kernelOf(DampedSineMethod method)
{
    switch (method) {
#ifdef PENDRIX_HAS_KERNEL_Baseline
    case DampedSineMethod::Baseline:
        return dampedSineKernelBaseline;
#endif
#ifdef PENDRIX_HAS_KERNEL_Avx2
    case DampedSineMethod::Avx2:
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? dampedSineKernelAvx2 : nullptr;
#endif
#ifdef PENDRIX_HAS_KERNEL_Avx512
    case DampedSineMethod::Avx512:
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                       __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("fma")
                   ? dampedSineKernelAvx512
                   : nullptr;
#endif
    default:
        return nullptr;
    }
}

DampedSineMethod fastestMethod()
{
    for (const auto method : {DampedSineMethod::Avx512, DampedSineMethod::Avx2, DampedSineMethod::Baseline}) {
        if (kernelOf(method))
            return method;
    }
    return DampedSineMethod::Library;
}

struct Way
{
    DampedSineMethod method;
    Kernel *kernel;
};

// A local, because the engine computes a curve before main.
Way &wayInUse()
{
    static Way way = {fastestMethod(), kernelOf(fastestMethod())};
    return way;
}

/// Puts the exact value where `doubtful` is not 0. Returns how many they were.
int settle(const float *angles, const float *amplitudes, float *displacements, const int *doubtful, int count)
{
    int settled = 0;
    for (int i = 0; i < count; ++i) {
        if (doubtful[i]) {
            displacements[i] = dampedSine(angles[i], amplitudes[i]);
            ++settled;
        }
    }
    return settled;
}

} // namespace

int dampedSines(const float *angles, const float *amplitudes, float *displacements, int count)
{
    Kernel *const kernel = wayInUse().kernel;
    if (!kernel) {
        for (int i = 0; i < count; ++i)
            displacements[i] = dampedSine(angles[i], amplitudes[i]);
        return count;
    }

    std::array<int, 256> doubtful; // NOLINT(*-member-init): the kernel fills it
    constexpr int blockLength = static_cast<int>(doubtful.size());
    int settled = 0;
    for (int first = 0; first < count; first += blockLength) {
        const int length = std::min(count - first, blockLength);
        if (kernel(angles + first, amplitudes + first, displacements + first, doubtful.data(), length))
            settled += settle(angles + first, amplitudes + first, displacements + first, doubtful.data(), length);
    }
    return settled;
}

bool isAvailable(DampedSineMethod method)
{
    return method == DampedSineMethod::Library || kernelOf(method);
}

DampedSineMethod dampedSineMethod()
{
    return wayInUse().method;
}

void setDampedSineMethod(DampedSineMethod method)
{
    if (isAvailable(method))
        wayInUse() = {method, kernelOf(method)};
}
