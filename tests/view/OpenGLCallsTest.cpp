// The drawing helpers' calls and arrays, argument for argument, but for those of the solids and of the spheres.

#include "view/OpenGL.h"
#include "view/Renderer.h"

#include "tests/support/ExpectedCalls.h"
#include "tests/support/FakeOpenGL.h"

#include <QColor>
#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>

// A base that costs a view nothing.
static_assert(std::is_empty<OpenGL>::value);
static_assert(!std::is_polymorphic<OpenGL>::value);
static_assert(std::is_convertible<Renderer *, OpenGL *>::value);

namespace {

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr double pi = 3.14159265358979323846;
constexpr double ulpOfOne = std::numeric_limits<float>::epsilon();
constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();

const ExpectedCall figureEnd = {"glEnd", {}};

double toFloat(double value)
{
    return double(static_cast<float>(value));
}

ExpectedCalls chrysanthemumCalls()
{
    using Real = long double;
    const Real longPi = 3.141592653589793238462643383279502884L;
    ExpectedCalls calls = {{"glBegin", {GL_LINE_STRIP}}};
    for (int i = 1; i <= 3000; ++i) {
        const Real u = Real(i) * 21 * longPi / 3000;
        const Real petals = std::sin(17 * u / 3);
        const Real ripples = std::sin(2 * std::cos(3 * u) - 28 * u);
        const Real r = 5 * (1 + std::sin(11 * u / 5)) - 4 * std::pow(petals, Real(4)) * std::pow(ripples, Real(8));
        const Real z = (r / 20 + Real(2) / 10) * std::sin(2 * longPi * r / 7);
        calls.append({"glColor3f", {1.0, 0.0, 0.0}});
        // Half an ulp of 10 for the float, and next to nothing for the double.
        calls.append({"glVertex3f", {double(r * std::cos(u)), double(r * std::sin(u)), double(z)}, 5e-7});
    }
    calls.append(figureEnd);
    return calls;
}

/// The points of an ellipse straight from their angles.
QVector<double> ellipsePoints(double cx, double cy, double rx, double ry, int n)
{
    QVector<double> points;
    for (int k = 0; k < n; ++k) {
        const double a = 2.0 * pi * k / n;
        points << cx + rx * std::cos(a) << cy + ry * std::sin(a);
    }
    return points;
}

struct Ellipse
{
    float cx, cy, rx, ry;
    int n;

    /// A rounding to float. The point is turned on in double, which adds next to nothing to it.
    double tolerance() const
    {
        double size = 0.0;
        for (const float length : {cx, cy, rx, ry})
            size += std::isnan(length) ? 0.0 : std::abs(double(length));
        return ulpOfOne * size;
    }
};

} // namespace

Q_DECLARE_METATYPE(Ellipse)

class OpenGLCallsTest : public QObject
{
    Q_OBJECT

    OpenGL gl;

    static void addCounts()
    {
        QTest::addColumn<int>("n");
        for (const int n : {1, 2, 3, 4, 5, 24, 1000})
            QTest::addRow("%d", n) << n;
        QTest::newRow("0") << 0;
        QTest::newRow("-1") << -1;
        QTest::newRow("lowest") << lowest;
    }

    static void addEllipses()
    {
        QTest::addColumn<Ellipse>("e");
        for (const int n : {0, -1, lowest, 1, 2, 3, 4, 5, 24, 1000}) {
            QTest::addRow("circle of %d", n) << Ellipse{0.0F, 0.0F, 1.0F, 1.0F, n};
            QTest::addRow("ellipse of %d", n) << Ellipse{1.5F, -2.25F, 3.0F, 0.7F, n};
            QTest::addRow("negative axes of %d", n) << Ellipse{-100.0F, 7.0F, -0.5F, -20.0F, n};
            QTest::addRow("line of %d", n) << Ellipse{0.1F, 0.2F, 0.0F, 5.0F, n};
            QTest::addRow("no number, of %d", n) << Ellipse{noNumber, 0.25F, 1.0F, 1.0F, n};
        }
    }

private slots:
    void init() { FakeOpenGL::clear(); }

    void constructionCallsNothing()
    {
        const OpenGL constructed;
        Q_UNUSED(constructed)
        COMPARE_CALLS(ExpectedCalls());
    }

    void chrysanthemum()
    {
        gl.chrysanthemum();
        COMPARE_CALLS(chrysanthemumCalls());
        QCOMPARE(FakeOpenGL::calls().size(), 1 + 3000 * 2 + 1);
    }

