// Compares speculative recurrences with serial ones, bit for bit.

#include "engine/Recurrence.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Compares `count` values of fillRecurrence, computed in two calls (`cut` values and the rest), with serial steps.
template <typename Next>
bool isExact(float start, int count, int cut, Next next)
{
    std::vector<float> values(static_cast<std::size_t>(count) + 1, 77.0F);
    const float middle = fillRecurrence(start, values.data(), cut, next);
    const float last = fillRecurrence(middle, values.data() + cut, count - cut, next);
    float value = start;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        value = next(value);
        if (!sameBits(values[i], value))
            return false;
    }
    return sameBits(last, value) && sameBits(values.back(), 77.0F); // nothing is written past the end
}

} // namespace

class RecurrenceTest : public QObject
{
    Q_OBJECT

private slots:
    void sameBitsComparesSignsAndNaN()
    {
        QVERIFY(sameBits(1.0F, 1.0F));
        QVERIFY(!sameBits(1.0F, std::nextafter(1.0F, 2.0F)));
        QVERIFY(!sameBits(0.0F, -0.0F));
        QVERIFY(sameBits(notANumber, notANumber));
    }

    void everyCountMatchesSerialSteps()
    {
        for (int count = 0; count < 300; ++count)
            QVERIFY(isExact(0.5F, count, count / 3, [](float value) { return value + 0.001F; }));
        float untouched = 3.0F;
        QCOMPARE(fillRecurrence(2.0F, &untouched, -1, [](float value) { return value + 1.0F; }), 2.0F);
        QCOMPARE(untouched, 3.0F);
    }

    void timesAndAmplitudesMatchSerialSteps()
    {
        QVERIFY(isExact(0.0F, 50000, 777, [](float t) { return static_cast<float>(double(t) + 0.02); }));
        QVERIFY(isExact(1.0F, 50000, 0, [](float a) { return a - 6e-5F; })); // past zero
    }

    void extrapolatedValuesAreNotRecomputed()
    {
        std::vector<float> values(640);
        int calls = 0;
        fillRecurrence(1.0F, values.data(), 640, [&calls](float value) {
            ++calls;
            return value + 0x1p-20F; // exact
        });
        QCOMPARE(calls, 650); // in each of 10 chunks: two to extrapolate, 63 to verify
    }

    void randomSumsMatchSerialSteps()
    {
        std::mt19937 random(3);
        std::uniform_int_distribution<int> exponent(-30, 30);
        std::uniform_real_distribution<float> mantissa(-2.0F, 2.0F);
        for (int k = 0; k < 300; ++k) {
            const float start = std::ldexp(mantissa(random), exponent(random));
            const float step = std::ldexp(mantissa(random), exponent(random));
            QVERIFY(isExact(start, 1000, k, [step](float value) { return value + step; }));
            const double inDouble = double(step) * 1.1;
            QVERIFY(isExact(start, 1000, k, [=](float value) { return static_cast<float>(double(value) + inDouble); }));
        }
    }

    void specialStartsAndStepsMatchSerialSteps()
    {
        const std::vector<float> values = {0.0F,   -0.0F,    1e-45F,    -1e-45F,    1e-38F,  1e38F,
                                           -1e38F, infinity, -infinity, notANumber, 3.4e38F, 1.0F};
        for (const float start : values) {
            for (const float step : values) {
                QVERIFY(isExact(start, 200, 7, [step](float value) { return value + step; }));
                QVERIFY(isExact(start, 200, 7, [step](float value) { return value - step; }));
            }
        }
    }
};

QTEST_APPLESS_MAIN(RecurrenceTest)
#include "RecurrenceTest.moc"
