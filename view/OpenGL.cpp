#include "view/OpenGL.h"

#include "view/SendColor.h"

#include <QtMath>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <utility>

// The interface passes arrays as pointers to non-const, even those that are only read.
// NOLINTBEGIN(readability-non-const-parameter)

namespace {

/// Returns a new array of `count` times `each` floats, of length zero for a negative `count`.
float *newFloats(int count, std::size_t each)
{
    return new float[count > 0 ? static_cast<std::size_t>(count) * each : 0];
}

double scalarProduct(const float *a, const float *b)
{
    double sum = 0.0;
    for (int i = 0; i < 3; ++i)
        sum += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    return sum;
}

} // namespace

float *OpenGL::textPolygon(int n)
{
    float *const pairs = newFloats(n, 2);
    float *next = pairs;
    const auto step = static_cast<float>(2.0 * M_PI / n);
    for (int k = n; k >= 1; --k) {
        const double angle = (k - n / 2.0) * static_cast<double>(step);
        *next++ = static_cast<float>(0.5 + 0.5 * std::sin(angle));
        *next++ = static_cast<float>(0.5 + 0.5 * std::cos(angle));
    }
    return pairs;
}

float *OpenGL::calcNormal(float *p0, float *p1, float *p2)
{
    const std::array<float, 3> u = {p1[0] - p0[0], p1[1] - p0[1], p1[2] - p0[2]};
    const std::array<float, 3> v = {p2[0] - p0[0], p2[1] - p0[1], p2[2] - p0[2]};
    return normalise(u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]);
}

float *OpenGL::normalise(float x, float y, float z)
{
    const float squared = x * x + y * y + z * z;
    if (!(squared > 0.0F))
        return new float[3]{0.0F, 0.0F, 0.0F};
    const float length = std::sqrt(squared);
    return new float[3]{x / length, y / length, z / length};
}

float OpenGL::angleVect(float *a, float *b)
{
    double cosine = scalarProduct(a, b) / (std::sqrt(scalarProduct(a, a)) * std::sqrt(scalarProduct(b, b)));
    if (std::abs(cosine) > 1.0)
        cosine = 0.0;
    return static_cast<float>(std::acos(cosine));
}

void OpenGL::chrysanthemum()
{
    constexpr int count = 3000;
    glBegin(GL_LINE_STRIP);
    for (int i = 1; i <= count; ++i) {
        const double u = i * 21.0 * M_PI / count;
        const double petals = std::pow(std::sin(17.0 * u / 3.0), 4.0);
        const double fringe = std::pow(std::sin(2.0 * std::cos(3.0 * u) - 28.0 * u), 8.0);
        const double r = 5.0 * (1.0 + std::sin(11.0 * u / 5.0)) - 4.0 * petals * fringe;
        const double z = (r / 20.0 + 0.2) * std::sin(2.0 * M_PI * r / 7.0);
        sendColor(Qt::red);
        glVertex3f(static_cast<float>(r * std::cos(u)), static_cast<float>(r * std::sin(u)), static_cast<float>(z));
    }
    glEnd();
}

void OpenGL::setup()
{
    glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_DEPTH_TEST);
    glFlush();
}

void OpenGL::sceneInit(QColor background) // NOLINT(performance-unnecessary-value-param): part of the interface
{
    glClearColor(static_cast<float>(background.redF()), static_cast<float>(background.greenF()),
                 static_cast<float>(background.blueF()), 1.0F);

    using Vector = std::array<float, 4>;
    const Vector black = {0.0F, 0.0F, 0.0F, 1.0F};
    const Vector dim = {0.1F, 0.1F, 0.1F, 1.0F};
    const Vector white = {1.0F, 1.0F, 1.0F, 0.0F};
    const Vector red = {1.0F, 0.0F, 0.0F, 0.0F};
    // w = 0: directional lights
    const std::array<std::pair<GLenum, Vector>, 2> lights = {{
        {GL_LIGHT0, {1.0F, 0.5F, 1.0F, 0.0F}},
        {GL_LIGHT1, {-1.0F, 0.5F, -1.0F, 0.0F}},
    }};
    for (const auto &[light, direction] : lights) {
        glLightfv(light, GL_AMBIENT, dim.data());
        glLightfv(light, GL_DIFFUSE, white.data());
        glLightfv(light, GL_SPECULAR, white.data());
        glLightfv(light, GL_POSITION, direction.data());
        glEnable(light);
    }

    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 0);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0);
    glEnable(GL_LIGHTING);

    glMaterialfv(GL_FRONT, GL_AMBIENT, black.data());
    glMaterialf(GL_FRONT, GL_SHININESS, 40.0F);
    glMaterialfv(GL_FRONT, GL_SPECULAR, white.data());
    glMaterialfv(GL_FRONT, GL_DIFFUSE, red.data());
    glEnable(GL_COLOR_MATERIAL);

    glShadeModel(GL_SMOOTH);
    glEnable(GL_LINE_SMOOTH);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glHint(GL_POINT_SMOOTH_HINT, GL_NICEST);
}

