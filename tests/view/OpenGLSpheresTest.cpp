// The spheres' calls, argument for argument, and the vectors that they are lit by.

#include "view/OpenGL.h"

#include "tests/support/ExpectedCalls.h"
#include "tests/support/FakeOpenGL.h"

#include <QColor>
#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <random>

namespace {

using Vector = std::array<float, 3>;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr double pi = 3.14159265358979323846;
constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
constexpr double ulpOfOne = std::numeric_limits<float>::epsilon();

const ExpectedCall figureEnd = {"glEnd", {}};

QVector<double> widened(const Vector &v)
{
    return {double(v[0]), double(v[1]), double(v[2])};
}

// Single precision throughout, one rounding an operation.

Vector unit(const Vector &v)
{
    const float squared = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
    if (!(squared > 0.0F))
        return {0.0F, 0.0F, 0.0F};
    const float length = std::sqrt(squared);
    return {v[0] / length, v[1] / length, v[2] / length};
}

Vector normalOf(const Vector &p0, const Vector &p1, const Vector &p2)
{
    const Vector u = {p1[0] - p0[0], p1[1] - p0[1], p1[2] - p0[2]};
    const Vector v = {p2[0] - p0[0], p2[1] - p0[1], p2[2] - p0[2]};
    return unit({u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]});
}

/// Whether the floats are equal to two ulps, NaN for NaN, and without a sign where 0 stands for no direction.
QByteArray differenceInUlps(const float *actual, const Vector &expected)
{
    for (std::size_t k = 0; k < 3; ++k) {
        const double tolerance = 2.0 * ulpOfOne * std::abs(double(expected.at(k)));
        const QByteArray found = difference(actual + k, {double(expected.at(k))}, tolerance);
        if (!found.isEmpty() && !(actual[k] == 0.0F && expected.at(k) == 0.0F))
            return "component " + QByteArray::number(int(k)) + ", " + found;
    }
    return {};
}

/// What a routine sends for each cell, apart from its corners.
struct Style
{
    int mode;
    bool color;
    bool normal;
    bool texture;
};

constexpr Style filled = {GL_TRIANGLE_FAN, true, true, false};
constexpr Style outlined = {GL_LINE_LOOP, false, false, false};
constexpr Style textured = {GL_QUADS, false, true, true};

int callsOfACell(const Style &style)
{
    return 2 + (style.color ? 1 : 0) + 4 * (1 + (style.normal ? 1 : 0) + (style.texture ? 1 : 0));
}

QColor colorOfCell(int cell)
{
    return {cell % 256, 255 - cell % 256, cell / 256 * 50, 77};
}

/// The three floats that were sent with a call, or NaN if it is missing.
Vector sentWith(int call)
{
    const QVector<OpenGLCall> &calls = FakeOpenGL::calls();
    if (call >= calls.size() || calls.at(call).arguments.size() != 3)
        return {noNumber, noNumber, noNumber};
    const QVector<double> &v = calls.at(call).arguments;
    return {static_cast<float>(v.at(0)), static_cast<float>(v.at(1)), static_cast<float>(v.at(2))};
}

