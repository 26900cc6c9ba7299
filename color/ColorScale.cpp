#include "color/ColorScale.h"

#include "numerics/FloatModel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

struct Hls
{
    double h;
    double l;
    double s;
};

// Intermediate triples of the two HLS blends, not read between calls.
Hls pair[2];
Hls triple[3];
double tripleSum;

int red(unsigned int c)
{
    return static_cast<int>((c >> 16U) & 0xFFU);
}

int green(unsigned int c)
{
    return static_cast<int>((c >> 8U) & 0xFFU);
}

int blue(unsigned int c)
{
    return static_cast<int>(c & 0xFFU);
}

/// Returns the low 8 bits of the integer part of `value`. NaN and infinities give 0.
unsigned int byteOf(double value)
{
    // From 2^63 on a double is a multiple of 2^11, so its low 8 bits are 0. Below, the conversion is defined.
    constexpr double twoTo63 = 9223372036854775808.0;
    if (!(std::fabs(value) < twoTo63))
        return 0;
    return static_cast<unsigned int>(static_cast<std::int64_t>(value) & 0xFF);
}

unsigned int packed(unsigned int r, unsigned int g, unsigned int b)
{
    return r << 16U | g << 8U | b;
}

/// Clamps a weight to 0 to 1. Returns a NaN unchanged.
float clamped(float weight)
{
    if (weight < 0.0F)
        return 0.0F;
    if (weight > 1.0F)
        return 1.0F;
    return weight;
}

unsigned int blendedChannel(int from, int to, float t)
{
    const float value = static_cast<float>(to - from) * t + static_cast<float>(from);
    return byteOf(static_cast<double>(value) + 0.5);
}

double lerp(double from, double to, double t)
{
    return (to - from) * t + from;
}

/// The three weights of a mean, clamped to 0 to 1, and their sum.
struct Weights
{
    Weights(float weight0, float weight1, float weight2)
        : w0(clamped(weight0)), w1(clamped(weight1)), w2(clamped(weight2)), sum((w0 + w1) + w2)
    {
    }

    unsigned int meanChannel(int a, int b, int c) const
    {
        const float value = static_cast<float>(c) * w2 + (static_cast<float>(b) * w1 + static_cast<float>(a) * w0);
        return byteOf(static_cast<double>(value) / static_cast<double>(sum) + 0.5);
    }

    /// Returns the weighted sum, not divided by the sum of the weights.
    double weighted(double a, double b, double c) const
    {
        return c * static_cast<double>(w2) + (b * static_cast<double>(w1) + a * static_cast<double>(w0));
    }

    float w0;
    float w1;
    float w2;
    float sum;
};

/// Returns the value of the channel at hue `x`. `m1` is the lowest and `m2` the highest value of the three channels.
double channelAt(double x, double m1, double m2)
{
    if (x < 0.0)
        x = x + 1.0;
    if (x > 1.0)
        x = x - 1.0;

    if (6.0 * x < 1.0)
        return x * (m2 - m1) * 6.0 + m1;
    if (2.0 * x < 1.0)
        return m2;
    if (3.0 * x < 2.0)
        return (2.0 / 3.0 - x) * (m2 - m1) * 6.0 + m1;
    return m1;
}

} // namespace

unsigned int ColorScaleRGB(unsigned int c0, unsigned int c1, float t)
{
    if (t <= 0.0F)
        return c0;
    if (t >= 1.0F)
        return c1;
    return packed(blendedChannel(red(c0), red(c1), t), blendedChannel(green(c0), green(c1), t),
                  blendedChannel(blue(c0), blue(c1), t));
}

unsigned int ColorScaleHSL(unsigned int c0, unsigned int c1, float t)
{
    if (t <= 0.0F)
        return c0;
    if (t >= 1.0F)
        return c1;

    RGBtoHLS(c0, pair[0].h, pair[0].l, pair[0].s);
    RGBtoHLS(c1, pair[1].h, pair[1].l, pair[1].s);
    const auto fraction = static_cast<double>(t);
    return HLStoRGB(lerp(pair[0].h, pair[1].h, fraction), lerp(pair[0].l, pair[1].l, fraction),
                    lerp(pair[0].s, pair[1].s, fraction));
}

unsigned int ColorScaleRGB3(unsigned int c0, unsigned int c1, unsigned int c2, float w0, float w1, float w2)
{
    const Weights weights(w0, w1, w2);
    if (weights.sum == 0.0F)
        return c0;
    return packed(weights.meanChannel(red(c0), red(c1), red(c2)), weights.meanChannel(green(c0), green(c1), green(c2)),
                  weights.meanChannel(blue(c0), blue(c1), blue(c2)));
}

unsigned int ColorScaleHSL3(unsigned int c0, unsigned int c1, unsigned int c2, float w0, float w1, float w2)
{
    const Weights weights(w0, w1, w2);
    tripleSum = static_cast<double>(weights.sum);
    if (tripleSum == 0.0)
        return c0;

    RGBtoHLS(c0, triple[0].h, triple[0].l, triple[0].s);
    RGBtoHLS(c1, triple[1].h, triple[1].l, triple[1].s);
    RGBtoHLS(c2, triple[2].h, triple[2].l, triple[2].s);
    return HLStoRGB(weights.weighted(triple[0].h, triple[1].h, triple[2].h) / tripleSum,
                    weights.weighted(triple[0].l, triple[1].l, triple[2].l) / tripleSum,
                    weights.weighted(triple[0].s, triple[1].s, triple[2].s) / tripleSum);
}

void RGBtoHLS(unsigned int c, double &h, double &l, double &s)
{
    const double r = red(c) / 255.0;
    const double g = green(c) / 255.0;
    const double b = blue(c) / 255.0;
    const double max = std::max({r, g, b});
    const double min = std::min({r, g, b});

    l = 0.5 * (max + min);
    if (max == min) {
        h = 0.0;
        s = 0.0;
        return;
    }

    const double d = max - min;
    s = l < 0.5 ? d / (max + min) : d / (2.0 - max - min);

    double sixths = 0.0;
    if (r == max)
        sixths = (g - b) / d;
    else if (g == max)
        sixths = (b - r) / d + 2.0;
    else
        sixths = (r - g) / d + 4.0;

    h = sixths / 6.0;
    if (h < 0.0)
        h = h + 1.0;
}

unsigned int HLStoRGB(double h, double l, double s)
{
    if (s == 0.0)
        return byteOf(l * 255.0) * 0x010101U;

    const double m2 = l <= 0.5 ? l * (s + 1.0) : (l + s) - s * l;
    const double m1 = 2.0 * l - m2;
    constexpr double third = 1.0 / 3.0;
    return packed(byteOf(channelAt(h + third, m1, m2) * 255.0), byteOf(channelAt(h, m1, m2) * 255.0),
                  byteOf(channelAt(h - third, m1, m2) * 255.0));
}
