// The vector kernel of dampedSines: a plain loop that compilers turn into vector instructions. This file is compiled
// once for each instruction set, under another name and with flags of its own, which may fuse multiplications and
// additions: see VectorSine.h.

#include "engine/VectorSine.h"

/// Sets displacements[i] to the end nearer to 0 of the interval in which sin(angles[i]) amplitudes[i] lies, rounded to
/// float, and doubtful[i] to 0 if the other end rounds to the same float, to 1 if not or if the angle is out of range.
/// Returns whether any is doubtful.
///
/// The interval is the product -+ 2^-49 of it. It holds the error of vectorSine, 2^-50, that of the C library's sine,
/// 2^-52, and the rounding of the product here and there and of the interval's end, 2^-53 each: together less than
/// 2^-49.
int PENDRIX_KERNEL(const float *__restrict angles, const float *__restrict amplitudes, float *__restrict displacements,
                   int *__restrict doubtful, int count)
{
    int anyDoubtful = 0;
    for (int i = 0; i < count; ++i) {
        const double product = vectorSine(static_cast<double>(angles[i])) * static_cast<double>(amplitudes[i]);
        const auto nearer = static_cast<float>(product * (1.0 - 0x1p-49));
        const auto farther = static_cast<float>(product * (1.0 + 0x1p-49));
        const float size = __builtin_fabsf(angles[i]);
        // False for NaN. A zero angle is left to the definition for the sign of its sine.
        const bool certain = (nearer == farther) & (size > 0.0F) & (size <= 0x1p+22F);
        displacements[i] = nearer;
        doubtful[i] = certain ? 0 : 1;
        anyDoubtful |= doubtful[i];
    }
    return anyDoubtful;
}
