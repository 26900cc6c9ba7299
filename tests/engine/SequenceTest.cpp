// Sequences that are guessed and checked, against the same ones computed step by step.

#include "engine/Sequence.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

/// Whether fillSequence gives what single steps give, for several ways to cut `count` values in two.
template <typename Next>
bool isRight(float start, int count, Next next)
{
    std::vector<float> stepByStep(static_cast<std::size_t>(count));
    float value = start;
    for (float &step : stepByStep)
        step = value = next(value);

    for (int cut = 0; cut <= count; cut += 1 + count / 13) {
        std::vector<float> values(stepByStep.size() + 1, 77.0F);
        const float last = fillSequence(start, values.data(), cut, next);
        if (!sameBits(fillSequence(last, values.data() + cut, count - cut, next), value))
            return false;
        for (std::size_t i = 0; i < stepByStep.size(); ++i) {
            if (!sameBits(values[i], stepByStep[i]))
                return false;
        }
        if (!sameBits(values.back(), 77.0F)) // nothing is written past the end
            return false;
    }
    return true;
}

} // namespace

class SequenceTest : public QObject
{
    Q_OBJECT

private slots:
    void bits()
    {
        QVERIFY(sameBits(1.0F, 1.0F));
        QVERIFY(!sameBits(1.0F, std::nextafter(1.0F, 2.0F)));
        QVERIFY(!sameBits(0.0F, -0.0F));
        QVERIFY(sameBits(std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::quiet_NaN()));
    }

    void everyCount()
    {
        for (int count = 0; count < 300; ++count)
            QVERIFY(isRight(0.5F, count, [](float value) { return value + 0.001F; }));
        float untouched = 3.0F;
        QCOMPARE(fillSequence(2.0F, &untouched, -1, [](float value) { return value + 1.0F; }), 2.0F);
        QCOMPARE(untouched, 3.0F);
    }

    void timesAndAmplitudes()
    {
        QVERIFY(isRight(0.0F, 50000, [](float t) { return static_cast<float>(double(t) + 0.02); }));
        QVERIFY(isRight(1.0F, 50000, [](float a) { return a - 6e-5F; })); // on through zero
    }

    void sumsOfAnyKind()
    {
        std::mt19937 random(3);
        std::uniform_int_distribution<int> exponent(-30, 30);
        std::uniform_real_distribution<float> mantissa(-2.0F, 2.0F);
        for (int k = 0; k < 300; ++k) {
            const float start = std::ldexp(mantissa(random), exponent(random));
            const float step = std::ldexp(mantissa(random), exponent(random));
            QVERIFY(isRight(start, 1000, [step](float value) { return value + step; }));
            const double doubleStep = double(step) * 1.1;
            QVERIFY(isRight(start, 1000, [=](float value) { return static_cast<float>(double(value) + doubleStep); }));
        }
    }

    void awkwardSteps()
    {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        const std::vector<float> values = {
            0.0F,    -0.0F,  1e-45F,   -1e-45F,   1e-38F,
            1e38F,   -1e38F, infinity, -infinity, std::numeric_limits<float>::quiet_NaN(),
            3.4e38F, 1.0F};
        for (const float start : values) {
            for (const float step : values) {
                QVERIFY(isRight(start, 200, [step](float value) { return value + step; }));
                QVERIFY(isRight(start, 200, [step](float value) { return value - step; }));
            }
        }
    }

    void whatIsNoSum()
    {
        QVERIFY(isRight(3.0F, 500, [](float value) { return value * 1.01F; }));
        QVERIFY(isRight(0.3F, 500, [](float value) { return 3.9F * value * (1.0F - value); }));
        QVERIFY(isRight(1.0F, 500, [](float value) { return -value; }));
        QVERIFY(isRight(5.0F, 500, [](float value) { return value > 3.0F ? value - 0.5F : 100.0F; }));
    }
};

QTEST_APPLESS_MAIN(SequenceTest)
#include "SequenceTest.moc"
