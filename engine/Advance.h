#pragma once

/// Returns the sum of `value` and `step`, added in double and rounded to float.
inline float advanced(float value, double step)
{
    return static_cast<float>(static_cast<double>(value) + step);
}