/// The calls that a sphere is made of. Corners follow from their angles; a normal is what the corners that were sent
/// come to, as in a small cell the rounding of its corners turns it.
ExpectedCalls sphereCalls(float r, int n, const Style &style, bool colored)
{
    ExpectedCalls calls;
    const int cornerCalls = 1 + (style.normal ? 1 : 0) + (style.texture ? 1 : 0);
    for (int cell = 0; cell < n * n; ++cell) {
        const int i = cell / n;
        const int j = cell % n;
        const std::array<std::array<int, 2>, 4> corners = {{{i, j}, {i, j + 1}, {i + 1, j + 1}, {i + 1, j}}};

        // The vertex is the last call of its corner.
        const int firstVertex = cell * callsOfACell(style) + (style.color ? 2 : 1) + cornerCalls - 1;
        const Vector normal = normalOf(sentWith(firstVertex), sentWith(firstVertex + cornerCalls),
                                       sentWith(firstVertex + 2 * cornerCalls));
        const bool degenerate = normal == Vector{0.0F, 0.0F, 0.0F};

        calls.append({"glBegin", {double(style.mode)}});
        if (style.color) {
            const QColor color = colored ? colorOfCell(cell) : QColor(0, 0, 255);
            const auto share = [](int byte) { return double(static_cast<float>(byte / 255.0)); };
            calls.append({"glColor3f", {share(color.red()), share(color.green()), share(color.blue())}});
        }
        for (const auto &corner : corners) {
            if (style.normal)
                calls.append({"glNormal3fv", widened(normal), degenerate ? 0.0 : 2.0 * ulpOfOne});
            if (style.texture) {
                const auto fraction = [n](int k) { return double(static_cast<float>(k) / static_cast<float>(n)); };
                calls.append({"glTexCoord2fv", {fraction(corner[1]), fraction(corner[0])}});
            }
            const double theta = pi * corner[0] / n;
            const double phi = 2.0 * pi * corner[1] / n;
            calls.append({"glVertex3fv",
                          {-double(r) * std::sin(theta) * std::cos(phi), double(r) * std::cos(theta),
                           double(r) * std::sin(theta) * std::sin(phi)},
                          1e-6 * std::abs(double(r)) + 1e-45});
        }
        calls.append(figureEnd);
    }
    return calls;
}

/// Finite floats of every magnitude.
float anyFloat(std::mt19937 &random, int lowestExponent, int highestExponent)
{
    const int exponent = std::uniform_int_distribution<int>(lowestExponent, highestExponent)(random);
    return std::ldexp(std::uniform_real_distribution<float>(-1.0F, 1.0F)(random), exponent);
}

/// The cosine between a vector and itself, in double, before it is cut to what a cosine can be.
double cosineWithItself(const Vector &v)
{
    double squared = 0.0;
    for (const float component : v)
        squared += double(component) * double(component);
    return squared / (std::sqrt(squared) * std::sqrt(squared));
}

} // namespace

Q_DECLARE_METATYPE(Vector)

class OpenGLSpheresTest : public QObject
{
    Q_OBJECT

    OpenGL gl;

    static void addBands()
    {
        QTest::addColumn<int>("n");
        for (int n = 0; n <= 24; ++n)
            QTest::addRow("%d", n) << n;
        QTest::newRow("-1") << -1;
        QTest::newRow("-5") << -5;
        QTest::newRow("lowest") << lowest;
    }

    static QVector<float> radii() { return {1.0F, 2.5F, -1.5F, 0.0F, 1e-30F, 1e38F, noNumber}; }

private slots:
    void init() { FakeOpenGL::clear(); }

    void sphere_data() { addBands(); }

    void sphere()
    {
        QFETCH(int, n);
        QVector<QColor> colors;
        for (int cell = 0; n > 0 && cell < n * n; ++cell)
            colors.append(colorOfCell(cell));
        const QVector<float> all = radii();
        for (const float r : all) {
            for (const bool colored : {false, true}) {
                FakeOpenGL::clear();
                gl.sphere(r, n, colored ? colors.data() : nullptr);
                COMPARE_CALLS(sphereCalls(r, std::max(n, 0), filled, colored));
            }
        }
    }

    void sphereLine_data() { addBands(); }

    void sphereLine()
    {
        QFETCH(int, n);
        const QVector<float> all = radii();
        for (const float r : all) {
            FakeOpenGL::clear();
            gl.sphereLine(r, n);
            COMPARE_CALLS(sphereCalls(r, std::max(n, 0), outlined, false));
        }
    }

    void sphereTextured_data() { addBands(); }

    void sphereTextured()
    {
        QFETCH(int, n);
        const QVector<float> all = radii();
        for (const float r : all) {
            FakeOpenGL::clear();
            gl.sphereTextured(r, n);
            COMPARE_CALLS(sphereCalls(r, std::max(n, 0), textured, false));
        }
    }

    void infiniteSpheres()
    {
        for (const float r : {inf, -inf}) {
            FakeOpenGL::clear();
            gl.sphere(r, 3, nullptr);
            QCOMPARE(FakeOpenGL::calls().size(), 9 * callsOfACell(filled));
            gl.sphereLine(r, 3);
            gl.sphereTextured(r, 3);
            QCOMPARE(FakeOpenGL::calls().size(),
                     9 * (callsOfACell(filled) + callsOfACell(outlined) + callsOfACell(textured)));
        }
    }