float *OpenGL::polygon(int n, float r, float z)
{
    float *const vertices = newFloats(n, 3);
    float *next = vertices;
    for (int k = 0; k < n; ++k) {
        const double angle = k * 2.0 * M_PI / n;
        *next++ = static_cast<float>(static_cast<double>(r) * std::sin(angle));
        *next++ = static_cast<float>(static_cast<double>(r) * std::cos(angle));
        *next++ = z * r;
    }
    return vertices;
}

float *OpenGL::grid(int rows, int cols, float size)
{
    float *const lattice = newFloats(cols > 0 ? rows : 0, 2 * static_cast<std::size_t>(cols));
    float *next = lattice;
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < cols; ++j) {
            *next++ = static_cast<float>(j) * size / static_cast<float>(cols);
            *next++ = static_cast<float>(i) * size / static_cast<float>(rows);
        }
    }
    return lattice;
}

void OpenGL::shuffle(int *a, int n)
{
    for (int m = n; m >= 2; --m)
        std::swap(a[std::rand() % m], a[m - 1]);
}

void OpenGL::circle(float *centre, int n, float z)
{
    const std::array<float, 3> origin = {0.0F, 0.0F, 0.0F};
    const float *const middle = centre ? centre : origin.data();
    const std::unique_ptr<float[]> points(polygon(n, 1.0F, z));
    const float *point = points.get();
    glBegin(GL_LINE_LOOP);
    for (int k = 0; k < n; ++k, point += 3)
        glVertex3f(middle[0] + point[0], middle[1] + point[1], middle[2]);
    glEnd();
}

void OpenGL::panel(float a, float b)
{
    glBegin(GL_POLYGON);
    glVertex2f(-b / 2.0F, -a / 2.0F);
    glVertex2f(-b / 2.0F, a / 2.0F);
    glVertex2f(b / 2.0F, a / 2.0F);
    glVertex2f(b / 2.0F, -a / 2.0F);
    glEnd();
}

void OpenGL::panelFace(float a, float b)
{
    glBegin(GL_QUADS);
    glTexCoord2f(0.0F, 0.0F);
    glVertex2f(-b / 2.0F, -a / 2.0F);
    glTexCoord2f(1.0F, 0.0F);
    glVertex2f(b / 2.0F, -a / 2.0F);
    glTexCoord2f(1.0F, 1.0F);
    glVertex2f(b / 2.0F, a / 2.0F);
    glTexCoord2f(0.0F, 1.0F);
    glVertex2f(-b / 2.0F, a / 2.0F);
    glEnd();
}

void OpenGL::ellipse(float cx, float cy, float rx, float ry, int n)
{
    const std::unique_ptr<float[]> points(ellipseCoords(cx, cy, rx, ry, n));
    const float *point = points.get();
    glBegin(GL_LINE_LOOP);
    for (int k = 0; k < n; ++k, point += 2)
        glVertex2f(point[0], point[1]);
    glEnd();
}

float *OpenGL::ellipseCoords(float cx, float cy, float rx, float ry, int n)
{
    float *const points = newFloats(n, 2);
    float *next = points;
    const double cosStep = std::cos(2.0 * M_PI / n);
    const double sinStep = std::sin(2.0 * M_PI / n);
    double c = 1.0;
    double s = 0.0;
    for (int k = 0; k < n; ++k) {
        *next++ = static_cast<float>(static_cast<double>(cx) + static_cast<double>(rx) * c);
        *next++ = static_cast<float>(static_cast<double>(cy) + static_cast<double>(ry) * s);
        const double rotated = c * cosStep - s * sinStep;
        s = s * cosStep + c * sinStep;
        c = rotated;
    }
    return points;
}

// NOLINTEND(readability-non-const-parameter)
