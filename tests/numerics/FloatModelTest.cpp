// Compiled code rounds each floating-point operation once, to the type that is written.

#include "numerics/FloatModel.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

// Volatile, so that the program computes at run time.
volatile float smallest = std::numeric_limits<float>::denorm_min();
volatile float epsilon = std::numeric_limits<float>::epsilon();
volatile float one = 1.0F;
volatile double third = 1.0 / 3.0;

// A vectoriser combines pairs of equal operations. Each result is rounded to float.

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

// Called through volatile pointers, so that the compiler cannot specialise the calls.
void (*volatile quotients)(const int *, double *) = roundedQuotients;
void (*volatile products)(const double *, const double *, double *) = roundedProducts;

// On x86-64, with FMA enabled, which the portable build does not use.
#if defined(__x86_64__)
#define PENDRIX_WITH_FMA [[gnu::noinline, gnu::target("fma")]]
#define PENDRIX_HAS_FMA __builtin_cpu_supports("fma")
#else
#define PENDRIX_WITH_FMA [[gnu::noinline]]
#define PENDRIX_HAS_FMA true
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
    void vectorisedPairsAreRoundedToFloat()
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

    void productsAreRoundedBeforeAdditions()
    {
        if (!PENDRIX_HAS_FMA) {
            QTest::qSkip("the processor has no fused multiply-add", __FILE__, __LINE__);
            return;
        }
        // (1 + e)(1 - e) = 1 - e^2 rounds to 1. A fused operation would return -e^2.
        QVERIFY(productPlus(one + epsilon, one - epsilon, -one) == 0.0F);
        const double e = std::numeric_limits<double>::epsilon();
        QVERIFY(productPlus(double(one) + e, double(one) - e, -double(one)) == 0.0);
    }

    void sumsAreNotReassociated()
    {
        const auto tenth = static_cast<float>(third * 0.3);
        volatile float large = 1e8F;
        QVERIFY((tenth + large) - large != tenth);
        volatile float minusZero = -0.0F;
        QVERIFY(std::signbit(minusZero * one) && !std::signbit(minusZero + 0.0F));
    }

    void subnormalsAndNonFiniteValuesExist()
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
