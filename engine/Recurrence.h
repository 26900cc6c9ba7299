#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

/// Returns whether two floats have the same bits, so that -0 differs from 0.
inline bool sameBits(float a, float b)
{
    std::uint32_t bitsOfA = 0;
    std::uint32_t bitsOfB = 0;
    std::memcpy(&bitsOfA, &a, sizeof a);
    std::memcpy(&bitsOfB, &b, sizeof b);
    return bitsOfA == bitsOfB;
}

/// Fills `values` with next(start), next(next(start)) and so on, `count` values, exact to the bit. Returns the last
/// value, or `start` for a `count` below 1. `next` must be a pure function of one float.
///
/// Breaks the loop-carried dependency by speculation: extrapolates a chunk linearly, verifies it in a vectorisable
/// loop, and recomputes it serially on a mismatch. The extrapolation of a sum with a constant step is exact while the
/// exponent stays the same.
template <typename Next>
float fillRecurrence(float start, float *values, int count, Next next)
{
    constexpr int chunkLength = 64;
    for (int begin = 0; begin < count; begin += chunkLength) {
        const int end = std::min(begin + chunkLength, count);
        const float first = next(start);
        const float change = next(first) - first;
        for (int j = begin; j < end; ++j)
            values[j] = first + static_cast<float>(j - begin) * change;
        int mismatch = sameBits(values[begin], first) ? 0 : 1;
        for (int j = begin + 1; j < end; ++j)
            mismatch |= sameBits(values[j], next(values[j - 1])) ? 0 : 1;
        if (mismatch) {
            for (int j = begin; j < end; ++j)
                values[j] = start = next(start);
        }
        start = values[end - 1];
    }
    return start;
}
