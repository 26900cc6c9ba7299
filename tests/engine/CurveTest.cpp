// Compares the engine's curves with an independent computation, bit for bit.

#include "engine/Pendrix3D.h"

#include "tests/support/DampedSineMethods.h"
#include "tests/support/FloatBits.h"
#include "tests/support/RandomRows.h"
#include "tests/support/ReferenceCurve.h"
#include "tests/support/SampleSize.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Selects the sine method of the current test row.
void useMethod()
{
    QFETCH(DampedSineMethod, method);
    setDampedSineMethod(method);
}

} // namespace

class CurveTest : public QObject
{
    Q_OBJECT

    std::vector<unsigned int> palette{pdx3.palette, pdx3.palette + 512};

private slots:
    void cleanup()
    {
        std::copy(palette.begin(), palette.end(), pdx3.palette);
        pdx3.paletteSize = 512;
        pdx3.twoPi = 6.2831855F;
        setDefaultSettings();
        pdx3.set(0);
    }

    void curveMatchesReferenceAfterConstruction() { VERIFY_CURVE(); } // first, before any other curve

    void firstPointEqualsClosedForm()
    {
        pdx3.set(0.0F, 1.0F, 0.0F, 0.25F, 0.0F, 0);
        const CurvePoint &first = pdx3.points.first();
        QVERIFY(first.x == static_cast<float>(std::sin(double(0.02F)) * double(1.0F - 6e-5F)));
        QVERIFY(first.y == 1.0F - 6e-5F); // a quarter of a turn: the sine differs from 1 by less than half an ulp
        QVERIFY(first.z == 0.0F);
        QCOMPARE(pdx3.points.size(), 16666);
        QCOMPARE(pdx3.colors.size(), 16666);
        QVERIFY(std::abs(pdx3.amplitude) < 1e-3F);
    }

    void colorsEqualClosedForm()
    {
        const auto isEntry = [](int index) {
            return [index](const QColor &color) { return color == QColor(pdx3.palette[index]); };
        };
        pdx3.set(0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0);
        for (int i = 0; i < 16666; ++i)
            QVERIFY(isEntry(i * 512 / 16666)(pdx3.colors.at(i)));
        // The middle of the palette for z = 0, and entry 0 for z = total.
        pdx3.set(0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 1);
        QVERIFY(std::all_of(pdx3.colors.cbegin(), pdx3.colors.cend(), isEntry(256)));
        pdx3.step = 0.0F;
        pdx3.amplitude = pdx3.total;
        pdx3.phase2 = 0.25F;
        pdx3.calcSegment(0);
        QVERIFY(pdx3.z == pdx3.total);
        QCOMPARE(qRgb(pdx3.red, pdx3.green, pdx3.blue), qRgb(0, 0, 255));
    }

    void presetsMatchReferenceInEveryMode_data() { addDampedSineMethods(); }
    void presetsMatchReferenceInEveryMode()
    {
        useMethod();
        for (int preset = 0; preset < 12; ++preset) {
            const QVector<float> row = pdx3.presets.at(preset);
            for (int mode = -1; mode <= Pendrix3D::colorModeCount; ++mode) {
                pdx3.set(row[0], row[1], row[2], row[3], row[4], mode);
                VERIFY_CURVE();
            }
        }
    }

    void blankRowStaysAtOrigin()
    {
        pdx3.set(pdx3.blankRow);
        QCOMPARE(pdx3.points.size(), 16666);
        QVERIFY(std::all_of(pdx3.points.cbegin(), pdx3.points.cend(),
                            [](const CurvePoint &p) { return p.x == 0.0F && p.y == 0.0F && p.z == 0.0F; }));
        VERIFY_CURVE();
    }

    void zeroFrequenciesKeepTheirSign()
    {
        pdx3.set(-0.0F, -0.0F, -0.0F, -0.0F, 0.0F, 0);
        QCOMPARE(bitsOf(pdx3.points.first().x), bitsOf(-0.0F));
        QCOMPARE(bitsOf(pdx3.points.first().y), bitsOf(-0.0F));
        QCOMPARE(bitsOf(pdx3.points.first().z), bitsOf(0.0F)); // 0 + -0
    }

    void everyNumberOfPointsMatchesReference_data() { addDampedSineMethods(); }
    void everyNumberOfPointsMatchesReference()
    {
        useMethod();
        for (int count = 1; count < 600; ++count) {
            pdx3.step = 1.0F / (static_cast<float>(count) + 0.5F);
            pdx3.set(count % 12);
            QCOMPARE(pdx3.nPoints, count);
            VERIFY_CURVE();
        }
    }

