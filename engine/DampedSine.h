#pragma once

#include <cmath>

/// The displacement of an oscillator: the sine of the float `angle` (radians), damped by `amplitude`, in double and
/// rounded to float. What is not finite comes out as the arithmetic gives it.
inline float dampedSine(float angle, float amplitude)
{
    return static_cast<float>(std::sin(static_cast<double>(angle)) * static_cast<double>(amplitude));
}

/// Many damped sines at once: `displacements[i]` becomes `dampedSine(angles[i], amplitudes[i])`, to the last bit, for
/// i from 0 to `count` - 1. The arrays must not overlap. Returns how many sines were left to the C library.
///
/// How it is fast and still exact: a vector kernel (DampedSineKernel.cpp) computes the product `p` of sine and
/// amplitude for several angles at a time, with an error that is known to be less than `p` / 2^49. So the true product,
/// and the one that dampedSine computes from the C library's sine, lie between p (1 - 2^-49) and p (1 + 2^-49).
/// Rounding never changes the order of two numbers: where both ends of that interval round to the same float,
/// everything between them does, too. Where they do not (about one product in twenty million), and for angles that are
/// 0, beyond 2^22 or NaN, dampedSine is asked. Of the C library's sine this takes that it is at most 2^-52 of it off.
int dampedSines(const float *angles, const float *amplitudes, float *displacements, int count);

/// The ways to compute them, which give the same results. Each processor has the first one.
enum class DampedSineMethod {
    Library,  ///< dampedSine, one by one
    Baseline, ///< the kernel for the processor that the build is for, such as SSE2 of any x86-64
    Avx2,     ///< the kernel for AVX2 and FMA
    Avx512,   ///< the kernel for AVX-512
};

/// Whether `method` is in this build and this processor can do it.
bool isAvailable(DampedSineMethod method);

/// The method in use: at first the last one that is available.
DampedSineMethod dampedSineMethod();

/// Changes the method in use, for tests and benchmarks. One that is not available changes nothing.
void setDampedSineMethod(DampedSineMethod method);
