// Damped sines by every available method, bit for bit, and the error bound of the vector sine.

#include "engine/DampedSine.h"
#include "engine/VectorSine.h"

#include "tests/support/DampedSineMethods.h"
#include "tests/support/FloatBits.h"
#include "tests/support/SampleSize.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float rangeEnd = 4194304.0F; // the largest angle that the kernels compute

float expected(float angle, float amplitude)
{
    const double sine = std::sin(double(angle));
    const double product = sine * double(amplitude);
    return static_cast<float>(product);
}

/// Pairs of an angle and an amplitude.
struct Inputs
{
    std::vector<float> angles;
    std::vector<float> amplitudes;

    void add(float angle, float amplitude)
    {
        angles.push_back(angle);
        amplitudes.push_back(amplitude);
    }

    /// Compares dampedSines with libm for all pairs. Returns the number of sines that dampedSines left to libm, or -1
    /// if a result is wrong.
    int computedByLibm() const
    {
        std::vector<float> displacements(angles.size() + 16, 77.0F);
        const int computed =
            dampedSines(angles.data(), amplitudes.data(), displacements.data(), static_cast<int>(angles.size()));
        for (std::size_t i = 0; i < displacements.size(); ++i) {
            // The last 16 are past the end: not written.
            const float right = i < angles.size() ? expected(angles[i], amplitudes[i]) : 77.0F;
            if (!sameFloat(displacements[i], right))
                return -1;
        }
        return computed;
    }
};

} // namespace

class DampedSineTest : public QObject
{
    Q_OBJECT

    /// Sets the method of the test's row. Returns how many of `undecided` of `all` sines that method leaves to libm.
    static int expectedForLibm(std::size_t undecided, std::size_t all)
    {
        QFETCH(DampedSineMethod, method);
        setDampedSineMethod(method);
        return static_cast<int>(method == DampedSineMethod::Library ? all : undecided);
    }

private slots:
    void fastestMethodIsTheDefault() // first, before a method is set
    {
        DampedSineMethod fastest = DampedSineMethod::Library;
        for (const auto method : {DampedSineMethod::Baseline, DampedSineMethod::Avx2, DampedSineMethod::Avx512}) {
            if (isAvailable(method))
                fastest = method;
        }
        QCOMPARE(dampedSineMethod(), fastest);
    }

    void ignoresUnavailableMethods()
    {
        QVERIFY(isAvailable(DampedSineMethod::Library));
        const auto unknown = static_cast<DampedSineMethod>(4);
        QVERIFY(!isAvailable(unknown));
        for (const auto method : {DampedSineMethod::Library, DampedSineMethod::Baseline, DampedSineMethod::Avx2,
                                  DampedSineMethod::Avx512, unknown}) {
            const DampedSineMethod before = dampedSineMethod();
            setDampedSineMethod(method);
            QCOMPARE(dampedSineMethod(), isAvailable(method) ? method : before);
        }
    }

    void everyCount_data() { addDampedSineMethods(); }
    void everyCount()
    {
        Inputs inputs;
        for (std::size_t count = 0; count < 600; ++count) {
            const int computed = inputs.computedByLibm();
            QVERIFY(computed >= 0 && computed <= expectedForLibm(2, count));
            inputs.add(0.1F * static_cast<float>(count + 1), 1.0F - 0.001F * static_cast<float>(count));
        }
    }

    void specialValues_data() { addDampedSineMethods(); }
    void specialValues()
    {
        const std::vector<float> inRange = {0.0F,       1e-45F, 1.17549435e-38F, 1e-20F, 0.02F,   1.5707964F,
                                            3.1415927F, 1e6F,   rangeEnd,        0.5F,   0.9999F, 6.2831855F};
        const std::vector<float> outOfRange = {std::nextafter(rangeEnd, infinity), 105414350.0F, 1e10F,     1e38F,
                                               std::numeric_limits<float>::max(),  infinity,     notANumber};
        const auto allPairs = [&](const std::vector<float> &angles) {
            Inputs inputs;
            for (const float angle : angles) {
                for (const std::vector<float> &amplitudes : {inRange, outOfRange}) {
                    for (const float amplitude : amplitudes) {
                        inputs.add(angle, amplitude);
                        inputs.add(-angle, amplitude);
                        inputs.add(angle, -amplitude);
                    }
                }
            }
            return inputs;
        };
        QVERIFY(expectedForLibm(0, 0) == 0);
        QVERIFY(allPairs(inRange).computedByLibm() >= 0); // NaN products are undecided
        const Inputs inputs = allPairs(outOfRange);
        QCOMPARE(inputs.computedByLibm(), static_cast<int>(inputs.angles.size()));
    }

