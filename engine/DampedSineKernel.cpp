// The vector kernel of dampedSines: a plain loop that compilers vectorise. The build compiles this file once for each
// instruction set, with a name in PENDRIX_KERNEL and flags that may fuse multiplications and additions.

#include "engine/DampedSineKernels.h"
#include "engine/VectorSine.h"

// Rounding test: both ends of an interval around the product round to the same float, or the product is undecided.
// The half-width 2^-35 covers the error of vectorSine (1.75 * 2^-36), that of libm's sine (2^-52), and the roundings of
// both products and of the interval's end (2^-53 each).
int PENDRIX_KERNEL(const float *__restrict angles, const float *__restrict amplitudes, float *__restrict displacements,
                   int *__restrict undecided, int count)
{
    int anyUndecided = 0;
    for (int i = 0; i < count; ++i) {
        const double product = vectorSine(static_cast<double>(angles[i])) * static_cast<double>(amplitudes[i]);
        const auto nearer = static_cast<float>(product * (1.0 - 0x1p-35));
        const auto farther = static_cast<float>(product * (1.0 + 0x1p-35));
        const float magnitude = __builtin_fabsf(angles[i]);
        // False for NaN.
        const bool decided = (nearer == farther) & (magnitude <= 0x1p+22F);
        displacements[i] = nearer;
        undecided[i] = decided ? 0 : 1;
        anyUndecided |= undecided[i];
    }
    return anyUndecided;
}