    void setup()
    {
        gl.setup();
        const ExpectedCalls expected = {
            {"glClearColor", {0.0, 0.0, 0.0, 0.0}},
            {"glClear", {GL_COLOR_BUFFER_BIT}},
            {"glEnable", {GL_TEXTURE_2D}},
            {"glEnable", {GL_DEPTH_TEST}},
            {"glFlush", {}},
        };
        COMPARE_CALLS(expected);
    }

    void sceneInit_data()
    {
        QTest::addColumn<QColor>("background");
        QTest::addColumn<QVector<double>>("shares");
        QTest::newRow("black") << QColor(0, 0, 0) << QVector<double>{0, 0, 0};
        QTest::newRow("white") << QColor(255, 255, 255) << QVector<double>{1, 1, 1};
        QTest::newRow("bytes") << QColor(1, 128, 254) << QVector<double>{1 / 255.0, 128 / 255.0, 254 / 255.0};
        QTest::newRow("transparent") << QColor(255, 0, 51, 0) << QVector<double>{1, 0, 0.2};
        QTest::newRow("16 bits") << QColor::fromRgba64(1, 0x1234, 0x8000)
                                 << QVector<double>{1 / 65535.0, 0x1234 / 65535.0, 0x8000 / 65535.0};
        QTest::newRow("by its hue") << QColor::fromHsv(240, 255, 255) << QVector<double>{0, 0, 1};
        QTest::newRow("invalid") << QColor() << QVector<double>{0, 0, 0};
    }

    void sceneInit()
    {
        QFETCH(QColor, background);
        QFETCH(QVector<double>, shares);
        const double tenth = toFloat(0.1);
        gl.sceneInit(background);
        const ExpectedCalls expected = {
            {"glClearColor", {toFloat(shares.at(0)), toFloat(shares.at(1)), toFloat(shares.at(2)), 1.0}},

            {"glLightfv", {GL_LIGHT0, GL_AMBIENT, tenth, tenth, tenth, 1.0}},
            {"glLightfv", {GL_LIGHT0, GL_DIFFUSE, 1.0, 1.0, 1.0, 0.0}},
            {"glLightfv", {GL_LIGHT0, GL_SPECULAR, 1.0, 1.0, 1.0, 0.0}},
            {"glLightfv", {GL_LIGHT0, GL_POSITION, 1.0, 0.5, 1.0, 0.0}},
            {"glEnable", {GL_LIGHT0}},
            {"glLightfv", {GL_LIGHT1, GL_AMBIENT, tenth, tenth, tenth, 1.0}},
            {"glLightfv", {GL_LIGHT1, GL_DIFFUSE, 1.0, 1.0, 1.0, 0.0}},
            {"glLightfv", {GL_LIGHT1, GL_SPECULAR, 1.0, 1.0, 1.0, 0.0}},
            {"glLightfv", {GL_LIGHT1, GL_POSITION, -1.0, 0.5, -1.0, 0.0}},
            {"glEnable", {GL_LIGHT1}},

            {"glLightModeli", {GL_LIGHT_MODEL_LOCAL_VIEWER, 0.0}},
            {"glLightModeli", {GL_LIGHT_MODEL_TWO_SIDE, 0.0}},
            {"glEnable", {GL_LIGHTING}},

            {"glMaterialfv", {GL_FRONT, GL_AMBIENT, 0.0, 0.0, 0.0, 1.0}},
            {"glMaterialf", {GL_FRONT, GL_SHININESS, 40.0}},
            {"glMaterialfv", {GL_FRONT, GL_SPECULAR, 1.0, 1.0, 1.0, 0.0}},
            {"glMaterialfv", {GL_FRONT, GL_DIFFUSE, 1.0, 0.0, 0.0, 0.0}},
            {"glEnable", {GL_COLOR_MATERIAL}},

            {"glShadeModel", {GL_SMOOTH}},
            {"glEnable", {GL_LINE_SMOOTH}},
            {"glHint", {GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST}},
            {"glHint", {GL_POINT_SMOOTH_HINT, GL_NICEST}},
        };
        COMPARE_CALLS(expected);
    }

    void polygon_data() { addCounts(); }

    void polygon()
    {
        QFETCH(int, n);
        using Arguments = std::pair<float, float>;
        for (const auto &[r, z] :
             {Arguments{1.0F, 0.0F}, Arguments{2.5F, 3.0F}, Arguments{-1.5F, 0.1F}, Arguments{0.1F, 0.1F},
              Arguments{1e38F, 10.0F}, Arguments{0.0F, -5.0F}, Arguments{noNumber, 1.0F}}) {
            const std::unique_ptr<float[]> corners(gl.polygon(n, r, z));
            QVERIFY(corners != nullptr);
            for (int k = 0; k < n; ++k) {
                const double a = 2.0 * pi * k / n;
                const float *corner = corners.get() + std::ptrdiff_t(3) * k;
                QCOMPARE(difference(corner, {double(r) * std::sin(a), double(r) * std::cos(a)},
                                    1e-6 * std::abs(double(r)) + 1e-45),
                         QByteArray());
                // Its height is the product of both, to the bit.
                QCOMPARE(difference(corner + 2, {double(z * r)}), QByteArray());
            }
        }
        COMPARE_CALLS(ExpectedCalls());
    }

