// The drawing helpers other than the solids and spheres: exact calls and exact floats.
//
// Results of + - * / and square roots are literals. Expectations with sin and cos use the same libm, because the last
// bit of its results can differ between processors.

#include "view/OpenGL.h"
#include "view/Renderer.h"

#include "tests/support/FakeOpenGL.h"
#include "tests/view/FloatArray.h"

#include <QColor>
#include <QtMath>
#include <QtTest>
#include <qopengl.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

static_assert(std::is_empty<OpenGL>::value, "a base class that costs a view nothing");
static_assert(!std::is_polymorphic<OpenGL>::value);
static_assert(std::is_convertible<Renderer *, OpenGL *>::value);

namespace {

using Vector = std::array<float, 3>;
using Floats = QVector<float>;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr Vector zero = {0.0F, 0.0F, 0.0F};

constexpr std::array<int, 3> emptyCounts = {0, -1, lowest};
constexpr std::array<int, 8> counts = {1, 2, 3, 4, 5, 7, 24, 1000};

Floats floatsOf(const Vector &v)
{
    return {v[0], v[1], v[2]};
}

/// Returns `value` rounded to float.
float rounded(double value)
{
    return static_cast<float>(value);
}

/// Returns the 2 `n` floats of an ellipse, computed by repeated rotation by one step.
Floats ellipsePoints(float cx, float cy, float rx, float ry, int n)
{
    const double step = 2.0 * M_PI / n;
    QVector<double> c = {1.0};
    QVector<double> s = {0.0};
    Floats points;
    for (int k = 0; k < n; ++k) {
        points << rounded(double(cx) + double(rx) * c.at(k)) << rounded(double(cy) + double(ry) * s.at(k));
        c << c.at(k) * std::cos(step) - s.at(k) * std::sin(step);
        s << s.at(k) * std::cos(step) + c.at(k) * std::sin(step);
    }
    return points;
}

} // namespace

Q_DECLARE_METATYPE(Vector)

class OpenGLTest : public QObject
{
    Q_OBJECT

    OpenGL gl;

private slots:
    void init() { FakeOpenGL::clear(); }

    void constructionCallsNoOpenGL()
    {
        const OpenGL constructed;
        Q_UNUSED(constructed)
        COMPARE_CALLS({});
    }

    void textPolygonFollowsCircleInUnitSquare()
    {
        for (const int n : counts) {
            const float step = rounded(2.0 * M_PI / n);
            Floats expected;
            for (int k = 0; k < n; ++k) {
                const double a = (n - k - 0.5 * n) * double(step);
                expected << rounded(std::sin(a) * 0.5 + 0.5) << rounded(std::cos(a) * 0.5 + 0.5);
            }
            COMPARE_NEW_ARRAY(gl.textPolygon(n), (expected));
        }
    }

    void noPointsForCountsBelowOne()
    {
        for (const int n : emptyCounts) {
            COMPARE_NEW_ARRAY(gl.textPolygon(n), {});
            COMPARE_NEW_ARRAY(gl.polygon(n, 1.0F, 1.0F), {});
            COMPARE_NEW_ARRAY(gl.ellipseCoords(0.0F, 0.0F, 1.0F, 1.0F, n), {});
            COMPARE_NEW_ARRAY(gl.grid(n, 5, 1.0F), {});
            COMPARE_NEW_ARRAY(gl.grid(5, n, 1.0F), {});
            COMPARE_NEW_ARRAY(gl.grid(n, n, 1.0F), {});
            FakeOpenGL::clear();
            gl.circle(nullptr, n, 1.0F);
            gl.ellipse(0.0F, 0.0F, 1.0F, 1.0F, n);
            COMPARE_CALLS({{"glBegin", {GL_LINE_LOOP}}, {"glEnd", {}}, {"glBegin", {GL_LINE_LOOP}}, {"glEnd", {}}});
        }
    }