    // The corners of a cell run clockwise as seen from outside. A negative radius puts them at the opposite side of
    // the sphere and leaves the normals, which then point away. Only the band at the first pole has none.
    void theNormalsPointToTheCentre()
    {
        const int n = 24;
        for (const float r : {1.0F, -1.0F}) {
            FakeOpenGL::clear();
            gl.sphere(r, n, nullptr);
            for (int cell = 0; cell < n * n; ++cell) {
                const int start = cell * callsOfACell(filled);
                const Vector normal = sentWith(start + 2);
                const Vector corner = sentWith(start + 7); // the third, which lies off the first pole
                if (cell < n) {
                    QCOMPARE(normal, (Vector{0.0F, 0.0F, 0.0F}));
                } else {
                    const float outward = normal[0] * corner[0] + normal[1] * corner[1] + normal[2] * corner[2];
                    QVERIFY(outward * r < -0.98F && outward * r > -1.001F);
                }
            }
        }
    }

    // The two sides of the seam are one line.
    void theSphereIsClosed()
    {
        const int n = 7;
        gl.sphereLine(1.0F, n);
        const int perCell = callsOfACell(outlined);
        for (int i = 0; i < n; ++i) {
            const int first = i * n * perCell;
            const int last = (i * n + n - 1) * perCell;
            for (const auto &pair : {std::array<int, 2>{1, 2}, std::array<int, 2>{4, 3}})
                QCOMPARE(difference({FakeOpenGL::calls().at(last + pair[1])},
                                    {{"glVertex3fv", widened(sentWith(first + pair[0])), 1e-6}}),
                         QByteArray());
        }
    }

    void calcNormal_data()
    {
        QTest::addColumn<Vector>("p0");
        QTest::addColumn<Vector>("p1");
        QTest::addColumn<Vector>("p2");
        QTest::addColumn<Vector>("normal");
        const Vector none = {0.0F, 0.0F, 0.0F};
        const Vector x = {1.0F, 0.0F, 0.0F};
        const Vector y = {0.0F, 1.0F, 0.0F};
        const Vector z = {0.0F, 0.0F, 1.0F};
        QTest::newRow("x, y") << none << x << y << z;
        QTest::newRow("y, z") << none << y << z << x;
        QTest::newRow("z, x") << none << z << x << y;
        QTest::newRow("y, x") << none << y << x << Vector{0.0F, 0.0F, -1.0F};
        QTest::newRow("away from the origin") << Vector{5.0F, 6.0F, 7.0F} << Vector{8.0F, 6.0F, 7.0F}
                                              << Vector{5.0F, 6.0F, 11.0F} << Vector{0.0F, -1.0F, 0.0F};
        QTest::newRow("slanting") << Vector{3.0F, 0.0F, 0.0F} << Vector{0.0F, 3.0F, 0.0F} << Vector{0.0F, 0.0F, 3.0F}
                                  << Vector{0.57735027F, 0.57735027F, 0.57735027F};
        QTest::newRow("one point") << x << x << x << none;
        QTest::newRow("first two the same") << x << x << y << none;
        QTest::newRow("last two the same") << x << y << y << none;
        QTest::newRow("in a line") << none << x << Vector{2.0F, 0.0F, 0.0F} << none;
        QTest::newRow("no number") << Vector{noNumber, 0.0F, 0.0F} << x << y << none;
        QTest::newRow("too small to square")
            << none << Vector{1e-12F, 0.0F, 0.0F} << Vector{0.0F, 1e-12F, 0.0F} << none;
        QTest::newRow("subnormal") << none << Vector{1e-45F, 0.0F, 0.0F} << Vector{0.0F, 1e-45F, 0.0F} << none;
        QTest::newRow("square beyond a float")
            << none << Vector{1e12F, 0.0F, 0.0F} << Vector{0.0F, 1e12F, 0.0F} << none; // a finite number by infinity
        QTest::newRow("1e38") << none << Vector{1e38F, 0.0F, 0.0F} << Vector{0.0F, 1e38F, 0.0F}
                              << Vector{0.0F, 0.0F, noNumber}; // infinity by infinity
        QTest::newRow("difference beyond a float")
            << Vector{-3e38F, 0.0F, 0.0F} << Vector{3e38F, 0.0F, 0.0F} << Vector{-3e38F, 1.0F, 0.0F} << none;
        QTest::newRow("infinite") << none << Vector{inf, 0.0F, 0.0F} << Vector{0.0F, inf, 0.0F} << none;
    }