    void grid_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("cols");
        QTest::newRow("one") << 1 << 1;
        QTest::newRow("wide") << 2 << 4;
        QTest::newRow("tall") << 8 << 1;
        QTest::newRow("thirds") << 3 << 7;
        QTest::newRow("large") << 100 << 90;
        QTest::newRow("no rows") << 0 << 5;
        QTest::newRow("no columns") << 5 << 0;
        QTest::newRow("none") << 0 << 0;
        QTest::newRow("negative rows") << -1 << 5;
        QTest::newRow("negative columns") << 5 << -1;
        QTest::newRow("both negative") << -2 << -3;
        QTest::newRow("lowest") << lowest << lowest;
        QTest::newRow("no rows of many") << 0 << highest;
        QTest::newRow("many rows of none") << 1000000 << 0;
    }

    void grid()
    {
        QFETCH(int, rows);
        QFETCH(int, cols);
        const bool empty = rows < 1 || cols < 1;
        for (const float size : {1.0F, 8.0F, -2.5F, 0.3F, 1e30F, noNumber}) {
            const std::unique_ptr<float[]> points(gl.grid(rows, cols, size));
            QVERIFY(points != nullptr);
            for (int i = 0; !empty && i < rows; ++i) {
                for (int j = 0; j < cols; ++j) {
                    const QVector<double> point = {j * double(size) / cols, i * double(size) / rows};
                    QCOMPARE(difference(points.get() + 2 * (std::ptrdiff_t(i) * cols + j), point,
                                        2.0 * ulpOfOne * std::abs(double(size))),
                             QByteArray());
                }
            }
        }
        COMPARE_CALLS(ExpectedCalls());
    }

    void gridInWords()
    {
        const std::unique_ptr<float[]> points(gl.grid(2, 4, 8.0F));
        const QVector<double> expected = {0, 0, 2, 0, 4, 0, 6, 0, 0, 4, 2, 4, 4, 4, 6, 4};
        QCOMPARE(difference(points.get(), expected), QByteArray());
    }

    void shuffle_data()
    {
        QTest::addColumn<int>("n");
        for (const int n : {2, 3, 5, 52, 1000})
            QTest::addRow("%d", n) << n;
    }

    void shuffle()
    {
        QFETCH(int, n);
        for (unsigned int seed = 1; seed <= 20; ++seed) {
            QVector<int> numbers;
            for (int i = 0; i < n; ++i)
                numbers.append(1000 - 3 * i);
            QVector<int> expected = numbers;

            std::srand(seed);
            for (int m = n; m >= 2; --m)
                std::swap(expected[std::rand() % m], expected[m - 1]);
            const int nextDrawn = std::rand();

            QVector<int> padded = QVector<int>{-7} + numbers + QVector<int>{-8};
            std::srand(seed);
            gl.shuffle(padded.data() + 1, n);
            QCOMPARE(padded, QVector<int>{-7} + expected + QVector<int>{-8});
            QCOMPARE(std::rand(), nextDrawn);
        }
        COMPARE_CALLS(ExpectedCalls());
    }

    void shufflesNothingBelowTwo()
    {
        std::srand(5);
        const int firstDrawn = std::rand();
        std::srand(5);
        int only = 3;
        gl.shuffle(&only, 1);
        QCOMPARE(only, 3);
        for (const int n : {1, 0, -1, lowest})
            gl.shuffle(nullptr, n);
        QCOMPARE(std::rand(), firstDrawn);
    }

    void circle_data() { addCounts(); }

    void circle()
    {
        QFETCH(int, n);
        using Centre = std::array<float, 3>;
        for (const Centre &at :
             {Centre{0.0F, 0.0F, 0.0F}, Centre{1.5F, -2.0F, 0.3F}, Centre{-1000.0F, 0.1F, noNumber}}) {
            for (const bool centred : {false, true}) {
                ExpectedCalls expected = {{"glBegin", {GL_LINE_LOOP}}};
                for (int k = 0; k < n; ++k) {
                    const double a = 2.0 * pi * k / n;
                    if (centred)
                        expected.append({"glVertex3f",
                                         {double(at[0]) + std::sin(a), double(at[1]) + std::cos(a), double(at[2])},
                                         1e-6 + ulpOfOne * std::max(std::abs(double(at[0])), std::abs(double(at[1])))});
                    else
                        expected.append({"glVertex3f", {std::sin(a), std::cos(a), 0.0}, 1e-6});
                }
                expected.append(figureEnd);

                // The height of an argument of its own goes nowhere.
                for (const float z : {0.0F, 5.0F, noNumber}) {
                    Centre centre = at;
                    FakeOpenGL::clear();
                    gl.circle(centred ? centre.data() : nullptr, n, z);
                    COMPARE_CALLS(expected);
                    for (const OpenGLCall &call : FakeOpenGL::calls()) {
                        if (call.name == "glVertex3f")
                            QCOMPARE(call, (OpenGLCall{"glVertex3f",
                                                       {call.arguments.at(0), call.arguments.at(1),
                                                        centred ? double(at[2]) : 0.0}}));
                    }
                }
            }
        }
    }

    void panel_data()
    {
        QTest::addColumn<float>("a");
        QTest::addColumn<float>("b");
        QTest::newRow("square") << 2.0F << 2.0F;
        QTest::newRow("wide") << 1.0F << 3.0F;
        QTest::newRow("tall") << 0.1F << 0.03F;
        QTest::newRow("negative") << -4.0F << 5.0F;
        QTest::newRow("large") << 3e38F << 1e38F;
        QTest::newRow("no number") << noNumber << 1.0F;
    }

    void panel()
    {
        QFETCH(float, a);
        QFETCH(float, b);
        const double y = double(a) / 2.0;
        const double x = double(b) / 2.0;
        gl.panel(a, b);
        const ExpectedCalls expected = {
            {"glBegin", {GL_POLYGON}}, {"glVertex2f", {-x, -y}}, {"glVertex2f", {-x, y}},
            {"glVertex2f", {x, y}},    {"glVertex2f", {x, -y}},  figureEnd,
        };
        COMPARE_CALLS(expected);
    }

    void panelFace_data() { panel_data(); }

    void panelFace()
    {
        QFETCH(float, a);
        QFETCH(float, b);
        const double y = double(a) / 2.0;
        const double x = double(b) / 2.0;
        gl.panelFace(a, b);
        const ExpectedCalls expected = {
            {"glBegin", {GL_QUADS}},  {"glTexCoord2f", {0.0, 0.0}},
            {"glVertex2f", {-x, -y}}, {"glTexCoord2f", {1.0, 0.0}},
            {"glVertex2f", {x, -y}},  {"glTexCoord2f", {1.0, 1.0}},
            {"glVertex2f", {x, y}},   {"glTexCoord2f", {0.0, 1.0}},
            {"glVertex2f", {-x, y}},  figureEnd,
        };
        COMPARE_CALLS(expected);
    }

    void ellipse_data() { addEllipses(); }

    void ellipse()
    {
        QFETCH(Ellipse, e);
        const QVector<double> points = ellipsePoints(double(e.cx), double(e.cy), double(e.rx), double(e.ry), e.n);
        ExpectedCalls expected = {{"glBegin", {GL_LINE_LOOP}}};
        for (int k = 0; k < points.size(); k += 2)
            expected.append({"glVertex2f", {points.at(k), points.at(k + 1)}, e.tolerance()});
        expected.append(figureEnd);
        gl.ellipse(e.cx, e.cy, e.rx, e.ry, e.n);
        COMPARE_CALLS(expected);
    }

    void ellipseCoords_data() { addEllipses(); }

    void ellipseCoords()
    {
        QFETCH(Ellipse, e);
        const std::unique_ptr<float[]> coords(gl.ellipseCoords(e.cx, e.cy, e.rx, e.ry, e.n));
        QVERIFY(coords != nullptr);
        const QVector<double> points = ellipsePoints(double(e.cx), double(e.cy), double(e.rx), double(e.ry), e.n);
        QCOMPARE(difference(coords.get(), points, e.tolerance()), QByteArray());
        COMPARE_CALLS(ExpectedCalls());

        // It starts on the axis, and what is drawn is the same to the bit.
        if (e.n > 0)
            QCOMPARE(difference(coords.get(), {double(e.cx + e.rx), double(e.cy)}), QByteArray());
        gl.ellipse(e.cx, e.cy, e.rx, e.ry, e.n);
        const QVector<OpenGLCall> &calls = FakeOpenGL::calls();
        for (int k = 0; k < e.n; ++k)
            QCOMPARE(difference(coords.get() + std::ptrdiff_t(2) * k, calls.at(1 + k).arguments), QByteArray());
    }
};

QTEST_APPLESS_MAIN(OpenGLCallsTest)
#include "OpenGLCallsTest.moc"
