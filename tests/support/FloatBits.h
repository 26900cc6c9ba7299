#pragma once

#include <QtGlobal>

#include <cmath>
#include <cstring>

/// The bits of `value`.
inline quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// The bits of `value`.
inline quint64 bitsOf(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// The float with these bits.
inline float floatOf(quint32 bits)
{
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Whether two floats or two doubles have the same bits, so that -0 differs from 0. Any NaN equals any other, for IEEE
/// 754 leaves open which one an operation on NaNs gives.
template <typename Float>
bool sameFloat(Float a, Float b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

/// A float of any bits, from a generator of 32-bit numbers.
template <typename Generator>
float anyFloat(Generator &random)
{
    return floatOf(static_cast<quint32>(random()));
}
