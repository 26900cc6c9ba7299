#pragma once

// A sine for loops that compilers turn into vector instructions. To be included by files that are compiled for one
// instruction set each, so it includes nothing and belongs to each of them alone: no function compiled for one
// processor may end up in a program that runs on another.

/// The sine of `angle`, which must be a float of 2^-149 to 2^22 or the negative of one. Else the result is any double.
/// The error is less than 2^-50 of the sine (four units in the last place), also if multiplications and additions are
/// fused; SineErrorBenchmark computes it for each of these floats.
///
/// - k is the angle in half turns, rounded to a whole number, |k| < 2^21. r = angle - k pi lies between -pi/2 and pi/2,
///   but for a rounding, and the sine is sin(r) for an even k and -sin(r) for an odd one.
/// - sin(r) is its Taylor series up to r^21. The series alternates: what is left out is less than the next term,
///   r^23 / 23!, and that is less than 2^-59 sin(r). The rest of the error are roundings.
static inline double vectorSine(double angle)
{
    // pi in three parts: the first two have 31 bits at most, so that their products with k are exact.
    constexpr double pi1 = 0x1.921fb544p+1;
    constexpr double pi2 = 0x1.0b4611a0p-33;
    constexpr double pi3 = 0x1.898cc51701b84p-63;
    constexpr double oneByPi = 0x1.45f306dc9c883p-2;
    constexpr double roundingShift = 0x1.8p+52; // a sum near it has no room for a fraction

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

    // The last bit of `shifted` is that of k: moved to the place of the sign, it turns the sign for an odd k.
    unsigned long long bits = 0;
    unsigned long long bitsOfShifted = 0;
    __builtin_memcpy(&bits, &sine, sizeof bits);
    __builtin_memcpy(&bitsOfShifted, &shifted, sizeof bitsOfShifted);
    bits ^= bitsOfShifted << 63U;
    __builtin_memcpy(&sine, &bits, sizeof sine);
    return sine;
}