    void calcNormal_data()
    {
        QTest::addColumn<Vector>("p0");
        QTest::addColumn<Vector>("p1");
        QTest::addColumn<Vector>("p2");
        QTest::addColumn<Vector>("normal");
        const Vector x = {1.0F, 0.0F, 0.0F};
        const Vector y = {0.0F, 1.0F, 0.0F};
        const Vector z = {0.0F, 0.0F, 1.0F};
        QTest::newRow("x, y") << zero << x << y << z;
        QTest::newRow("y, z") << zero << y << z << x;
        QTest::newRow("z, x") << zero << z << x << y;
        QTest::newRow("slanting") << Vector{3.0F, 0.0F, 0.0F} << Vector{0.0F, 3.0F, 0.0F} << Vector{0.0F, 0.0F, 3.0F}
                                  << Vector{0.57735026F, 0.57735026F, 0.57735026F};
        QTest::newRow("general") << Vector{0.1F, 0.2F, 0.3F} << Vector{1.7F, -0.4F, 0.9F} << Vector{-2.2F, 3.3F, 0.55F}
                                 << Vector{-0.4491701F, -0.39777255F, 0.8000145F};
        QTest::newRow("nearly collinear")
            << Vector{12.5F, -3.1F, 0.7F} << Vector{12.6F, -3.2F, 0.9F} << Vector{12.4F, -3.05F, 0.65F}
            << Vector{-0.3015092F, -0.90453434F, -0.30151266F};
        QTest::newRow("unlike sizes") << Vector{-0.001F, 0.002F, 5.0F} << Vector{4000.0F, 7.0F, 0.01F}
                                      << Vector{0.25F, 0.75F, -33.3F}
                                      << Vector{-0.0017248191F, 0.9998081F, 0.019514974F};
        QTest::newRow("collinear") << zero << x << Vector{2.0F, 0.0F, 0.0F} << zero;
        QTest::newRow("NaN") << Vector{notANumber, 0.0F, 0.0F} << x << y << zero;
        QTest::newRow("square underflows") << zero << Vector{1e-12F, 0.0F, 0.0F} << Vector{0.0F, 1e-12F, 0.0F} << zero;
        QTest::newRow("square overflows") << zero << Vector{1e12F, 0.0F, 0.0F} << Vector{0.0F, 1e12F, 0.0F} << zero;
        QTest::newRow("product overflows") << zero << Vector{1e38F, 0.0F, 0.0F} << Vector{0.0F, 1e38F, 0.0F}
                                           << Vector{0.0F, 0.0F, notANumber}; // infinity by infinity
    }

    void calcNormal()
    {
        QFETCH(Vector, p0);
        QFETCH(Vector, p1);
        QFETCH(Vector, p2);
        QFETCH(Vector, normal);
        COMPARE_NEW_ARRAY(gl.calcNormal(p0.data(), p1.data(), p2.data()), (floatsOf(normal)));
    }

    void normalise_data()
    {
        QTest::addColumn<Vector>("v");
        QTest::addColumn<Vector>("normalised");
        QTest::newRow("3, 4") << Vector{3.0F, 0.0F, -4.0F} << Vector{0.6F, 0.0F, -0.8F};
        QTest::newRow("1, 2, 2") << Vector{-1.0F, 2.0F, 2.0F} << Vector{-0.33333334F, 0.6666667F, 0.6666667F};
        QTest::newRow("1, 2, 3") << Vector{1.0F, 2.0F, 3.0F} << Vector{0.26726124F, 0.5345225F, 0.8017837F};
        QTest::newRow("general") << Vector{0.1F, -0.7F, 12.5F} << Vector{0.007987231F, -0.055910613F, 0.9984038F};
        QTest::newRow("unlike sizes") << Vector{0.001F, 5000.0F, -77.7F}
                                      << Vector{1.9997586e-07F, 0.99987924F, -0.0155381225F};
        QTest::newRow("negative zero") << Vector{-0.0F, -0.0F, -0.0F} << zero;
        QTest::newRow("smallest square") << Vector{0x1p-74F, 0.0F, 0.0F} << Vector{1.0F, 0.0F, 0.0F};
        QTest::newRow("square underflows") << Vector{1e-30F, 1e-30F, 1e-30F} << zero;
        QTest::newRow("square overflows") << Vector{1e20F, 1.0F, -1e38F} << Vector{0.0F, 0.0F, -0.0F};
        QTest::newRow("infinite") << Vector{-inf, 5.0F, 0.0F} << Vector{notANumber, 0.0F, 0.0F};
        QTest::newRow("NaN") << Vector{1.0F, notANumber, inf} << zero;
    }

