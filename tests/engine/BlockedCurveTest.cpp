// A whole pass against the definition of one point, bit for bit, by every method of computing the sines.

#include "engine/DampedSine.h"
#include "engine/Pendrix3D.h"

#include "tests/support/DampedSineMethods.h"
#include "tests/support/FloatBits.h"
#include "tests/support/RandomRows.h"
#include "tests/support/Sanitizer.h"

#include <QtTest>

#include <array>
#include <random>

namespace {

// Unoptimised or under a sanitizer everything takes many times as long.
#if defined(__OPTIMIZE__) && !defined(PENDRIX_ADDRESS_SANITIZER)
constexpr int manyTimes = 10000;
#else
constexpr int manyTimes = 500;
#endif

/// The fastest method goes all the way.
int timesFor(DampedSineMethod method)
{
    return isAvailable(static_cast<DampedSineMethod>(static_cast<int>(method) + 1)) ? manyTimes / 20 : manyTimes;
}

/// What a pass leaves in the engine beside the lists.
struct Rest
{
    std::array<float, 5> floats;
    std::array<int, 4> ints;
};

Rest rest()
{
    return {{pdx3.t, pdx3.amplitude, pdx3.x, pdx3.y, pdx3.z}, {pdx3.red, pdx3.green, pdx3.blue, pdx3.alpha}};
}

bool sameRest(const Rest &a, const Rest &b)
{
    for (std::size_t i = 0; i < a.floats.size(); ++i) {
        if (!sameFloat(a.floats[i], b.floats[i]))
            return false;
    }
    return a.ints == b.ints;
}

/// Empty if the engine's lists and fields are what single points give, else the first difference.
QByteArray difference()
{
    const Rest after = rest();
    if (pdx3.points.size() != pdx3.nPoints || pdx3.colors.size() != pdx3.nPoints)
        return "number of points";
    pdx3.t = 0.0F;
    pdx3.amplitude = pdx3.total;
    for (int i = 0; i < pdx3.nPoints; ++i) {
        pdx3.calcSegment(i);
        const CurvePoint &point = pdx3.points.at(i);
        if (!sameFloat(point.x, pdx3.x) || !sameFloat(point.y, pdx3.y) || !sameFloat(point.z, pdx3.z))
            return "position of point " + QByteArray::number(i);
        if (pdx3.colors.at(i).rgba() != qRgb(pdx3.red, pdx3.green, pdx3.blue))
            return "colour of point " + QByteArray::number(i);
    }
    return sameRest(after, rest()) ? QByteArray() : QByteArray("fields after the pass");
}

} // namespace

#define VERIFY_PASS()                                                                                                  \
    do {                                                                                                               \
        const QByteArray different = difference();                                                                     \
        QVERIFY2(different.isEmpty(), different);                                                                      \
    } while (false)

class BlockedCurveTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        setUsualSettings();
        pdx3.twoPi = 6.2831855F;
        pdx3.paletteSize = 512;
        pdx3.set(0);
    }

    void presetsInEveryMode_data() { addDampedSineMethods(); }

    void presetsInEveryMode()
    {
        QFETCH(DampedSineMethod, method);
        setDampedSineMethod(method);
        for (int preset = 0; preset < 12; ++preset) {
            const QVector<float> row = pdx3.presets.at(preset);
            for (int mode = -1; mode <= 5; ++mode) {
                pdx3.set(row[0], row[1], row[2], row[3], row[4], mode);
                VERIFY_PASS();
            }
        }
    }

    void everyNumberOfPoints_data() { addDampedSineMethods(); }

    void everyNumberOfPoints()
    {
        QFETCH(DampedSineMethod, method);
        setDampedSineMethod(method);
        for (int count = 1; count < 600; ++count) {
            pdx3.step = 1.0F / (static_cast<float>(count) + 0.5F);
            pdx3.set(count % 12);
            QCOMPARE(pdx3.nPoints, count);
            VERIFY_PASS();
        }
    }

    void otherSettings_data() { addDampedSineMethods(); }

    void otherSettings()
    {
        QFETCH(DampedSineMethod, method);
        setDampedSineMethod(method);
        std::mt19937 random(29);
        std::uniform_real_distribution<float> anything(-3.0F, 3.0F);
        for (int k = 0; k < 200; ++k) {
            pdx3.total = k % 2 ? anything(random) : anyFloat(random);
            pdx3.step = pdx3.total / static_cast<float>(1 + k * 7 % 1500);
            pdx3.radiusScale = k % 3 ? anything(random) : anyFloat(random);
            pdx3.twoPi = k % 5 ? pdx3.twoPi : anyFloat(random);
            pdx3.paletteSize = 1 + k * 31 % 512;
            pdx3.palette[k] ^= 0x35A5C3U;
            pdx3.set(anything(random), anything(random), anything(random), anything(random), anything(random),
                     k % 7 - 1);
            VERIFY_PASS();
        }
    }

    void animation_data() { addDampedSineMethods(); }

    void animation()
    {
        QFETCH(DampedSineMethod, method);
        setDampedSineMethod(method);
        for (int frame = 0; frame < timesFor(method); ++frame) {
            if (frame % 500 == 0)
                pdx3.set(frame / 500);
            pdx3.next();
            VERIFY_PASS();
        }
    }

    void randomBits_data() { addDampedSineMethods(); }

    void randomBits()
    {
        QFETCH(DampedSineMethod, method);
        setDampedSineMethod(method);
        std::mt19937 random(23);
        for (int k = 0; k < timesFor(method); ++k) {
            // Most of these frequencies are beyond all bounds and cost the C library dear: shorter curves do.
            pdx3.step = k % 50 ? 6e-4F : 6e-5F;
            pdx3.set(randomRow(random, k));
            VERIFY_PASS();
        }
    }
};

QTEST_APPLESS_MAIN(BlockedCurveTest)
#include "BlockedCurveTest.moc"
