// Rows of any floats, of random bits: set, computed, animated and drawn. Whatever a row holds, the curve has its points
// and its colours, and the calls that draw it are complete and in order.
//
// There are 2000 rows; PENDRIX_RANDOM_ROWS in the environment asks for another number. Each thousand has a seed of its
// own, which is its number and the name of the test's data, so that one thousand can be tried again.
//
// Not every curve has the program's 16666 points, or a million rows would take hours under the sanitizers: every 25th
// has, the others have up to 600 by a `total` and a `step` of their own. Every fifth row, and with it each that has all
// points, is compared with the reference, bit for bit; the drawing is compared with the lists for all of them.

#include "engine/Pendrix3D.h"

#include "tests/support/FloatBits.h"
#include "tests/support/FakeOpenGL.h"
#include "tests/support/RandomRows.h"
#include "tests/support/ReferenceCurve.h"

#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr int rowsOfASeed = 1000;

/// What has been seen of a drawing.
struct Drawing
{
    int calls = 0;
    int firstWrong = -1;
};
Drawing drawing;

template <std::size_t Count>
bool isCall(const char *expectedName, const std::array<double, Count> &expected, const char *name,
            const double *arguments, std::size_t count)
{
    return qstrcmp(name, expectedName) == 0 && count == Count &&
           std::equal(expected.begin(), expected.end(), arguments, sameFloat<double>);
}

/// Whether the call of that index is the one that draws the engine's lists.
bool isExpected(int index, const char *name, const double *arguments, std::size_t count)
{
    if (index == 0)
        return isCall<1>("glBegin", {GL_LINE_STRIP}, name, arguments, count);
    const int i = (index - 1) / 2;
    if (i == pdx3.nPoints)
        return index % 2 && isCall<0>("glEnd", {}, name, arguments, count);
    if (i > pdx3.nPoints)
        return false;
    if (index % 2) {
        const CurvePoint &point = pdx3.points.at(i);
        return isCall<3>("glVertex3f", {double(point.x), double(point.y), double(point.z)}, name, arguments, count);
    }
    const QColor &color = pdx3.colors.at(i);
    const auto part = [](double component) { return double(static_cast<float>(component)); };
    return isCall<4>("glColor4f", {part(color.redF()), part(color.greenF()), part(color.blueF()), 1.0}, name, arguments,
                     count);
}

void watch(const char *name, const double *arguments, std::size_t count)
{
    if (drawing.firstWrong < 0 && !isExpected(drawing.calls, name, arguments, count))
        drawing.firstWrong = drawing.calls;
    ++drawing.calls;
}

/// The mode that a row's last value asks for.
int modeOf(float value)
{
    const double whole = std::trunc(double(value));
    return whole >= -0x1p+31 && whole < 0x1p+31 ? static_cast<int>(whole) : std::numeric_limits<int>::min();
}

double anyDouble(std::mt19937 &random)
{
    const auto fraction = double(random());
    return std::ldexp(fraction, static_cast<int>(random() % 2200) - 1100);
}

/// Empty if the engine's curve is sound and drawn as it is, else what is wrong.
QByteArray fault(bool comparesBits)
{
    const auto count = static_cast<int>(ReferenceCurve::current().size());
    if (pdx3.nPoints != count || pdx3.points.size() != count || pdx3.colors.size() != count)
        return "number of points";
    const bool staysInside = pdx3.total == 1.0F;
    const auto isInside = [](float value) { return !(std::abs(value) > 1.0F); };
    for (const CurvePoint &point : qAsConst(pdx3.points)) {
        if (staysInside && !(isInside(point.x) && isInside(point.y) && isInside(point.z)))
            return "a point outside";
    }
    drawing = {};
    pdx3.draw();
    if (drawing.firstWrong >= 0)
        return "call " + QByteArray::number(drawing.firstWrong);
    if (drawing.calls != 2 * count + 2)
        return QByteArray::number(drawing.calls) + " calls for " + QByteArray::number(count) + " points";
    return comparesBits ? ReferenceCurve::current().difference() : QByteArray();
}

QByteArray describe(int number, const QVector<float> &row)
{
    QByteArray text = " (row " + QByteArray::number(number) + ':';
    for (const float value : row)
        text += ' ' + QByteArray::number(bitsOf(value), 16);
    return text + ')';
}

} // namespace

class RandomRowsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { FakeOpenGL::setWatcher(watch); }

    void rows_data()
    {
        QTest::addColumn<int>("seed");
        QTest::addColumn<int>("count");
        bool isGiven = false;
        const int given = qEnvironmentVariableIntValue("PENDRIX_RANDOM_ROWS", &isGiven);
        const int total = isGiven ? given : 2000;
        for (int first = 0; first < total; first += rowsOfASeed) {
            const int seed = first / rowsOfASeed;
            QTest::newRow(QByteArray::number(seed)) << seed << std::min(rowsOfASeed, total - first);
        }
        qInfo() << total << "rows, from the seeds 0 to" << (total - 1) / rowsOfASeed;
    }

    void rows()
    {
        QFETCH(int, seed);
        QFETCH(int, count);
        std::mt19937 random(static_cast<quint32>(seed));
        for (int number = 0; number < count; ++number) {
            const QVector<float> row = randomRow(random, number);
            const bool comparesBits = number % 5 == 0;
            setRandomSettings(random, number);

            pdx3.set(row);
            for (int column = 0; column < 5; ++column)
                QVERIFY2(bitsOf(pdx3.getParams()[column]) == bitsOf(row.at(column)), describe(number, row));
            QCOMPARE(pdx3.colorMode, modeOf(row.at(5)));
            if (number % 25 == 0)
                QCOMPARE(pdx3.nPoints, usualPointCount);
            QByteArray found = fault(comparesBits);
            QVERIFY2(found.isEmpty(), found + describe(number, row));

            if (number % 4 == 1) {
                pdx3.next();
            } else if (number % 4 == 2) {
                const double first = anyDouble(random); // the next one comes from the same source
                pdx3.next(first, -anyDouble(random));
            } else {
                continue;
            }
            found = fault(comparesBits);
            QVERIFY2(found.isEmpty(), "after a step: " + found + describe(number, row));
        }
    }
};

QTEST_APPLESS_MAIN(RandomRowsTest)
#include "RandomRowsTest.moc"