    void normalise()
    {
        QFETCH(Vector, v);
        QFETCH(Vector, normalised);
        COMPARE_NEW_ARRAY(gl.normalise(v[0], v[1], v[2]), (floatsOf(normalised)));
    }

    void angleVect_data()
    {
        QTest::addColumn<Vector>("a");
        QTest::addColumn<Vector>("b");
        QTest::addColumn<float>("angle");
        const Vector x = {1.0F, 0.0F, 0.0F};
        QTest::newRow("right") << x << Vector{0.0F, 0.0F, -7.0F} << 1.5707964F;
        QTest::newRow("parallel") << Vector{0.0F, 3.0F, 4.0F} << Vector{0.0F, 6.0F, 8.0F} << 0.0F;
        QTest::newRow("opposite") << Vector{0.0F, 2.0F, 0.0F} << Vector{0.0F, -5.0F, 0.0F} << 3.1415927F;
        QTest::newRow("45 degrees") << x << Vector{1.0F, 1.0F, 0.0F} << 0.7853982F;
        QTest::newRow("general") << Vector{1.0F, 2.0F, 3.0F} << Vector{-2.0F, 0.5F, 7.0F}
                                 << rounded(std::acos(20.0 / (std::sqrt(14.0) * std::sqrt(53.25))));
        QTest::newRow("1e38") << Vector{1e38F, 0.0F, 0.0F} << Vector{1e38F, 1e38F, 0.0F} << 0.7853982F;
        QTest::newRow("subnormal") << Vector{1e-45F, 0.0F, 0.0F} << Vector{1e-45F, 0.0F, 1e-45F} << 0.7853982F;
        // 3 / (sqrt(3) sqrt(3)) is rounded to 1 + 2^-52.
        QTest::newRow("cosine beyond 1") << Vector{1.0F, 1.0F, 1.0F} << Vector{1.0F, 1.0F, 1.0F} << 1.5707964F;
        QTest::newRow("cosine beyond -1") << Vector{1.0F, 1.0F, 1.0F} << Vector{-1.0F, -1.0F, -1.0F} << 1.5707964F;
        QTest::newRow("zero") << x << zero << notANumber;
        QTest::newRow("NaN") << Vector{notANumber, 0.0F, 0.0F} << x << notANumber;
        QTest::newRow("infinite") << Vector{inf, 0.0F, 0.0F} << x << notANumber;
    }

    void angleVect()
    {
        QFETCH(Vector, a);
        QFETCH(Vector, b);
        QFETCH(float, angle);
        for (const float calculated : {gl.angleVect(a.data(), b.data()), gl.angleVect(b.data(), a.data())})
            QCOMPARE(difference(&calculated, {angle}), QByteArray());
    }

    void chrysanthemumIsOneRedStrip()
    {
        QVector<OpenGLCall> expected = {{"glBegin", {GL_LINE_STRIP}}};
        for (int i = 1; i <= 3000; ++i) {
            const double u = 21.0 * i * M_PI / 3000.0;
            const double r =
                (std::sin(2.2 * u) + 1.0) * 5.0 -
                std::pow(std::sin(u * 17.0 / 3.0), 4) * std::pow(std::sin(std::cos(u * 3.0) * 2.0 - u * 28.0), 8) * 4.0;
            const double z = (0.05 * r + 0.2) * std::sin(r * M_PI * 2.0 / 7.0);
            expected << OpenGLCall{"glColor3f", {1.0, 0.0, 0.0}}
                     << OpenGLCall{"glVertex3f", {rounded(std::cos(u) * r), rounded(std::sin(u) * r), rounded(z)}};
        }
        expected << OpenGLCall{"glEnd", {}};
        gl.chrysanthemum();
        COMPARE_CALLS(expected);
    }

