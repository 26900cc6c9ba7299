#pragma once

#include <limits>

/// Returns `value` truncated toward zero, or `fallback` if it is NaN or the result does not fit an int.
///
/// Out of range, the conversion is undefined behaviour in C++, and table cells, clipboard and settings hold any float.
inline int truncatedOr(double value, int fallback)
{
    // The bounds are one beyond the int range and exact in double. NaN fails both comparisons.
    constexpr double below = static_cast<double>(std::numeric_limits<int>::min()) - 1.0;
    constexpr double above = static_cast<double>(std::numeric_limits<int>::max()) + 1.0;
    return value > below && value < above ? static_cast<int>(value) : fallback;
}
