#pragma once

#include <limits>

/// `value` truncated toward zero, or `otherwise` when it is NaN or the truncated value does not fit an int.
///
/// The language leaves such a conversion undefined, and a table cell, the clipboard or the settings may hold any
/// float. Widening a float to the argument is exact.
inline int truncatedOr(double value, int otherwise)
{
    // The bounds are the neighbours of the int range and exact in double; a NaN fails both comparisons.
    constexpr double below = static_cast<double>(std::numeric_limits<int>::min()) - 1.0;
    constexpr double above = static_cast<double>(std::numeric_limits<int>::max()) + 1.0;
    return value > below && value < above ? static_cast<int>(value) : otherwise;
}
