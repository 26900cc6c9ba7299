#include "engine/DampedSine.h"

#include "numerics/FloatModel.h"

#include <algorithm>
#include <array>
#include <initializer_list>

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

struct MethodInUse
{
    DampedSineMethod method;
    Kernel *kernel;
};

// A local, because the engine computes a curve before main.
MethodInUse &methodInUse()
{
    static MethodInUse inUse = {fastestMethod(), kernelOf(fastestMethod())};
    return inUse;
}

/// Computes the displacements whose `doubtful` is not 0 as they are defined. Returns how many they were.
int computeDoubtful(const float *angles, const float *amplitudes, float *displacements, const int *doubtful, int count)
{
    int computed = 0;
    for (int i = 0; i < count; ++i) {
        if (doubtful[i]) {
            displacements[i] = dampedSine(angles[i], amplitudes[i]);
            ++computed;
        }
    }
    return computed;
}

} // namespace

int dampedSines(const float *angles, const float *amplitudes, float *displacements, int count)
{
    Kernel *const kernel = methodInUse().kernel;
    if (!kernel) {
        for (int i = 0; i < count; ++i)
            displacements[i] = dampedSine(angles[i], amplitudes[i]);
        return count;
    }

    std::array<int, 256> doubtful; // NOLINT(*-member-init): the kernel fills it
    constexpr int blockLength = static_cast<int>(doubtful.size());
    int computed = 0;
    for (int first = 0; first < count; first += blockLength) {
        const int length = std::min(count - first, blockLength);
        if (kernel(angles + first, amplitudes + first, displacements + first, doubtful.data(), length))
            computed +=
                computeDoubtful(angles + first, amplitudes + first, displacements + first, doubtful.data(), length);
    }
    return computed;
}

bool isAvailable(DampedSineMethod method)
{
    return method == DampedSineMethod::Library || kernelOf(method);
}

DampedSineMethod dampedSineMethod()
{
    return methodInUse().method;
}

void setDampedSineMethod(DampedSineMethod method)
{
    if (isAvailable(method))
        methodInUse() = {method, kernelOf(method)};
}
