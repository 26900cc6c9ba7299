// The numbers of the curve, bit for bit, against a scalar computation of their own.

#include "engine/Pendrix3D.h"

#include "tests/support/FloatBits.h"

#include <QtTest>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// What the curve is computed from.
struct Machine
{
    float freqX = 0.0F;
    float freqY = 0.0F;
    float freqZ = 0.0F;
    float phaseY = 0.0F;
    float phaseZ = 0.0F;
    int mode = 0;
    float total = 1.0F;
    float step = 6e-5F;
    float radiusScale = 1.0F;
    std::vector<unsigned int> palette;
};

/// The machine that the engine stands for at this moment.
Machine current()
{
    return {pdx3.freq2,     pdx3.freq1, pdx3.freq3, pdx3.phase1,      pdx3.phase2,
            pdx3.colorMode, pdx3.total, pdx3.step,  pdx3.radiusScale, {pdx3.palette, pdx3.palette + pdx3.paletteSize}};
}

/// One point with its colour.
struct Sample
{
    float time = 0.0F;
    float amplitude = 0.0F;
    std::array<float, 3> at = {};
    unsigned int color = 0;
};

float rounded(double value)
{
    return static_cast<float>(value);
}

float fraction(float value)
{
    return rounded(std::fmod(double(value), 1.0));
}

/// Every sample of the machine's curve. Each rounding to float is a statement of its own.
std::vector<Sample> trace(const Machine &machine)
{
    const float turn = 6.28318530717958647692F;
    volatile float quotient = machine.total / machine.step; // 10, not 9, for 1 by 0.1: rounded to float
    const double count = std::trunc(double(quotient));
    std::vector<Sample> samples;
    if (!(count >= 1.0 && count < 2147483648.0))
        return samples;
    samples.resize(static_cast<std::size_t>(count));

    const float startY = machine.phaseY * turn;
    const float startZ = machine.phaseZ * turn;
    Sample sample;
    sample.amplitude = machine.total;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        sample.time = rounded(double(sample.time) + 0.02);
        sample.amplitude = sample.amplitude - machine.step;
        const float angleX = machine.freqX * sample.time;
        const float turnedY = machine.freqY * sample.time;
        const float turnedZ = machine.freqZ * sample.time;
        const float angleY = startY + turnedY;
        const float angleZ = startZ + turnedZ;
        const std::array<float, 3> angles = {angleX, angleY, angleZ};
        for (std::size_t axis = 0; axis < 3; ++axis)
            sample.at[axis] = rounded(std::sin(double(angles[axis])) * double(sample.amplitude));

        float position = 1.0F;
        if (machine.mode == 0) {
            position = float(i) / float(samples.size());
        } else if (machine.mode == 1) {
            const float height = sample.at[2] / (machine.total * 2.0F);
            position = fraction(height + 0.5F);
        } else if (machine.mode == 2) {
            const float xx = sample.at[0] * sample.at[0];
            const float yy = sample.at[1] * sample.at[1];
            const float zz = sample.at[2] * sample.at[2];
            const float xxyy = xx + yy;
            const float square = xxyy + zz;
            // The square root of a double that holds a float, rounded to float, is the float's own square root.
            const float radius = rounded(std::sqrt(double(square)));
            const float scaled = radius / machine.radiusScale;
            position = scaled * 1.5F;
        } else if (machine.mode == 3) {
            position = fraction(sample.time / turn);
        } else if (machine.mode == 4) {
            position = fraction(sample.time / (turn / 8.0F));
        }

        const auto size = static_cast<double>(machine.palette.size());
        const float entry = float(size) * position;
        const double whole = std::trunc(double(entry));
        const bool onPalette = whole >= 0.0 && whole < 2147483648.0;
        const double index = onPalette ? std::fmod(whole, size) : 0.0;
        sample.color = machine.palette[static_cast<std::size_t>(index)];
        samples[i] = sample;
    }
    return samples;
}

