// The spheres: exact calls.
//
// Expected vertices use the same libm as the code. Expected normals use calcNormal, which OpenGLTest checks.

#include "view/OpenGL.h"

#include "tests/support/FakeOpenGL.h"
#include "tests/support/Sanitizer.h"
#include "tests/view/FloatArray.h"

#include <QColor>
#include <QtMath>
#include <QtTest>
#include <qopengl.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>

namespace {

using Vector = std::array<float, 3>;
using Calls = QVector<OpenGLCall>;

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr std::array<float, 5> radii = {1.0F, -0.3F, 1e38F, 0.0F, inf};

/// Returns the vertex at polar angle pi i / n and azimuth 2 pi j / n.
Vector vertexAt(float r, int n, int i, int j)
{
    const double theta = i * M_PI / n;
    const double phi = 2.0 * j * M_PI / n;
    const double across = std::sin(theta) * double(r);
    return {static_cast<float>(-across * std::cos(phi)), static_cast<float>(std::cos(theta) * double(r)),
            static_cast<float>(across * std::sin(phi))};
}

OpenGLCall callWith(const char *name, const float *v)
{
    return {name, {v[0], v[1], v[2]}};
}

/// Returns the calls of a sphere. Cells take `colors` in turn, if there are any.
Calls sphereCalls(float r, int n, GLenum mode, const Calls &colors, bool normals, bool texture)
{
    OpenGL gl;
    Calls calls;
    for (int cell = 0; cell < n * n; ++cell) {
        const int i = cell / n;
        const int j = cell % n;
        const std::array<std::array<int, 2>, 4> corners = {{{i, j}, {i, j + 1}, {i + 1, j + 1}, {i + 1, j}}};
        std::array<Vector, 4> vertices = {};
        for (std::size_t k = 0; k < 4; ++k)
            vertices[k] = vertexAt(r, n, corners[k][0], corners[k][1]);
        const std::unique_ptr<float[]> normal(
            gl.calcNormal(vertices[0].data(), vertices[1].data(), vertices[2].data()));

        calls << OpenGLCall{"glBegin", {double(mode)}};
        if (!colors.isEmpty())
            calls << colors.at(cell % colors.size());
        for (std::size_t k = 0; k < 4; ++k) {
            if (normals)
                calls << callWith("glNormal3fv", normal.get());
            if (texture)
                calls << OpenGLCall{"glTexCoord2fv",
                                    {float(corners[k][1]) / float(n), float(corners[k][0]) / float(n)}};
            calls << callWith("glVertex3fv", vertices[k].data());
        }
        calls << OpenGLCall{"glEnd", {}};
    }
    return calls;
}

} // namespace

class OpenGLSpheresTest : public QObject
{
    Q_OBJECT

    OpenGL gl;

private slots:
    void sphereIsBlueOrHasColorPerCell()
    {
        QVector<QColor> colors;
        Calls colorCalls;
        for (int i = 0; i < 12 * 12; ++i) {
            colors << QColor(i % 2 ? 255 : 0, i % 3 ? 255 : 0, i % 5 ? 255 : 0, 77); // the alpha is ignored
            colorCalls << OpenGLCall{"glColor3f", {i % 2 ? 1.0 : 0.0, i % 3 ? 1.0 : 0.0, i % 5 ? 1.0 : 0.0}};
        }
        for (const int n : {0, 1, 2, 5, 12}) {
            for (const float r : radii) {
                FakeOpenGL::clear();
                gl.sphere(r, n, nullptr);
                COMPARE_CALLS(sphereCalls(r, n, GL_TRIANGLE_FAN, {{"glColor3f", {0.0, 0.0, 1.0}}}, true, false));
                FakeOpenGL::clear();
                gl.sphere(r, n, colors.data());
                COMPARE_CALLS(sphereCalls(r, n, GL_TRIANGLE_FAN, colorCalls, true, false));
            }
        }
    }

    void sphereLineOutlinesCells()
    {
        for (const int n : {0, 1, 2, 5, 12}) {
            for (const float r : radii) {
                FakeOpenGL::clear();
                gl.sphereLine(r, n);
                COMPARE_CALLS(sphereCalls(r, n, GL_LINE_LOOP, {}, false, false));
            }
        }
    }

    void sphereTexturedMapsAnglesToFractions()
    {
        for (const int n : {0, 1, 2, 5, 12}) {
            for (const float r : radii) {
                FakeOpenGL::clear();
                gl.sphereTextured(r, n);
                COMPARE_CALLS(sphereCalls(r, n, GL_QUADS, {}, true, true));
            }
        }
    }

    void negativeBandsDrawNothing()
    {
        FakeOpenGL::clear();
        for (const int n : {-1, std::numeric_limits<int>::min()}) {
            gl.sphere(1.0F, n, nullptr);
            gl.sphereLine(1.0F, n);
            gl.sphereTextured(1.0F, n);
        }
        COMPARE_CALLS({});
    }

    void verticesAreAllocatedOneByOneAndFreed()
    {
#ifdef PENDRIX_ADDRESS_SANITIZER
        QSKIP("AddressSanitizer has its own operators new and delete, and reports leaks");
#endif
        for (const int n : {0, 1, 2, 7}) {
            const ArrayCount before = ArrayCount::now();
            gl.sphereLine(1.0F, n);
            QCOMPARE(ArrayCount::now().threes, before.threes + long(n + 1) * (n + 1));
            gl.sphere(1.0F, n, nullptr);
            gl.sphereTextured(1.0F, n);
            QCOMPARE(ArrayCount::now().alive, before.alive);
        }
    }
};

QTEST_APPLESS_MAIN(OpenGLSpheresTest)
#include "OpenGLSpheresTest.moc"