    void setup()
    {
        gl.setup();
        COMPARE_CALLS({{"glClearColor", {0.0, 0.0, 0.0, 0.0}},
                       {"glClear", {GL_COLOR_BUFFER_BIT}},
                       {"glEnable", {GL_TEXTURE_2D}},
                       {"glEnable", {GL_DEPTH_TEST}},
                       {"glFlush", {}}});
    }

    void sceneInit()
    {
        gl.sceneInit(QColor(255, 128, 51, 20));
        COMPARE_CALLS({
            {"glClearColor", {1.0F, 0.5019608F, 0.2F, 1.0F}},

            {"glLightfv", {GL_LIGHT0, GL_AMBIENT, 0.1F, 0.1F, 0.1F, 1.0F}},
            {"glLightfv", {GL_LIGHT0, GL_DIFFUSE, 1.0, 1.0, 1.0, 0.0}},
            {"glLightfv", {GL_LIGHT0, GL_SPECULAR, 1.0, 1.0, 1.0, 0.0}},
            {"glLightfv", {GL_LIGHT0, GL_POSITION, 1.0, 0.5, 1.0, 0.0}},
            {"glEnable", {GL_LIGHT0}},
            {"glLightfv", {GL_LIGHT1, GL_AMBIENT, 0.1F, 0.1F, 0.1F, 1.0F}},
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
        });
    }

    void polygonUsesProductAsHeight()
    {
        for (const int n : counts) {
            Floats expected;
            for (int k = 0; k < n; ++k) {
                const double a = 2.0 * k * M_PI / n;
                expected << rounded(std::sin(a) * double(0.1F)) << rounded(std::cos(a) * double(0.1F)) << 0.030000001F;
            }
            COMPARE_NEW_ARRAY(gl.polygon(n, 0.1F, 0.3F), (expected));
        }
        COMPARE_NEW_ARRAY(gl.polygon(1, 1e38F, -10.0F), {0.0F, 1e38F, -inf});
    }

    void grid()
    {
        COMPARE_NEW_ARRAY(gl.grid(2, 4, 8.0F), {0, 0, 2, 0, 4, 0, 6, 0, 0, 4, 2, 4, 4, 4, 6, 4});
        COMPARE_NEW_ARRAY(gl.grid(1, 7, 0.7F), {0.0F, 0.0F, 0.1F, 0.0F, 0.2F, 0.0F, 0.29999998F, 0.0F, 0.4F, 0.0F, 0.5F,
                                                0.0F, 0.59999996F, 0.0F});
        COMPARE_NEW_ARRAY(gl.grid(3, 1, -2.5F), {-0.0F, -0.0F, -0.0F, -0.8333333F, -0.0F, -1.6666666F});
        COMPARE_NEW_ARRAY(gl.grid(0, highest, 1.0F), {});
    }

    void shuffleSwapsFromEnd()
    {
        for (const int n : {2, 3, 52}) {
            QVector<int> numbers(n + 2);
            for (int i = 0; i < n + 2; ++i)
                numbers[i] = 1000 - 3 * i;
            QVector<int> expected = numbers; // with an element before and one behind
            std::srand(7);
            for (int m = n; m >= 2; --m)
                std::swap(expected[1 + std::rand() % m], expected[m]);
            const int nextDrawn = std::rand();

            std::srand(7);
            gl.shuffle(numbers.data() + 1, n);
            QCOMPARE(numbers, expected);
            QCOMPARE(std::rand(), nextDrawn);
        }
    }