    void shorterPassWritesNothingBeyondItsEnd()
    {
        QCOMPARE(pdx3.points.size(), 16666); // the lists keep this storage
        const quint32 x = bitsOf(pdx3.points.at(300).x);
        const QRgb color = pdx3.colors.at(300).rgb();
        pdx3.step = 1.0F / 300.5F;
        pdx3.set(0.5F, 0.5F, 0.5F, 0.0F, 0.0F, 0);
        QCOMPARE(pdx3.points.size(), 300);
        QCOMPARE(bitsOf(pdx3.points.constData()[300].x), x);
        QCOMPARE(pdx3.colors.constData()[300].rgb(), color);
    }

    void countsOutsidePositiveIntsGiveEmptyCurve()
    {
        for (const float step : {0.0F, -0.0F, 1e-38F, notANumber, 1.5F}) {
            pdx3.step = step;
            pdx3.calcCoords();
            QCOMPARE(pdx3.nPoints, 0);
            QVERIFY(pdx3.points.isEmpty() && pdx3.colors.isEmpty());
        }
        pdx3.step = -0.3F;
        pdx3.calcCoords();
        QCOMPARE(pdx3.nPoints, -3);
        QVERIFY(pdx3.points.isEmpty() && pdx3.colors.isEmpty());
    }

    void otherPalettesAndPeriodsMatchReference()
    {
        std::mt19937 random(29);
        for (int k = 0; k < 100; ++k) {
            for (int i = 0; i < 512; ++i)
                pdx3.palette[i] = static_cast<unsigned int>(random()); // the top byte is not part of the colour
            pdx3.paletteSize = k ? 1 + k * 31 % 512 : 512;
            pdx3.twoPi = k % 5 ? pdx3.twoPi : anyFloat(random);
            pdx3.step = 1e-3F;
            pdx3.set(1.0F, 2.0F, 3.1F, 0.46F, 0.3F, k % 7 - 1);
            VERIFY_CURVE();
        }
    }

    void specialValuesMatchReferenceInEveryColumn()
    {
        pdx3.step = 1e-3F;
        for (const float value : {notANumber, infinity, -infinity, 1e38F, -1e38F, 3.4028235e38F, 1e-45F, -1e-45F,
                                  1e-38F, -0.0F, 1e10F, -1e10F}) {
            for (int column = 0; column < 6; ++column) {
                QVector<float> row = {1.0F, 2.0F, 3.0F, 0.1F, 0.2F, 2.0F};
                row[column] = value;
                pdx3.set(row);
                VERIFY_CURVE();
            }
            for (int mode = -1; mode <= Pendrix3D::colorModeCount; ++mode) {
                pdx3.set(value, value, value, value, value, mode);
                VERIFY_CURVE();
            }
        }
    }

    void animationMatchesReference_data() { addDampedSineMethods(); }
    void animationMatchesReference()
    {
        useMethod();
        for (int frame = 0; frame < sampleSize(50, 1000); ++frame) {
            if (frame % 10 == 0)
                pdx3.set(frame / 10);
            pdx3.next();
            VERIFY_CURVE();
        }
    }

    void animationWithOtherStepsMatchesReference()
    {
        pdx3.set(4);
        for (const double step : {1.0, -0.3, 1e-9, 1e30, -1e30, 1e300}) {
            pdx3.next(step, -step);
            VERIFY_CURVE();
        }
    }

    void randomRowsMatchReference_data() { addDampedSineMethods(); }
    void randomRowsMatchReference()
    {
        useMethod();
        std::mt19937 random(23);
        for (int number = 0; number < sampleSize(200, 250000); ++number) {
            setRandomSettings(random, number);
            pdx3.set(randomRow(random, number));
            VERIFY_CURVE();
        }
    }

    void segmentsMatchReferenceOneByOne()
    {
        for (int mode = -1; mode <= Pendrix3D::colorModeCount; ++mode) {
            pdx3.set(1.0F, 2.0F, 3.1F, 0.46F, 0.3F, mode);
            QCOMPARE(ReferenceCurve::current().segmentDifference(), QByteArray());
        }
        std::mt19937 random(31);
        for (int number = 0; number < sampleSize(100, 10000); ++number) {
            setRandomSettings(random, number);
            pdx3.set(randomRow(random, number));
            QCOMPARE(ReferenceCurve::current().segmentDifference(), QByteArray());
        }
    }
};

QTEST_APPLESS_MAIN(CurveTest)
#include "CurveTest.moc"
