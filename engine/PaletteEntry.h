#pragma once

// Where on the palette a point takes its colour from. Plain arithmetic on single values, so that loops over it become
// vector instructions.

#include <cmath>

/// `place` without its whole turns of the palette, as std::fmod(place, 1.0) gives it but for the sign of a zero: in
/// [0, 1) for one that is not negative. Both steps are exact. Floats from 2^23 on are whole numbers; what is not finite
/// gives NaN.
inline float wrapped(float place)
{
    const bool hasFraction = std::abs(place) < 0x1p+23F;
    const int whole = static_cast<int>(hasFraction ? place : 0.0F);
    return place - (hasFraction ? static_cast<float>(whole) : place);
}

// The place of a point on the palette, in palette lengths.

/// Mode 0: from the first point `i` = 0 to the last of `nPoints`, 0 to 1.
inline float placeAlongCurve(int i, int nPoints)
{
    return static_cast<float>(i) / static_cast<float>(nPoints);
}

/// Mode 1: from -`total` to `total`, 0 to 1; `total` itself is 0 again.
inline float placeByHeight(float z, float total)
{
    return wrapped(z / (total + total) + 0.5F);
}

/// Mode 2: 1.5 for a distance of `radiusScale` from the centre.
inline float placeByRadius(float x, float y, float z, float radiusScale)
{
    return std::sqrt(x * x + y * y + z * z) / radiusScale * 1.5F;
}

/// Modes 3 and 4: 0 to 1 in each `period` of time.
inline float placeByTime(float t, float period)
{
    return wrapped(t / period);
}

/// Any other mode: the whole curve has one place.
constexpr float placeOfOtherModes = 1.0F;

/// The entry of a palette of `size` colours at `place`, where one of `size` or more goes round it again. A place
/// that is negative or not finite or gives no int has no place on the palette and takes entry 0.
inline int entryAt(float place, int size)
{
    const float entry = static_cast<float>(size) * place;
    return static_cast<int>(entry > 0.0F && entry < 0x1p+31F ? entry : 0.0F);
}