    void calcNormal()
    {
        QFETCH(Vector, p0);
        QFETCH(Vector, p1);
        QFETCH(Vector, p2);
        QFETCH(Vector, normal);
        const std::unique_ptr<float[]> calculated(gl.calcNormal(p0.data(), p1.data(), p2.data()));
        QCOMPARE(differenceInUlps(calculated.get(), normal), QByteArray());
    }

    void calcNormalOfAnyTriangle()
    {
        std::mt19937 random(43);
        const std::array<float, 6> strange = {noNumber, inf, -inf, 1e38F, 1e-45F, -0.0F};
        for (int round = 0; round < 30000; ++round) {
            // Corners of like size, then of any, then with something strange among them.
            std::array<Vector, 3> p = {};
            for (Vector &corner : p) {
                for (float &x : corner)
                    x = round % 3 == 0 ? anyFloat(random, 0, 3) : anyFloat(random, -60, 60);
            }
            if (round % 3 == 2)
                p.at(random() % 3).at(random() % 3) = strange.at(random() % strange.size());

            const auto before = p;
            const std::unique_ptr<float[]> normal(gl.calcNormal(p[0].data(), p[1].data(), p[2].data()));
            QCOMPARE(differenceInUlps(normal.get(), normalOf(p[0], p[1], p[2])), QByteArray());
            if (round % 3 != 2)
                QCOMPARE(p, before);
        }
        QCOMPARE(difference(FakeOpenGL::calls(), {}), QByteArray());
    }

    void normalise_data()
    {
        QTest::addColumn<Vector>("v");
        QTest::addColumn<Vector>("normalised");
        const Vector none = {0.0F, 0.0F, 0.0F};
        QTest::newRow("3, 4") << Vector{3.0F, 0.0F, -4.0F} << Vector{0.6F, 0.0F, -0.8F};
        QTest::newRow("1, 2, 2") << Vector{-1.0F, 2.0F, 2.0F} << Vector{-1.0F / 3.0F, 2.0F / 3.0F, 2.0F / 3.0F};
        QTest::newRow("unit") << Vector{0.0F, -1.0F, 0.0F} << Vector{0.0F, -1.0F, 0.0F};
        QTest::newRow("zero") << none << none;
        QTest::newRow("negative zero") << Vector{-0.0F, -0.0F, -0.0F} << none;
        QTest::newRow("just enough to square") << Vector{0x1p-74F, 0.0F, 0.0F} << Vector{1.0F, 0.0F, 0.0F};
        QTest::newRow("too small to square") << Vector{1e-30F, 1e-30F, 1e-30F} << none;
        QTest::newRow("subnormal") << Vector{1e-45F, 0.0F, 0.0F} << none;
        QTest::newRow("square beyond a float") << Vector{1e20F, 1.0F, -1e38F} << none; // a finite number by infinity
        QTest::newRow("infinite") << Vector{1.0F, inf, 0.0F} << Vector{0.0F, noNumber, 0.0F};
        QTest::newRow("negative infinite") << Vector{-inf, inf, 5.0F} << Vector{noNumber, noNumber, 0.0F};
        QTest::newRow("no number") << Vector{1.0F, noNumber, 0.0F} << none;
        QTest::newRow("no number and infinite") << Vector{inf, noNumber, 0.0F} << none;
    }

    void normalise()
    {
        QFETCH(Vector, v);
        QFETCH(Vector, normalised);
        const std::unique_ptr<float[]> calculated(gl.normalise(v[0], v[1], v[2]));
        QCOMPARE(differenceInUlps(calculated.get(), normalised), QByteArray());
    }

