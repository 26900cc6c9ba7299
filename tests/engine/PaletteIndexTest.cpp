#include "engine/PaletteIndex.h"

#include "tests/support/FloatBits.h"
#include "tests/support/SampleSize.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <vector>

namespace {

/// Returns floats of every exponent with the mantissas that are hardest to round, and a sample of all floats.
std::vector<float> sampleFloats()
{
    std::vector<float> values;
    for (quint32 exponent = 0; exponent < 512; ++exponent) {
        for (const quint32 mantissa : {0U, 1U, 2U, 0x3FFFFFU, 0x400000U, 0x400001U, 0x7FFFFEU, 0x7FFFFFU})
            values.push_back(floatOf(exponent << 23U | mantissa));
    }
    const int stride = sampleSize(100003, 1009);
    for (quint64 bits = 0; bits < 0x100000000U; bits += static_cast<quint64>(stride))
        values.push_back(floatOf(static_cast<quint32>(bits)));
    return values;
}

/// Returns int(size * position) % size, computed in double, which is exact here; 0 if the conversion is undefined.
int expectedIndex(float position, int size)
{
    volatile float scaled = float(size) * position;
    const double whole = std::trunc(double(scaled));
    return whole >= 0.0 && whole < 2147483648.0 ? static_cast<int>(std::fmod(whole, double(size))) : 0;
}

} // namespace

class PaletteIndexTest : public QObject
{
    Q_OBJECT

private slots:
    void fractionalPartIsExactForEveryFloat()
    {
        for (const float value : sampleFloats()) {
            const auto expected = static_cast<float>(std::fmod(double(value), 1.0));
            QVERIFY(fractionalPart(value) == expected || (std::isnan(fractionalPart(value)) && std::isnan(expected)));
        }
        QCOMPARE(bitsOf(fractionalPart(2.75F)), bitsOf(0.75F));
        QCOMPARE(bitsOf(fractionalPart(-2.75F)), bitsOf(-0.75F));
        QCOMPARE(bitsOf(fractionalPart(8388607.5F)), bitsOf(0.5F));
    }

    void indexIsExactForEveryFloatAndSize()
    {
        const std::vector<float> positions = sampleFloats();
        for (const int size : {1, 2, 3, 7, 12, 256, 500, 511, 512, 513, 65536, 16777216, 1073741824, 2147483647}) {
            for (const float position : positions)
                QCOMPARE(paletteIndex(position, size), expectedIndex(position, size));
        }
    }

    void indexOfKnownPositions()
    {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        QCOMPARE(paletteIndex(0.0F, 512), 0);
        QCOMPARE(paletteIndex(0.49999997F, 512), 255);
        QCOMPARE(paletteIndex(0.5F, 512), 256);
        QCOMPARE(paletteIndex(0.9999999F, 512), 511);
        QCOMPARE(paletteIndex(1.0F, 512), 0);
        QCOMPARE(paletteIndex(2.6F, 512), 307);
        QCOMPARE(paletteIndex(2.6F, 500), 300);
        QCOMPARE(paletteIndex(4194303.75F, 512), 384); // the highest product that fits an int
        for (const float position : {4194304.0F, -0.3F, -1e38F, infinity, -infinity, std::nanf("")})
            QCOMPARE(paletteIndex(position, 512), 0);
    }
};

QTEST_APPLESS_MAIN(PaletteIndexTest)
#include "PaletteIndexTest.moc"
