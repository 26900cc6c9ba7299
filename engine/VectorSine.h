#pragma once

// A sine for vectorised loops. Only for files that are compiled for one instruction set each: this header includes
// nothing, so that no inline function compiled for one processor ends up in a program that runs on another.

/// Returns the sine of `angle`, a float whose absolute value is at most 2^22. For other angles, the
/// result is unspecified. Keeps the sign of a zero.
///
/// The relative error is less than 1.75 * 2^-36, with or without fused multiply-add. SineErrorBenchmark measures it for
/// each of these floats.
///
/// - Cody-Waite argument reduction: k = round(angle / pi), |k| < 2^21; r = angle - k pi, with pi in two parts. r is in
///   -pi/2 to pi/2, give or take a rounding error. The sine is sin(r) for an even k and -sin(r) for an odd k.
/// - sin(r): the odd minimax polynomial of degree 11 with the leading coefficient 1. Its largest relative error is
///   2^-35.3. scripts/sine-coefficients.py computes the coefficients with the Remez algorithm.
static inline double vectorSine(double angle)
{
    constexpr double pi1 = 0x1.921fb544p+1; // 31 bits: the product with k is exact
    constexpr double pi2 = 0x1.0b4611a626331p-33;
    constexpr double inversePi = 0x1.45f306dc9c883p-2;
    constexpr double roundingShift = 0x1.8p+52; // sums near it are rounded to whole numbers

    const double shifted = angle * inversePi + roundingShift;
    const double k = shifted - roundingShift;
    const double r = (angle - k * pi1) - k * pi2;
    const double rr = r * r;

    double factor = -0x1.9a688603e60a4p-26; // of r^11
    factor = factor * rr + 0x1.717080112a4cfp-19;
    factor = factor * rr - 0x1.a017d99fb14c7p-13;
    factor = factor * rr + 0x1.11110c49ff485p-7;
    factor = factor * rr - 0x1.5555554769607p-3;
    factor = factor * rr + 1.0;
    double sine = r * factor; // a product, because the sum r + r * rr * ... would lose the sign of -0

    // The last bit of `shifted` is the last bit of k. Moved to the sign bit, it changes the sign for an odd k.
    unsigned long long bits = 0;
    unsigned long long bitsOfShifted = 0;
    __builtin_memcpy(&bits, &sine, sizeof bits);
    __builtin_memcpy(&bitsOfShifted, &shifted, sizeof bitsOfShifted);
    bits ^= bitsOfShifted << 63U;
    __builtin_memcpy(&sine, &bits, sizeof sine);
    return sine;
}
