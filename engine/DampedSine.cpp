#include "engine/DampedSine.h"

#include "engine/DampedSineKernels.h"
#include "numerics/FloatModel.h"

#include <algorithm>

namespace {

/// Returns the kernel of `method`, or null if the build has none or the processor cannot run it.
DampedSineKernel *kernelOf(DampedSineMethod method)
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

// A function-local static because the engine computes a curve before main.
DampedSineMethod &methodInUse()
{
    static DampedSineMethod method = fastestMethod();
    return method;
}

} // namespace

int dampedSines(const float *angles, const float *amplitudes, float *displacements, int count)
{
    DampedSineKernel *const kernel = kernelOf(methodInUse());
    constexpr int blockLength = 256;
    int undecided[blockLength];
    int computed = 0;
    for (int first = 0; first < count; first += blockLength) {
        const int length = std::min(count - first, blockLength);
        if (kernel && !kernel(angles + first, amplitudes + first, displacements + first, undecided, length))
            continue;
        for (int i = 0; i < length; ++i) {
            if (!kernel || undecided[i]) {
                displacements[first + i] = dampedSine(angles[first + i], amplitudes[first + i]);
                ++computed;
            }
        }
    }
    return computed;
}

bool isAvailable(DampedSineMethod method)
{
    return method == DampedSineMethod::Library || kernelOf(method);
}

DampedSineMethod dampedSineMethod()
{
    return methodInUse();
}

void setDampedSineMethod(DampedSineMethod method)
{
    if (isAvailable(method))
        methodInUse() = method;
}
