#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

/// Whether two floats are the same to the last bit, the sign of a zero included.
inline bool sameBits(float a, float b)
{
    std::uint32_t bitsOfA = 0;
    std::uint32_t bitsOfB = 0;
    std::memcpy(&bitsOfA, &a, sizeof a);
    std::memcpy(&bitsOfB, &b, sizeof b);
    return bitsOfA == bitsOfB;
}

/// Sets `values` to next(start), next(next(start)) and so on, `count` of them, to the last bit. Returns the last, or
/// `start` for a `count` below 1. `next` is a function of one float that always gives the same result.
///
/// Computed one after the other, each value has to wait for the one before it. But a sum that grows by a constant grows
/// by the same float at every step as long as its exponent stays. So a stretch of values is guessed from its first
/// step, and `next` tells of all of them at once whether the guess is right; where it is not, they are computed one by
/// one.
template <typename Next>
float fillSequence(float start, float *values, int count, Next next)
{
    constexpr int stretch = 64;
    for (int begin = 0; begin < count; begin += stretch) {
        const int end = std::min(begin + stretch, count);
        const float first = next(start);
        const float change = next(first) - first;
        for (int j = begin; j < end; ++j)
            values[j] = first + static_cast<float>(j - begin) * change;
        int wrong = sameBits(values[begin], first) ? 0 : 1;
        for (int j = begin + 1; j < end; ++j)
            wrong |= sameBits(values[j], next(values[j - 1])) ? 0 : 1;
        if (wrong) {
            for (int j = begin; j < end; ++j)
                values[j] = start = next(start);
        }
        start = values[end - 1];
    }
    return start;
}
