// Places on the palette, against their definitions.

#include "engine/PaletteEntry.h"

#include "tests/support/FloatBits.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

/// The same float; a zero of either sign is as good as the other.
bool sameNumber(float a, float b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

float remainderOfOne(float value)
{
    return static_cast<float>(std::fmod(double(value), 1.0));
}

} // namespace

class PaletteEntryTest : public QObject
{
    Q_OBJECT

private slots:
    void wrapping()
    {
        // From every exponent all the hard mantissas, and of the rest every 1009th float.
        for (quint32 exponent = 0; exponent < 512; ++exponent) {
            for (quint32 mantissa : {0U, 1U, 2U, 0x3FFFFFU, 0x400000U, 0x400001U, 0x7FFFFEU, 0x7FFFFFU}) {
                const float value = floatOf(exponent << 23U | mantissa);
                QVERIFY2(sameNumber(wrapped(value), remainderOfOne(value)), qPrintable(QString::number(value)));
            }
        }
        for (quint64 bits = 0; bits < 0x100000000U; bits += 1009) {
            const float value = floatOf(static_cast<quint32>(bits));
            QVERIFY(sameNumber(wrapped(value), remainderOfOne(value)));
        }
        QCOMPARE(bitsOf(wrapped(2.75F)), bitsOf(0.75F));
        QCOMPARE(bitsOf(wrapped(-2.75F)), bitsOf(-0.75F));
    }

    void places()
    {
        QCOMPARE(bitsOf(placeAlongCurve(0, 16666)), bitsOf(0.0F));
        QCOMPARE(bitsOf(placeAlongCurve(8333, 16666)), bitsOf(0.5F));
        QCOMPARE(bitsOf(placeByHeight(0.0F, 1.0F)), bitsOf(0.5F));
        QCOMPARE(bitsOf(placeByHeight(1.0F, 1.0F)), bitsOf(0.0F));
        QCOMPARE(bitsOf(placeByHeight(-2.0F, 2.0F)), bitsOf(0.0F));
        QCOMPARE(bitsOf(placeByRadius(3.0F, 0.0F, 4.0F, 2.0F)), bitsOf(3.75F));
        QCOMPARE(bitsOf(placeByTime(5.0F, 4.0F)), bitsOf(0.25F));
    }

    void entries_data()
    {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        QTest::addColumn<float>("place");
        QTest::addColumn<int>("entry");
        QTest::newRow("start") << 0.0F << 0;
        QTest::newRow("minus zero") << -0.0F << 0;
        QTest::newRow("half") << 0.5F << 256;
        QTest::newRow("just under half") << 0.49999997F << 255;
        QTest::newRow("last") << 0.9999999F << 511;
        QTest::newRow("round") << 1.0F << 512;
        QTest::newRow("further round") << 2.6F << 1331;
        QTest::newRow("negative") << -0.3F << 0;
        QTest::newRow("far negative") << -1e38F << 0;
        QTest::newRow("highest that fits") << 4194303.75F << 2147483520;
        QTest::newRow("beyond an int") << 4194304.0F << 0;
        QTest::newRow("inf") << infinity << 0;
        QTest::newRow("-inf") << -infinity << 0;
        QTest::newRow("nan") << std::numeric_limits<float>::quiet_NaN() << 0;
    }

    void entries()
    {
        QFETCH(float, place);
        QFETCH(int, entry);
        QCOMPARE(entryAt(place, 512), entry);
    }
};

QTEST_APPLESS_MAIN(PaletteEntryTest)
#include "PaletteEntryTest.moc"