    void randomBits_data() { addDampedSineMethods(); }
    void randomBits()
    {
        QVERIFY(expectedForLibm(0, 0) == 0);
        std::mt19937 random(20);
        Inputs inputs;
        for (int i = sampleSize(100000, 5000000); i > 0; --i)
            inputs.add(anyFloat(random), anyFloat(random));
        QVERIFY(inputs.computedByLibm() >= 0);
    }

    /// Argument reduction is hardest where a sine is near 0 or 1.
    void nearMultiplesOfAQuarterTurn_data() { addDampedSineMethods(); }
    void nearMultiplesOfAQuarterTurn()
    {
        Inputs inputs;
        for (int k = 1; double(k) * M_PI_2 < double(rangeEnd); k += sampleSize(97, 1)) {
            const auto nearest = static_cast<float>(k * M_PI_2);
            inputs.add(nearest, 1.0F);
            inputs.add(-std::nextafter(nearest, 0.0F), 1.0F);
            inputs.add(std::nextafter(nearest, infinity), 1.0F);
        }
        const std::size_t count = inputs.angles.size();
        QVERIFY(count > 80000);
        const int limit = expectedForLibm(count / 1000, count); // sines of almost exactly 1 are undecided
        const int computed = inputs.computedByLibm();
        QVERIFY(computed >= 0 && computed <= limit);
    }

    /// An interval that is too wide or too narrow changes the number of undecided products.
    void fallbackRateOfOrdinaryProducts_data() { addDampedSineMethods(); }
    void fallbackRateOfOrdinaryProducts()
    {
        std::mt19937 random(21);
        Inputs inputs;
        for (int i = 0; i < 400000; ++i) {
            const auto angle = static_cast<float>(random()) * 0x1p-22F; // 0 to 1024
            inputs.add(angle, static_cast<float>(random()) * 0x1p-32F); // 0 to 1
        }
        const int limit = expectedForLibm(350, inputs.angles.size());
        const int computed = inputs.computedByLibm();
        QVERIFY2(computed > 250 && computed <= limit, qPrintable(QString::number(computed)));
    }

    void undecidedProducts_data() { addDampedSineMethods(); }
    void undecidedProducts()
    {
        // Found by a search: the products are less than 2^-51 of their value away from the middle between two floats.
        const std::vector<std::pair<quint32, quint32>> cases = {
            {0x4599CA57U, 0x3F1020C8U}, {0x44FA8466U, 0x3F7C3729U}, {0x45885DDCU, 0x3F315326U},
            {0x458572A3U, 0x3F676221U}, {0x451A8EECU, 0x3F3626C1U}, {0x454DD51AU, 0x3F3F3E31U},
            {0x45655313U, 0x3F032CC3U}, {0x443713C7U, 0x3F69FF06U}, {0x442BE75CU, 0x3F0269E4U},
            {0x44847304U, 0x3F4A8676U},
        };
        Inputs inputs;
        for (const auto &[angle, amplitude] : cases) {
            inputs.add(floatOf(angle), floatOf(amplitude));
            inputs.add(-floatOf(angle), floatOf(amplitude));
            inputs.add(1.0F, 1.0F); // decided
        }
        const int undecided = expectedForLibm(2 * cases.size(), inputs.angles.size());
        QCOMPARE(inputs.computedByLibm(), undecided);
    }

    void errorBoundOfVectorSine()
    {
        if (std::numeric_limits<long double>::digits < 64) {
            QTest::qSkip("long double is not more exact than double", __FILE__, __LINE__);
            return;
        }
        double worst = 0.0; // SineErrorBenchmark measures every float
        for (quint32 bits = 1; bits <= bitsOf(rangeEnd); bits += static_cast<quint32>(sampleSize(9973, 997))) {
            const float angle = floatOf(bits);
            const long double exact = std::sin(static_cast<long double>(angle));
            const long double error = std::abs((static_cast<long double>(vectorSine(double(angle))) - exact) / exact);
            QVERIFY(error < 0x1.cp-36L); // false for NaN
            worst = std::max(worst, static_cast<double>(error));
        }
        QVERIFY(worst > 0x1.9p-36); // the sample contains angles near the largest error
    }
};

QTEST_APPLESS_MAIN(DampedSineTest)
#include "DampedSineTest.moc"
