#include "engine/DampedSine.h"

#include "engine/DampedSineKernels.h"
#include "numerics/FloatModel.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

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

/// Returns the index of the first 1 among `flags`, from index `begin` on, or `end` if there is none. The other flags
/// are 0. Calls memchr because compilers do not vectorise a search loop.
int nextUndecided(const int *flags, int begin, int end)
{
    const auto *const bytes = reinterpret_cast<const char *>(flags + begin);
    const void *const found = std::memchr(bytes, 1, static_cast<std::size_t>(end - begin) * sizeof *flags);
    if (!found)
        return end;
    return begin + static_cast<int>((static_cast<const char *>(found) - bytes) / std::ptrdiff_t{sizeof *flags});
}

} // namespace

int dampedSines(const float *angles, const float *amplitudes, float *displacements, int count)
{
    int computed = 0;
    const auto computeByLibm = [&](int i) {
        displacements[i] = dampedSine(angles[i], amplitudes[i]);
        ++computed;
    };
    DampedSineKernel *const kernel = kernelOf(methodInUse());
    if (!kernel) {
        for (int i = 0; i < count; ++i)
            computeByLibm(i);
        return computed;
    }
    constexpr int blockLength = 256;
    int undecided[blockLength];
    for (int first = 0; first < count; first += blockLength) {
        const int length = std::min(count - first, blockLength);
        if (!kernel(angles + first, amplitudes + first, displacements + first, undecided, length))
            continue;
        for (int i = nextUndecided(undecided, 0, length); i < length; i = nextUndecided(undecided, i + 1, length))
            computeByLibm(first + i);
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
