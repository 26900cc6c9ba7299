#pragma once

#include <cmath>

/// Returns the displacement of an oscillator: the sine of `angle` (radians) times `amplitude`, computed in double and
/// rounded to float. NaN and infinities propagate as in IEEE 754.
inline float dampedSine(float angle, float amplitude)
{
    return static_cast<float>(std::sin(static_cast<double>(angle)) * static_cast<double>(amplitude));
}

/// Sets displacements[i] to dampedSine(angles[i], amplitudes[i]), exact to the bit, for i from 0 to `count` - 1. The
/// arrays must not overlap. Returns how many of the sines libm computed.
///
/// Fast path plus rounding test (Ziv): a vector kernel computes the product p of sine and amplitude with an error below
/// 2^-35 p. Where p (1 - 2^-35) and p (1 + 2^-35) round to the same float, so does the product with libm's sine,
/// because rounding is monotonic. Where they do not (about one product in 1400), and for angles that are NaN or beyond
/// 2^22, dampedSine decides. Assumes that libm's `sin` is accurate to 1 ulp (2^-52 relative).
int dampedSines(const float *angles, const float *amplitudes, float *displacements, int count);

/// The ways to compute damped sines. All give the same results.
enum class DampedSineMethod {
    Library,  ///< dampedSine for each value; always available
    Baseline, ///< the kernel for the build's target processor, for example any x86-64 with SSE2
    Avx2,     ///< the kernel for AVX2 and FMA
    Avx512,   ///< the kernel for AVX-512
};

/// Returns whether the build contains `method` and this processor can run it.
bool isAvailable(DampedSineMethod method);

/// Returns the method in use, initially the last available one.
DampedSineMethod dampedSineMethod();

/// Changes the method in use, for tests and benchmarks. Ignores a method that is not available.
void setDampedSineMethod(DampedSineMethod method);
