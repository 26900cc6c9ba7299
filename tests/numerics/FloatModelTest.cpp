// What the build's flags must make of floating-point code: each operation rounded once, to the type that is written.

#include "numerics/FloatModel.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

// Volatile, so that the compiler computes when the program runs and not with its own arithmetic.
volatile float smallest = std::numeric_limits<float>::denorm_min();
volatile float epsilon = std::numeric_limits<float>::epsilon();
volatile float one = 1.0F;
volatile double third = 1.0 / 3.0;

// Pairs of equal work are what a vectoriser joins. Both are rounded to float on their way.

void roundedQuotients(const int *a, double *out)
{
    out[0] = double(static_cast<float>(a[0] / 65535.0));
    out[1] = double(static_cast<float>(a[1] / 65535.0));
}

void roundedProducts(const double *a, const double *b, double *out)
{
    const auto first = static_cast<float>(a[0] * b[0]);
    const auto second = static_cast<float>(a[1] * b[1]);
    out[0] = double(first) * 3.0;
    out[1] = double(second) * 3.0;
}

// Called through volatile pointers, so that no call is specialised for the values that it is given.
void (*volatile quotients)(const int *, double *) = roundedQuotients;
void (*volatile products)(const double *, const double *, double *) = roundedProducts;

// On x86-64 with the fused operation at hand, which portable code does not use; elsewhere as the build has it.
#if defined(__x86_64__)
#define PENDRIX_WITH_FMA [[gnu::noinline, gnu::target("fma")]]
bool fmaIsThere()
{
    return __builtin_cpu_supports("fma");
}
#else
#define PENDRIX_WITH_FMA [[gnu::noinline]]
bool fmaIsThere()
{
    return true;
}
#endif

PENDRIX_WITH_FMA float productPlus(float a, float b, float c)
{
    return a * b + c;
}

PENDRIX_WITH_FMA double productPlus(double a, double b, double c)
{
    return a * b + c;
}

} // namespace

class FloatModelTest : public QObject
{
    Q_OBJECT

private slots:
    void pairsKeepTheirRounding()
    {
        double out[2] = {};
        const int bytes[] = {29, 31};
        quotients(bytes, out);
        for (int i = 0; i < 2; ++i) {
            volatile auto rounded = static_cast<float>(bytes[i] / 65535.0);
            QVERIFY(out[i] == double(rounded));
        }

        const double a[] = {0.1, 0.2};
        const double b[] = {1.3, 1.7};
        products(a, b, out);
        for (int i = 0; i < 2; ++i) {
            volatile auto rounded = static_cast<float>(a[i] * b[i]);
            QVERIFY(out[i] == double(rounded) * 3.0);
        }
    }

    void productsAreRoundedBeforeTheyAreAdded()
    {
        if (!fmaIsThere()) {
            QTest::qSkip("this processor has no fused multiply-add", __FILE__, __LINE__);
            return;
        }
        // (1 + e)(1 - e) = 1 - e^2, which rounds to 1; fused with the addition, e^2 would be left over.
        QVERIFY(productPlus(one + epsilon, one - epsilon, -one) == 0.0F);
        const double e = std::numeric_limits<double>::epsilon();
        QVERIFY(productPlus(double(one) + e, double(one) - e, -double(one)) == 0.0);
    }

    void noAlgebraIsDone()
    {
        const auto tenth = static_cast<float>(third * 0.3);
        volatile float large = 1e8F;
        QVERIFY((tenth + large) - large != tenth);
        volatile float minusZero = -0.0F;
        QVERIFY(std::signbit(minusZero * one) && !std::signbit(minusZero + 0.0F));
    }

    void subnormalsAndNonNumbersExist()
    {
        QVERIFY(smallest > 0.0F);
        QVERIFY(smallest * 0.5F == 0.0F);
        QVERIFY(std::numeric_limits<float>::min() * (one / 2.0F) > 0.0F);
        const float infinite = 3e38F * 10.0F * one;
        QVERIFY(std::isinf(infinite));
        QVERIFY(std::isnan(infinite - infinite));
    }
};

QTEST_APPLESS_MAIN(FloatModelTest)
#include "FloatModelTest.moc"