/// Empty if the engine's curve is the one of `machine`, else the first difference.
QByteArray difference(const Machine &machine)
{
    const std::vector<Sample> samples = trace(machine);
    const int count = static_cast<int>(samples.size());
    if (pdx3.points.size() != count || pdx3.colors.size() != count)
        return QByteArray::number(pdx3.points.size()) + " points instead of " + QByteArray::number(count);
    for (int i = 0; i < count; ++i) {
        const Sample &sample = samples[static_cast<std::size_t>(i)];
        const CurvePoint &point = pdx3.points.at(i);
        if (!sameFloat(point.x, sample.at[0]) || !sameFloat(point.y, sample.at[1]) || !sameFloat(point.z, sample.at[2]))
            return "position of point " + QByteArray::number(i);
        if (pdx3.colors.at(i) != QColor(0xFF000000U | sample.color))
            return "colour of point " + QByteArray::number(i);
    }
    if (count > 0) {
        const Sample &last = samples.back();
        if (!sameFloat(pdx3.t, last.time) || !sameFloat(pdx3.amplitude, last.amplitude))
            return "time and amplitude after the pass";
        if (!sameFloat(pdx3.x, last.at[0]) || !sameFloat(pdx3.y, last.at[1]) || !sameFloat(pdx3.z, last.at[2]))
            return "position after the pass";
        const auto packed = static_cast<unsigned int>((pdx3.red * 256 + pdx3.green) * 256 + pdx3.blue);
        if (packed != last.color || pdx3.alpha != 1)
            return "colour after the pass";
    }
    return {};
}

} // namespace

#define VERIFY_CURVE()                                                                                                 \
    do {                                                                                                               \
        const QByteArray different = difference(current());                                                            \
        QVERIFY2(different.isEmpty(), different);                                                                      \
    } while (false)

class CurveTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        pdx3.total = 1.0F;
        pdx3.step = 6e-5F;
        pdx3.radiusScale = 1.0F;
        pdx3.set(0);
    }

    void atStart() { VERIFY_CURVE(); }

    void firstPoint()
    {
        pdx3.set(0.0F, 1.0F, 0.0F, 0.25F, 0.0F, 0);
        const CurvePoint &first = pdx3.points.first();
        QVERIFY(first.x == static_cast<float>(std::sin(double(0.02F)) * double(1.0F - 6e-5F)));
        QVERIFY(first.y == 1.0F - 6e-5F); // a quarter of a turn: nearer to 1 than the product can tell
        QVERIFY(first.z == 0.0F);
        QVERIFY(std::abs(pdx3.amplitude) < 1e-3F);
    }

    void presetsInEveryMode()
    {
        for (int preset = 0; preset < 12; ++preset) {
            const QVector<float> row = pdx3.presets.at(preset);
            for (int mode = -1; mode <= 5; ++mode) {
                pdx3.set(row[0], row[1], row[2], row[3], row[4], mode);
                VERIFY_CURVE();
            }
            pdx3.set(preset);
            VERIFY_CURVE();
        }
    }

    void paletteIndices()
    {
        const QVector<float> still(6, 0.0F);
        const auto entry = [](int index) { return QColor(pdx3.palette[index]); };

        // Along the curve: from entry 0 to the last one, never back.
        pdx3.set(still);
        QCOMPARE(pdx3.colors.first(), entry(0));
        QCOMPARE(pdx3.colors.last(), entry(511));
        for (int i = 0; i < 16666; ++i)
            QCOMPARE(pdx3.colors.at(i), entry(i * 512 / 16666));

        // By height: the middle of the palette for z = 0, and the same entry as the lowest for z = total.
        pdx3.set(0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 1);
        QVERIFY(std::all_of(pdx3.colors.cbegin(), pdx3.colors.cend(),
                            [&](const QColor &color) { return color == entry(256); }));
        pdx3.step = 0.0F; // keeps the amplitude at total for the one point that is computed by hand
        pdx3.amplitude = pdx3.total;
        pdx3.t = 0.0F;
        pdx3.phase2 = 0.25F;
        pdx3.calcSegment(0);
        QVERIFY(pdx3.z == pdx3.total);
        QCOMPARE(pdx3.blue, 255);
        QCOMPARE(pdx3.red + pdx3.green, 0);
    }

    void blankRow()
    {
        for (int mode = 0; mode <= 4; ++mode) {
            pdx3.set(0.0F, 0.0F, 0.0F, 0.0F, 0.0F, mode);
            QCOMPARE(pdx3.points.size(), 16666);
            QVERIFY(std::all_of(pdx3.points.cbegin(), pdx3.points.cend(),
                                [](const CurvePoint &p) { return p.x == 0.0F && p.y == 0.0F && p.z == 0.0F; }));
            VERIFY_CURVE();
        }
    }

    void animation()
    {
        for (int frame = 0; frame < 2000; ++frame) {
            if (frame % 100 == 0)
                pdx3.set(frame / 100);
            pdx3.next();
            VERIFY_CURVE();
        }
    }

    void animationByOtherSteps()
    {
        pdx3.set(4);
        for (const double step : {1.0, -0.3, 1e-9, 1e30, -1e30, 1e300}) {
            pdx3.next(step, -step);
            VERIFY_CURVE();
        }
    }

    void awkwardValues()
    {
        const std::array<float, 14> values = {notANumber, infinity, -infinity, 1e38F, -1e38F, 3.4028235e38F, 1e-45F,
                                              -1e-45F,    1e-38F,   -0.0F,     1e10F, -1e10F, 1.0F,          0.0F};
        for (std::size_t column = 0; column < 6; ++column) {
            for (const float value : values) {
                QVector<float> row = {1.0F, 2.0F, 3.0F, 0.1F, 0.2F, 2.0F};
                row[static_cast<int>(column)] = value;
                pdx3.set(row);
                QCOMPARE(pdx3.points.size(), 16666);
                VERIFY_CURVE();
            }
        }
        for (const float value : values) {
            for (int mode = -1; mode <= 5; ++mode) {
                pdx3.set(value, value, value, value, value, mode);
                VERIFY_CURVE();
                pdx3.next();
                VERIFY_CURVE();
            }
        }
    }

    void randomRows()
    {
        std::mt19937 random(4711);
        std::uniform_real_distribution<float> frequency(-50.0F, 50.0F);
        std::uniform_real_distribution<float> phase(-2.0F, 2.0F);
        for (int k = 0; k < 500; ++k) {
            pdx3.set(QVector<float>{frequency(random), frequency(random), frequency(random), phase(random),
                                    phase(random), static_cast<float>(k % 5)});
            VERIFY_CURVE();
        }
    }

    void randomBits()
    {
        std::mt19937 random(1147);
        for (int k = 0; k < 500; ++k) {
            QVector<float> row(6);
            for (float &value : row)
                value = anyFloat(random);
            if (k % 2)
                row[5] = static_cast<float>(k % 5);
            pdx3.set(row);
            QCOMPARE(pdx3.points.size(), 16666);
            VERIFY_CURVE();
        }
    }

    void otherAmplitudesAndSteps()
    {
        for (const float total : {1.0F, 0.5F, 3.7F, 1e-3F, 1e-40F, 250.0F, 0.0F, -1.0F}) {
            for (const float step : {6e-5F, 1e-3F, 0.37F, 0.1F, 5.0F, -6e-5F}) {
                if (total / step > 100000.0F)
                    continue;
                pdx3.total = total;
                pdx3.step = step;
                for (int mode = 0; mode <= 5; ++mode) {
                    pdx3.set(1.0F, 2.0F, 3.0F, 0.46F, 0.3F, mode);
                    QCOMPARE(pdx3.nPoints, static_cast<int>(total / step));
                    VERIFY_CURVE();
                }
            }
        }
    }

    void countsThatDoNotFit()
    {
        for (const float step : {0.0F, -0.0F, 1e-38F, notANumber}) {
            pdx3.step = step;
            pdx3.calcCoords();
            QCOMPARE(pdx3.nPoints, 0);
            QVERIFY(pdx3.points.isEmpty() && pdx3.colors.isEmpty());
        }
    }

    void otherRadiusScales()
    {
        for (const float scale : {0.5F, 2.0F, 0.01F, 1e-30F, 1e-38F, 0.0F, -1.0F, infinity, notANumber}) {
            pdx3.radiusScale = scale;
            pdx3.set(3);
            QCOMPARE(pdx3.colorMode, 2);
            VERIFY_CURVE();
        }
    }

    void otherPalettes()
    {
        const std::vector<unsigned int> saved(pdx3.palette, pdx3.palette + 512);
        for (int i = 0; i < 512; ++i)
            pdx3.palette[i] = 0xA5000000U | static_cast<unsigned int>(i * 32717);
        QByteArray different;
        for (int mode = -1; mode <= 5 && different.isEmpty(); ++mode) {
            pdx3.set(1.0F, 2.0F, 3.0F, 0.46F, 0.3F, mode);
            Machine machine = current();
            for (unsigned int &color : machine.palette)
                color &= 0xFFFFFFU; // the top byte of an entry is not part of its colour
            different = difference(machine);
        }
        std::copy(saved.begin(), saved.end(), pdx3.palette);
        QVERIFY2(different.isEmpty(), different);
    }
};

QTEST_APPLESS_MAIN(CurveTest)
#include "CurveTest.moc"
