#pragma once

// A sine for vectorised loops. Only for files that are compiled for one instruction set each: this header includes
// nothing, so that no inline function compiled for one processor ends up in a program that runs on another.

/// Returns the sine of `angle`, a float whose absolute value is 2^-149 to 2^22. Any other angle gives any double.
///
/// The relative error is less than 2^-50 (4 ulp), with or without fused multiply-add. SineErrorBenchmark measures it
/// for each of these floats.
///
/// - Cody-Waite argument reduction: k = round(angle / pi), |k| < 2^21; r = angle - k pi, with pi in three parts. r is
/// in
///   -pi/2 to pi/2, give or take a rounding error. The sine is sin(r) for an even k and -sin(r) for an odd k.
/// - sin(r): the Taylor series up to r^21. The series alternates, so the truncation error is less than the next term,
///   r^23 / 23! < 2^-59 sin(r). The rest of the error is rounding.
static inline double vectorSine(double angle)
{
    // The first two parts have at most 31 bits, so their products with k are exact.
    constexpr double pi1 = 0x1.921fb544p+1;
    constexpr double pi2 = 0x1.0b4611a0p-33;
    constexpr double pi3 = 0x1.898cc51701b84p-63;
    constexpr double oneByPi = 0x1.45f306dc9c883p-2;
    constexpr double roundingShift = 0x1.8p+52; // sums near it are rounded to whole numbers

    const double shifted = angle * oneByPi + roundingShift;
    const double k = shifted - roundingShift;
    const double r = ((angle - k * pi1) - k * pi2) - k * pi3;
    const double rr = r * r;

    double series = 1.0 / 51090942171709440000.0; // 1 / 21!
    series = series * rr - 1.0 / 121645100408832000.0;
    series = series * rr + 1.0 / 355687428096000.0;
    series = series * rr - 1.0 / 1307674368000.0;
    series = series * rr + 1.0 / 6227020800.0;
    series = series * rr - 1.0 / 39916800.0;
    series = series * rr + 1.0 / 362880.0;
    series = series * rr - 1.0 / 5040.0;
    series = series * rr + 1.0 / 120.0;
    series = series * rr - 1.0 / 6.0; // 1 / 3!
    double sine = r + r * rr * series;

    // The last bit of `shifted` is the last bit of k. Moved to the sign bit, it changes the sign for an odd k.
    unsigned long long bits = 0;
    unsigned long long bitsOfShifted = 0;
    __builtin_memcpy(&bits, &sine, sizeof bits);
    __builtin_memcpy(&bitsOfShifted, &shifted, sizeof bitsOfShifted);
    bits ^= bitsOfShifted << 63U;
    __builtin_memcpy(&sine, &bits, sizeof sine);
    return sine;
}
