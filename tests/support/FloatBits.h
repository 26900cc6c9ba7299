#pragma once

#include <QtGlobal>

#include <cmath>
#include <cstring>

/// Returns the bits of `value`.
inline quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Returns the bits of `value`.
inline quint64 bitsOf(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Returns the float with the given bits.
inline float floatOf(quint32 bits)
{
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Returns whether two floats or two doubles have the same bits, so that -0 differs from 0. All NaNs are equal, because
/// IEEE 754 does not specify which NaN an operation on NaNs returns.
template <typename Float>
bool sameFloat(Float a, Float b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

/// Returns a float with random bits from a generator of 32-bit numbers.
template <typename Generator>
float anyFloat(Generator &random)
{
    return floatOf(static_cast<quint32>(random()));
}
