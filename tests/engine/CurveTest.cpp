// The numbers of the curve, bit for bit, against a scalar computation of their own.

#include "engine/Pendrix3D.h"

#include "tests/support/RandomRows.h"
#include "tests/support/ReferenceCurve.h"

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

} // namespace

class CurveTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        setUsualSettings();
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
            pdx3.set(randomRow(random, k));
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
            ReferenceCurve curve = ReferenceCurve::current();
            for (unsigned int &color : curve.palette)
                color &= 0xFFFFFFU; // the top byte of an entry is not part of its colour
            different = curve.difference();
        }
        std::copy(saved.begin(), saved.end(), pdx3.palette);
        QVERIFY2(different.isEmpty(), different);
    }
};

QTEST_APPLESS_MAIN(CurveTest)
#include "CurveTest.moc"