    void shuffleDrawsNothingBelowTwo()
    {
        std::srand(5);
        const int firstDrawn = std::rand();
        std::srand(5);
        for (const int n : {1, 0, -1, lowest})
            gl.shuffle(nullptr, n);
        QCOMPARE(std::rand(), firstDrawn);
    }

    void circleIgnoresHeight()
    {
        for (const int n : counts) {
            for (const bool centred : {false, true}) {
                Vector centre = {1.5F, -2.1F, 0.3F};
                const Vector &at = centred ? centre : zero;
                QVector<OpenGLCall> expected = {{"glBegin", {GL_LINE_LOOP}}};
                for (int k = 0; k < n; ++k) {
                    const double a = 2.0 * k * M_PI / n;
                    const float x = at[0] + rounded(std::sin(a));
                    const float y = at[1] + rounded(std::cos(a));
                    expected << OpenGLCall{"glVertex3f", {x, y, at[2]}};
                }
                expected << OpenGLCall{"glEnd", {}};
                for (const float z : {0.0F, 5.0F, notANumber}) {
                    const long arraysBefore = ArrayCount::now().alive;
                    FakeOpenGL::clear();
                    gl.circle(centred ? centre.data() : nullptr, n, z);
                    QCOMPARE(ArrayCount::now().alive, arraysBefore);
                    COMPARE_CALLS(expected);
                }
            }
        }
    }

    void panelWidthIsSecondArgument()
    {
        gl.panel(0.1F, -3.0F);
        COMPARE_CALLS({{"glBegin", {GL_POLYGON}},
                       {"glVertex2f", {1.5F, -0.05F}},
                       {"glVertex2f", {1.5F, 0.05F}},
                       {"glVertex2f", {-1.5F, 0.05F}},
                       {"glVertex2f", {-1.5F, -0.05F}},
                       {"glEnd", {}}});
    }

    void panelFaceShowsWholeTexture()
    {
        gl.panelFace(0.1F, 3.0F);
        COMPARE_CALLS({{"glBegin", {GL_QUADS}},
                       {"glTexCoord2f", {0.0, 0.0}},
                       {"glVertex2f", {-1.5F, -0.05F}},
                       {"glTexCoord2f", {1.0, 0.0}},
                       {"glVertex2f", {1.5F, -0.05F}},
                       {"glTexCoord2f", {1.0, 1.0}},
                       {"glVertex2f", {1.5F, 0.05F}},
                       {"glTexCoord2f", {0.0, 1.0}},
                       {"glVertex2f", {-1.5F, 0.05F}},
                       {"glEnd", {}}});
    }

    void ellipseCoordsRotatesByOneStep()
    {
        for (const int n : counts) {
            for (const Floats &e :
                 {Floats{0, 0, 1, 1}, Floats{1.5F, -2.25F, 3.1F, 0.7F}, Floats{-100.3F, notANumber, -0.5F, -20}})
                COMPARE_NEW_ARRAY(gl.ellipseCoords(e[0], e[1], e[2], e[3], n),
                                  (ellipsePoints(e[0], e[1], e[2], e[3], n)));
        }
    }

    void ellipseDrawsLoopOfItsCoords()
    {
        const Floats points = ellipsePoints(1.5F, -2.25F, 3.1F, 0.7F, 24);
        QVector<OpenGLCall> expected = {{"glBegin", {GL_LINE_LOOP}}};
        for (int k = 0; k < 48; k += 2)
            expected << OpenGLCall{"glVertex2f", {points.at(k), points.at(k + 1)}};
        expected << OpenGLCall{"glEnd", {}};
        const long arraysBefore = ArrayCount::now().alive;
        gl.ellipse(1.5F, -2.25F, 3.1F, 0.7F, 24);
        QCOMPARE(ArrayCount::now().alive, arraysBefore);
        COMPARE_CALLS(expected);
    }
};

QTEST_APPLESS_MAIN(OpenGLTest)
#include "OpenGLTest.moc"
