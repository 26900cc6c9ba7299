#include "color/ColorScale.h"

#include "tests/support/SampleSize.h"

#include <QtTest>

#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace {

using Channels = std::array<int, 3>;
using Triple = std::array<double, 3>;

Channels channelsOf(unsigned int c)
{
    const unsigned int low = c % 0x1000000U;
    return {static_cast<int>(low / 0x10000U), static_cast<int>(low / 0x100U % 0x100U), static_cast<int>(low % 0x100U)};
}

unsigned int colorOf(const Channels &channels)
{
    return static_cast<unsigned int>((channels[0] * 256 + channels[1]) * 256 + channels[2]);
}

/// Returns the low 8 bits of the integer part of `value`, computed with fmod; 0 for NaN and infinities.
int lowByte(double value)
{
    if (!std::isfinite(value))
        return 0;
    const double rest = std::fmod(std::trunc(value), 256.0);
    return static_cast<int>(rest < 0.0 ? rest + 256.0 : rest);
}

/// Returns the HLS triple of `c` by sectors of the hue: the index of the largest channel selects the sector, and the
/// other two channels, in cyclic order, give the offset in it.
Triple hlsOf(unsigned int c)
{
    const Channels bytes = channelsOf(c);
    const Triple v = {bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0};
    std::size_t largest = 0;
    std::size_t smallest = 0;
    for (std::size_t k = 1; k < 3; ++k) {
        if (bytes[k] > bytes[largest])
            largest = k;
        if (bytes[k] < bytes[smallest])
            smallest = k;
    }
    const double high = v[largest];
    const double low = v[smallest];
    const double lightness = 0.5 * (high + low);
    if (bytes[largest] == bytes[smallest])
        return {0.0, lightness, 0.0};
    const double range = high - low;
    const double saturation = lightness < 0.5 ? range / (high + low) : range / (2.0 - high - low);
    const double offset = (v[(largest + 1) % 3] - v[(largest + 2) % 3]) / range;
    const double hue = (largest == 0 ? offset : offset + 2.0 * static_cast<double>(largest)) / 6.0;
    return {hue < 0.0 ? hue + 1.0 : hue, lightness, saturation};
}

unsigned int rgbOf(const Triple &hls)
{
    const auto [h, l, s] = hls;
    if (s == 0.0) {
        const int grey = lowByte(l * 255.0);
        return colorOf({grey, grey, grey});
    }
    const double m2 = l <= 0.5 ? l * (s + 1.0) : (l + s) - s * l;
    const double m1 = 2.0 * l - m2;
    const std::array<double, 3> hues = {h + 0.33333333333333331, h, h - 0.33333333333333331};
    Channels out = {};
    for (std::size_t k = 0; k < 3; ++k) {
        double x = hues[k];
        x += x < 0.0 ? 1.0 : 0.0;
        x -= x > 1.0 ? 1.0 : 0.0;
        double value = m1;
        if (x * 3.0 < 2.0)
            value = (0.66666666666666663 - x) * (m2 - m1) * 6.0 + m1;
        if (x * 2.0 < 1.0)
            value = m2;
        if (x * 6.0 < 1.0)
            value = x * (m2 - m1) * 6.0 + m1;
        out[k] = lowByte(value * 255.0);
    }
    return colorOf(out);
}

float clampedWeight(float w)
{
    return w < 0.0F ? 0.0F : (w > 1.0F ? 1.0F : w);
}

QByteArray hex(unsigned int c)
{
    return QByteArray("0x") + QByteArray::number(c, 16).rightJustified(8, '0');
}

/// Returns the results of RGBtoHLS.
Triple converted(unsigned int c)
{
    Triple hls = {-1.0, -1.0, -1.0};
    RGBtoHLS(c, hls[0], hls[1], hls[2]);
    return hls;
}

} // namespace

#define COMPARE_COLORS(actual, expected) QCOMPARE(hex(actual), hex(expected))

class ColorScaleTest : public QObject
{
    Q_OBJECT

    std::mt19937 random{20240611};

    unsigned int randomColor() { return static_cast<unsigned int>(random()); }
    float randomBetween(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); }

