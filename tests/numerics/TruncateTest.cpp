#include "numerics/Truncate.h"

#include <QtTest>

#include <cmath>
#include <limits>

class TruncateTest : public QObject
{
    Q_OBJECT

private slots:
    void truncatesTowardZero()
    {
        QCOMPARE(truncatedOr(0.0, 7), 0);
        QCOMPARE(truncatedOr(-0.0, 7), 0);
        QCOMPARE(truncatedOr(2.999, 7), 2);
        QCOMPARE(truncatedOr(-2.999, 7), -2);
        QCOMPARE(truncatedOr(1e-320, 7), 0);
    }

    void coversIntRange()
    {
        QCOMPARE(truncatedOr(2147483647.0, 7), 2147483647);
        QCOMPARE(truncatedOr(2147483647.999, 7), 2147483647);
        QCOMPARE(truncatedOr(-2147483648.0, 7), std::numeric_limits<int>::min());
        QCOMPARE(truncatedOr(-2147483648.999, 7), std::numeric_limits<int>::min());
    }

    void returnsFallbackOutOfRange()
    {
        const double inf = std::numeric_limits<double>::infinity();
        for (const double value : {2147483648.0, -2147483649.0, 1e300, -1e300, inf, -inf, std::nan("")})
            QCOMPARE(truncatedOr(value, 7), 7);
    }
};

QTEST_APPLESS_MAIN(TruncateTest)
#include "TruncateTest.moc"