    void normaliseAnything()
    {
        std::mt19937 random(42);
        for (int round = 0; round < 30000; ++round) {
            const int size = round % 2 == 0 ? 3 : 120;
            const Vector v = {anyFloat(random, -size, size), anyFloat(random, -size, size),
                              anyFloat(random, -size, size)};
            const std::unique_ptr<float[]> calculated(gl.normalise(v[0], v[1], v[2]));
            QCOMPARE(differenceInUlps(calculated.get(), unit(v)), QByteArray());
        }
        QCOMPARE(difference(FakeOpenGL::calls(), {}), QByteArray());
    }

    void angleVect_data()
    {
        QTest::addColumn<Vector>("a");
        QTest::addColumn<Vector>("b");
        QTest::addColumn<double>("angle");
        const Vector x = {1.0F, 0.0F, 0.0F};
        const double none = std::nan("");
        QTest::newRow("right") << x << Vector{0.0F, 0.0F, -7.0F} << pi / 2.0;
        QTest::newRow("equal") << Vector{3.0F, 4.0F, 0.0F} << Vector{3.0F, 4.0F, 0.0F} << 0.0;
        QTest::newRow("parallel") << Vector{0.0F, 3.0F, 4.0F} << Vector{0.0F, 6.0F, 8.0F} << 0.0;
        QTest::newRow("opposite") << Vector{0.0F, 2.0F, 0.0F} << Vector{0.0F, -5.0F, 0.0F} << pi;
        QTest::newRow("45 degrees") << x << Vector{1.0F, 1.0F, 0.0F} << pi / 4.0;
        QTest::newRow("135 degrees") << x << Vector{-2.0F, 0.0F, 2.0F} << 3.0 * pi / 4.0;
        QTest::newRow("60 degrees") << Vector{1.0F, 1.0F, 0.0F} << Vector{0.0F, 1.0F, 1.0F} << pi / 3.0;
        QTest::newRow("1e38") << Vector{1e38F, 0.0F, 0.0F} << Vector{1e38F, 1e38F, 0.0F} << pi / 4.0;
        QTest::newRow("subnormal") << Vector{1e-45F, 0.0F, 0.0F} << Vector{1e-45F, 0.0F, 1e-45F} << pi / 4.0;
        QTest::newRow("zero") << x << Vector{0.0F, 0.0F, 0.0F} << none;
        QTest::newRow("both zero") << Vector{0.0F, 0.0F, 0.0F} << Vector{0.0F, 0.0F, 0.0F} << none;
        QTest::newRow("no number") << Vector{noNumber, 0.0F, 0.0F} << x << none;
        QTest::newRow("infinite") << Vector{inf, 0.0F, 0.0F} << x << none;
    }

    void angleVect()
    {
        QFETCH(Vector, a);
        QFETCH(Vector, b);
        QFETCH(double, angle);
        const float calculated = gl.angleVect(a.data(), b.data());
        QCOMPARE(difference(&calculated, {angle}, 3e-7), QByteArray());
        const float theOtherWay = gl.angleVect(b.data(), a.data());
        QCOMPARE(difference(&theOtherWay, {angle}, 3e-7), QByteArray());
        COMPARE_CALLS(ExpectedCalls());
    }

    // A cosine that is rounded beyond 1 is taken for 0, so that equal vectors can be at right angles.
    void angleOfEqualVectorsIsRightWhereTheCosineIsTooGreat()
    {
        std::mt19937 random(1);
        int tooGreat = 0;
        int notTooGreat = 0;
        for (int round = 0; round < 10000; ++round) {
            Vector a = {anyFloat(random, 0, 3), anyFloat(random, 0, 3), anyFloat(random, 0, 3)};
            Vector equal = a;
            Vector opposite = {-a[0], -a[1], -a[2]};
            const bool right = cosineWithItself(a) > 1.0;
            ++(right ? tooGreat : notTooGreat);
            const float angle = gl.angleVect(a.data(), equal.data());
            QCOMPARE(difference(&angle, {right ? pi / 2.0 : 0.0}, 3e-7), QByteArray());
            const float reverse = gl.angleVect(a.data(), opposite.data());
            QCOMPARE(difference(&reverse, {right ? pi / 2.0 : pi}, 3e-7), QByteArray());
        }
        QVERIFY(tooGreat > 100 && notTooGreat > 100);
    }
};

QTEST_APPLESS_MAIN(OpenGLSpheresTest)
#include "OpenGLSpheresTest.moc"