private slots:
    void blendsKnownColors()
    {
        COMPARE_COLORS(ColorScaleRGB(0x000000, 0xFFFFFF, 0.5F), 0x808080U);
        COMPARE_COLORS(ColorScaleHSL(0x000000, 0xFFFFFF, 0.5F), 0x7F7F7FU);
        COMPARE_COLORS(ColorScaleHSL(0x0000FF, 0xFF0000, 0.25F), 0x00FEFFU);
        COMPARE_COLORS(ColorScaleHSL(0x0000FF, 0xFF0000, 0.5F), 0x00FF00U);
        COMPARE_COLORS(ColorScaleHSL(0x0000FF, 0xFF0000, 0.75F), 0xFFFE00U);
        COMPARE_COLORS(ColorScaleHSL(0x0000FF, 0xFF0000, 1.0F / 512.0F), 0x0001FFU);
        COMPARE_COLORS(ColorScaleHSL(0x0000FF, 0xFF0000, 511.0F / 512.0F), 0xFF0100U);
        COMPARE_COLORS(ColorScaleHSL(0xFF0000, 0x0000FF, 0.5F), 0x00FF00U);
        COMPARE_COLORS(ColorScaleRGB3(0xFF0000, 0x00FF00, 0x0000FF, 1.0F, 1.0F, 1.0F), 0x555555U);
        COMPARE_COLORS(ColorScaleHSL3(0xFF0000, 0x00FF00, 0x0000FF, 1.0F, 1.0F, 1.0F), 0x00FF00U);
        // A blend clears the top byte.
        COMPARE_COLORS(ColorScaleRGB(0xFF000000, 0xFFFFFFFF, 0.5F), 0x00808080U);
        COMPARE_COLORS(ColorScaleHSL(0xFF000000, 0xFFFFFFFF, 0.5F), 0x007F7F7FU);
        COMPARE_COLORS(ColorScaleRGB3(0xFF102030, 0xFF405060, 0xFF708090, 5.0F, 0.0F, 0.0F), 0x00102030U);
    }

    void sumsAreRoundedToFloatInOrder()
    {
        // 0.49999997 + 0.5 is below 1 in double and 1 in float.
        COMPARE_COLORS(ColorScaleRGB(0x000000, 0x010101, 0.49999997F), 0x000000U);
        // Another order of the sums would change a channel.
        COMPARE_COLORS(ColorScaleRGB3(0x8D9282, 0xCF0825, 0x20DBFA, 0x1.62a1f6p-3F, 0x1.1cfd14p-1F, 0x1.660fb6p-1F),
                       0x718098U);
        COMPARE_COLORS(ColorScaleRGB3(0x0A8882, 0xD992E2, 0x8185CE, 0x1.8a37a4p-1F, 0x1.6e7d74p-2F, 0x1.59311p-1F),
                       0x6089B1U);
        COMPARE_COLORS(ColorScaleRGB3(0x0000D5, 0x0000E3, 0x00003F, 0.1F, 0.1F, 0.2F), 141U);
        COMPARE_COLORS(ColorScaleHSL3(0x0A493A, 0xDCAB78, 0xAD6EAD, 0x1.27c1ccp-1F, 0x1.b8ace6p-1F, 0x1.f182aap-4F),
                       0x5AC32CU);
        // The smallest weight counts.
        const float smallest = std::numeric_limits<float>::denorm_min();
        COMPARE_COLORS(ColorScaleRGB3(0xAA102030, 0, 0, smallest, 0.0F, 0.0F), 0x00102030U);
    }

    void endColorsKeepTheirTopByte()
    {
        for (const auto blend : {ColorScaleRGB, ColorScaleHSL}) {
            for (const float t : {0.0F, -0.0F, -1.0F, -1e38F, -std::numeric_limits<float>::infinity()})
                COMPARE_COLORS(blend(0xAB123456, 0xCD654321, t), 0xAB123456U);
            for (const float t : {1.0F, 1.5F, 1e38F, std::numeric_limits<float>::infinity()})
                COMPARE_COLORS(blend(0xAB123456, 0xCD654321, t), 0xCD654321U);
        }
    }

    void zeroWeightsReturnFirstColor()
    {
        for (const auto blend : {ColorScaleRGB3, ColorScaleHSL3}) {
            COMPARE_COLORS(blend(0xAB123456, 0x00FF00, 0x0000FF, 0.0F, -1.0F, 0.0F), 0xAB123456U);
            COMPARE_COLORS(blend(0xAB123456, 0x00FF00, 0x0000FF, -1e38F, -0.0F, 0.0F), 0xAB123456U);
        }
    }

    void weightsAboveOneAreClamped()
    {
        for (const auto blend : {ColorScaleRGB3, ColorScaleHSL3}) {
            COMPARE_COLORS(blend(0xFF8000, 0x20FF00, 0x0000FF, 3.0F, 0.5F, 1e38F),
                           blend(0xFF8000, 0x20FF00, 0x0000FF, 1.0F, 0.5F, 1.0F));
        }
    }

    void convertsKnownColors()
    {
        QVERIFY(converted(0xFFFFFF) == (Triple{0.0, 1.0, 0.0}));
        QVERIFY(converted(0x0000FF) == (Triple{2.0 / 3.0, 0.5, 1.0}));
        QVERIFY(converted(0xFF0000) == (Triple{0.0, 0.5, 1.0}));
        QVERIFY(converted(0xFF00FF) == (Triple{5.0 / 6.0, 0.5, 1.0}));
        QVERIFY(converted(0x99000000) == (Triple{0.0, 0.0, 0.0}));
        QVERIFY(converted(0x333333) == (Triple{0.0, 0.2, 0.0}));
        const auto [h, l, s] = converted(0xC86432);
        COMPARE_COLORS(HLStoRGB(h, l, s), 0xC86431U);
        COMPARE_COLORS(HLStoRGB(0.0, 1.0, 0.0), 0xFFFFFFU);
    }

    void lightnessOutOfRangeKeepsItsLowByte()
    {
        COMPARE_COLORS(HLStoRGB(0.0, 2.0, 0.0), 0xFEFEFEU);   // 510 = 0x1FE
        COMPARE_COLORS(HLStoRGB(0.0, -0.01, 0.0), 0xFEFEFEU); // -2.55 becomes -2
        COMPARE_COLORS(HLStoRGB(0.0, 12345678.9, 0.0), 0x979797U);
        COMPARE_COLORS(HLStoRGB(0.0, -12345678.9, 0.0), 0x696969U);
        COMPARE_COLORS(HLStoRGB(0.0, 1e12 + 0.7, 0.0), 0xB2B2B2U);
        COMPARE_COLORS(HLStoRGB(0.0, 3e13 + 0.1, 0.0), 0x1A1A1AU);
        COMPARE_COLORS(HLStoRGB(0.0, 1e300, 0.0), 0U);
    }

    void nonFiniteArgumentsHaveDefinedResults()
    {
        const float nan = std::numeric_limits<float>::quiet_NaN();
        COMPARE_COLORS(ColorScaleRGB(0x123456, 0x654321, nan), 0U);
        COMPARE_COLORS(ColorScaleHSL(0x123456, 0x654321, nan), 0U);
        COMPARE_COLORS(ColorScaleRGB3(0x123456, 0x654321, 0x111111, nan, 1.0F, 0.0F), 0U);
        COMPARE_COLORS(ColorScaleHSL3(0x123456, 0x654321, 0x111111, 0.0F, nan, 1.0F), 0U);

        const double inf = std::numeric_limits<double>::infinity();
        for (const double h : {0.5, -inf, inf, double(nan), 1e300}) {
            for (const double l : {0.5, -inf, inf, double(nan), 1e300}) {
                for (const double s : {0.0, 0.5, -inf, inf, double(nan), 1e300})
                    COMPARE_COLORS(HLStoRGB(h, l, s), rgbOf({h, l, s}));
            }
        }
    }

    void randomColorsMatchReferenceConversions()
    {
        for (int k = 0; k < sampleSize(10000, 1000000); ++k) {
            const unsigned int c = randomColor();
            const Triple hls = converted(c);
            QVERIFY2(hls == hlsOf(c), hex(c));
            QVERIFY(hls[0] >= 0.0 && hls[0] < 1.0);
            const unsigned int back = HLStoRGB(hls[0], hls[1], hls[2]);
            COMPARE_COLORS(back, rgbOf(hls));

            // The round trip lowers a channel by one unit at most.
            const Channels in = channelsOf(c);
            const Channels out = channelsOf(back);
            for (std::size_t channel = 0; channel < 3; ++channel)
                QVERIFY2(out[channel] == in[channel] || out[channel] == in[channel] - 1, hex(c));
        }
    }

    void randomTriplesMatchReference()
    {
        std::uniform_real_distribution<double> wide(-1.5, 2.5);
        for (int k = 0; k < sampleSize(10000, 1000000); ++k) {
            const Triple hls = {wide(random), wide(random), k % 10 ? wide(random) : 0.0};
            COMPARE_COLORS(HLStoRGB(hls[0], hls[1], hls[2]), rgbOf(hls));
        }
    }

    void randomBlendsMatchReference()
    {
        for (int k = 0; k < sampleSize(10000, 1000000); ++k) {
            const unsigned int c0 = randomColor();
            const unsigned int c1 = randomColor();
            const float t = k % 16 ? randomBetween(0.0F, 1.0F) : std::ldexp(randomBetween(0.5F, 1.0F), -k % 149);
            if (!(t > 0.0F && t < 1.0F))
                continue;

            Channels rgb = {};
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const float a = static_cast<float>(channelsOf(c0)[channel]);
                const float b = static_cast<float>(channelsOf(c1)[channel]);
                const float product = (b - a) * t;
                const float value = product + a;
                rgb[channel] = static_cast<int>(std::floor(static_cast<double>(value) + 0.5));
            }
            COMPARE_COLORS(ColorScaleRGB(c0, c1, t), colorOf(rgb));

            const Triple from = hlsOf(c0);
            const Triple to = hlsOf(c1);
            Triple hls = {};
            for (std::size_t n = 0; n < 3; ++n)
                hls[n] = (to[n] - from[n]) * static_cast<double>(t) + from[n];
            COMPARE_COLORS(ColorScaleHSL(c0, c1, t), rgbOf(hls));
        }
    }

    void randomMeansMatchReference()
    {
        for (int k = 0; k < sampleSize(10000, 1000000); ++k) {
            const std::array<unsigned int, 3> c = {randomColor(), randomColor(), randomColor()};
            std::array<float, 3> w = {randomBetween(-0.5F, 1.5F), randomBetween(-0.5F, 1.5F),
                                      randomBetween(-0.5F, 1.5F)};
            if (k % 8 == 0)
                w[static_cast<std::size_t>(k / 8 % 3)] = std::ldexp(1.0F, -k % 150); // down to the smallest subnormal
            const unsigned int rgbMean = ColorScaleRGB3(c[0], c[1], c[2], w[0], w[1], w[2]);
            const unsigned int hslMean = ColorScaleHSL3(c[0], c[1], c[2], w[0], w[1], w[2]);

            for (float &weight : w)
                weight = clampedWeight(weight);
            const float sum01 = w[0] + w[1];
            const float sum = sum01 + w[2];
            if (sum == 0.0F) {
                COMPARE_COLORS(rgbMean, c[0]);
                COMPARE_COLORS(hslMean, c[0]);
                continue;
            }

            Channels rgb = {};
            Triple hls = {};
            for (std::size_t n = 0; n < 3; ++n) {
                const float a = static_cast<float>(channelsOf(c[0])[n]) * w[0];
                const float b = static_cast<float>(channelsOf(c[1])[n]) * w[1];
                const float d = static_cast<float>(channelsOf(c[2])[n]) * w[2];
                const float ab = b + a;
                const float all = d + ab;
                rgb[n] = static_cast<int>(std::floor(static_cast<double>(all) / static_cast<double>(sum) + 0.5));

                const double ha = hlsOf(c[0])[n] * static_cast<double>(w[0]);
                const double hb = hlsOf(c[1])[n] * static_cast<double>(w[1]);
                const double hd = hlsOf(c[2])[n] * static_cast<double>(w[2]);
                hls[n] = (hd + (hb + ha)) / static_cast<double>(sum);
            }
            COMPARE_COLORS(rgbMean, colorOf(rgb));
            COMPARE_COLORS(hslMean, rgbOf(hls));
        }
    }
};

QTEST_APPLESS_MAIN(ColorScaleTest)
#include "ColorScaleTest.moc"
