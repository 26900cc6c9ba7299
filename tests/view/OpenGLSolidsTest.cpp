// The regular solids: their calls, argument for argument, and their geometry.

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
#include <map>
#include <memory>
#include <utility>

namespace {

using Point = std::array<double, 3>;
using Face = QVector<int>;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr double pi = 3.14159265358979323846;

double toFloat(double value)
{
    return double(static_cast<float>(value));
}

Point operator-(const Point &a, const Point &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point operator+(const Point &a, const Point &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

double dot(const Point &a, const Point &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Point cross(const Point &a, const Point &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double length(const Point &a)
{
    return std::sqrt(dot(a, a));
}

const ExpectedCall figureEnd = {"glEnd", {}};

struct Solid
{
    void (OpenGL::*draw)(int mode, QColor *colors) = nullptr;
    QVector<Point> corners;
    QVector<Face> faces;
    bool oneFigure = false; ///< all faces between one glBegin and one glEnd
    bool clockwise = false; ///< the way round a face as seen from outside
};

Solid tetrahedron()
{
    return {&OpenGL::tetrahedron,
            {{0, 0, 1.732051},
             {1.632993, 0, -0.5773503},
             {-0.8164966, 1.414214, -0.5773503},
             {-0.8164966, -1.414214, -0.5773503}},
            {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {1, 3, 2}}};
}

Solid octahedron()
{
    return {&OpenGL::octahedron,
            {{0, 0, 1.414}, {1.414, 0, 0}, {0, 1.414, 0}, {-1.414, 0, 0}, {0, -1.414, 0}, {0, 0, -1.414}},
            {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}, {1, 4, 5}, {1, 5, 2}, {2, 5, 3}, {3, 5, 4}}};
}

QVector<Point> cubeCorners(double s)
{
    return {{s, s, s}, {-s, s, s}, {-s, -s, s}, {s, -s, s}, {s, -s, -s}, {s, s, -s}, {-s, s, -s}, {-s, -s, -s}};
}

Solid cube()
{
    return {&OpenGL::cube,
            cubeCorners(1),
            {{3, 0, 1, 2}, {3, 4, 5, 0}, {0, 5, 6, 1}, {1, 6, 7, 2}, {2, 7, 4, 3}, {5, 4, 7, 6}}};
}

Solid dodecahedron()
{
    return {&OpenGL::dodecahedron,
            {{0, 0, 1.07047},
             {0.713644, 0, 0.797878},
             {-0.356822, 0.618, 0.797878},
             {-0.356822, -0.618, 0.797878},
             {0.797878, 0.618034, 0.356822},
             {0.797878, -0.618, 0.356822},
             {-0.934172, 0.381966, 0.356822},
             {0.136294, 1, 0.356822},
             {0.136294, -1, 0.356822},
             {-0.934172, -0.381966, 0.356822},
             {0.934172, 0.381966, -0.356822},
             {0.934172, -0.381966, -0.356822},
             {-0.797878, 0.618, -0.356822},
             {-0.136294, 1, -0.356822},
             {-0.136294, -1, -0.356822},
             {-0.797878, -0.618034, -0.356822},
             {0.356822, 0.618, -0.797878},
             {0.356822, -0.618, -0.797878},
             {-0.713644, 0, -0.797878},
             {0, 0, -1.07047}},
            {{0, 1, 4, 7, 2},
             {0, 2, 6, 9, 3},
             {0, 3, 8, 5, 1},
             {1, 5, 11, 10, 4},
             {2, 7, 13, 12, 6},
             {3, 9, 15, 14, 8},
             {4, 10, 16, 13, 7},
             {5, 8, 14, 17, 11},
             {6, 12, 18, 15, 9},
             {10, 11, 17, 19, 16},
             {12, 13, 16, 19, 18},
             {14, 15, 18, 19, 17}}};
}

Solid icosahedron()
{
    const double a = 0.5257311;
    const double b = 0.8506508;
    return {&OpenGL::icosahedron,
            {{-a, 0, b},
             {a, 0, b},
             {-a, 0, -b},
             {a, 0, -b},
             {0, b, a},
             {0, b, -a},
             {0, -b, a},
             {0, -b, -a},
             {b, a, 0},
             {-b, a, 0},
             {b, -a, 0},
             {-b, -a, 0}},
            {{0, 4, 1}, {0, 9, 4},  {9, 5, 4},  {4, 5, 8},  {4, 8, 1},  {8, 10, 1}, {8, 3, 10},
             {5, 3, 8}, {5, 2, 3},  {2, 7, 3},  {7, 10, 3}, {7, 6, 10}, {7, 11, 6}, {11, 0, 6},
             {0, 1, 6}, {6, 1, 10}, {9, 0, 11}, {9, 11, 2}, {9, 2, 5},  {7, 2, 11}},
            true,
            true};
}

struct TexturedCorner
{
    Point at;
    double s;
    double t;
};

using TexturedFace = std::array<TexturedCorner, 4>;

std::array<TexturedFace, 6> texturedCube()
{
    return {{
        {{{{-1, -1, 1}, 0, 0}, {{1, -1, 1}, 1, 0}, {{1, 1, 1}, 1, 1}, {{-1, 1, 1}, 0, 1}}},
        {{{{-1, -1, -1}, 1, 0}, {{-1, 1, -1}, 1, 1}, {{1, 1, -1}, 0, 1}, {{1, -1, -1}, 0, 0}}},
        {{{{-1, -1, -1}, 0, 0}, {{-1, -1, 1}, 1, 0}, {{-1, 1, 1}, 1, 1}, {{-1, 1, -1}, 0, 1}}},
        {{{{1, -1, -1}, 1, 0}, {{1, 1, -1}, 1, 1}, {{1, 1, 1}, 0, 1}, {{1, -1, 1}, 0, 0}}},
        {{{{-1, 1, -1}, 0, 1}, {{-1, 1, 1}, 0, 0}, {{1, 1, 1}, 1, 0}, {{1, 1, -1}, 1, 1}}},
        {{{{-1, -1, -1}, 1, 1}, {{1, -1, -1}, 0, 1}, {{1, -1, 1}, 0, 0}, {{-1, -1, 1}, 1, 0}}},
    }};
}

ExpectedCall vertex(const Point &p)
{
    return {"glVertex3fv", {toFloat(p[0]), toFloat(p[1]), toFloat(p[2])}};
}

ExpectedCalls texturedFaces(const QVector<int> &numbers)
{
    const auto faces = texturedCube();
    ExpectedCalls calls;
    for (const int number : numbers) {
        calls.append({"glBegin", {GL_QUADS}});
        for (const TexturedCorner &corner : faces.at(static_cast<std::size_t>(number)))
            calls << ExpectedCall{"glTexCoord2fv", {corner.s, corner.t}} << vertex(corner.at);
        calls.append(figureEnd);
    }
    return calls;
}

ExpectedCalls texturedPentagon(int face)
{
    const Solid solid = dodecahedron();
    const std::array<std::array<double, 2>, 5> texture = {{{0.5, 0},
                                                           {0.97552824, 0.34549147},
                                                           {0.7938926, 0.9045085},
                                                           {0.20610736, 0.9045085},
                                                           {0.02447175, 0.34549147}}};
    ExpectedCalls calls = {{"glBegin", {GL_TRIANGLE_FAN}}};
    for (std::size_t k = 0; k < 5; ++k) {
        // As a table or from textPolygon, they differ by the rounding of pi.
        calls.append({"glTexCoord2fv", {texture.at(k)[0], texture.at(k)[1]}, 2e-7});
        calls.append(vertex(solid.corners.at(solid.faces.at(face).at(static_cast<int>(k)))));
    }
    calls.append(figureEnd);
    return calls;
}

/// The texture coordinates of a regular polygon, straight from their definition.
QVector<double> polygonTexture(int n)
{
    QVector<double> texture;
    for (int k = n; k >= 1; --k) {
        const double a = (k - n / 2.0) * 2.0 * pi / n;
        texture << 0.5 + 0.5 * std::sin(a) << 0.5 + 0.5 * std::cos(a);
    }
    return texture;
}

} // namespace

Q_DECLARE_METATYPE(Solid)

class OpenGLSolidsTest : public QObject
{
    Q_OBJECT

    OpenGL gl;

    static void addSolids()
    {
        QTest::addColumn<Solid>("solid");
        QTest::newRow("tetrahedron") << tetrahedron();
        QTest::newRow("octahedron") << octahedron();
        QTest::newRow("cube") << cube();
        QTest::newRow("dodecahedron") << dodecahedron();
        QTest::newRow("icosahedron") << icosahedron();
    }

    static QVector<Point> drawnVertices()
    {
        QVector<Point> vertices;
        for (const OpenGLCall &call : FakeOpenGL::calls()) {
            if (call.name == "glVertex3fv")
                vertices.append({call.arguments.at(0), call.arguments.at(1), call.arguments.at(2)});
        }
        return vertices;
    }

private slots:
    void init() { FakeOpenGL::clear(); }

    void drawsItsFacesInOrder_data() { addSolids(); }

    void drawsItsFacesInOrder()
    {
        QFETCH(Solid, solid);
        // A colour of its own for each face; that it is half transparent goes nowhere.
        QVector<QColor> colors;
        for (int i = 0; i < solid.faces.size(); ++i)
            colors.append(QColor((37 * i + 5) % 256, (91 * i + 17) % 256, 255 - 11 * i, 128));

        for (const int mode : {GL_POINTS, GL_LINES, GL_LINE_LOOP, GL_LINE_STRIP, GL_TRIANGLES, GL_TRIANGLE_STRIP,
                               GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON, 77}) {
            for (const bool colored : {false, true}) {
                ExpectedCalls expected;
                for (int i = 0; i < solid.faces.size(); ++i) {
                    if (i == 0 || !solid.oneFigure)
                        expected.append({"glBegin", {double(mode)}});
                    if (colored) {
                        const auto share = [](int byte) { return toFloat(byte / 255.0); };
                        const QColor &color = colors.at(i);
                        expected.append({"glColor3f", {share(color.red()), share(color.green()), share(color.blue())}});
                    }
                    for (const int corner : solid.faces.at(i))
                        expected.append(vertex(solid.corners.at(corner)));
                    if (i + 1 == solid.faces.size() || !solid.oneFigure)
                        expected.append(figureEnd);
                }
                FakeOpenGL::clear();
                (gl.*solid.draw)(mode, colored ? colors.data() : nullptr);
                COMPARE_CALLS(expected);
            }
        }
    }

    void drawsRegularFaces_data() { addSolids(); }

    void drawsRegularFaces()
    {
        QFETCH(Solid, solid);
        (gl.*solid.draw)(GL_POINTS, nullptr);
        const QVector<Point> drawn = drawnVertices();
        const int perFace = solid.faces.at(0).size();
        QCOMPARE(drawn.size(), solid.faces.size() * perFace);

        // Each edge as it is run through, and how often.
        std::map<std::pair<Point, Point>, int> edges;
        std::map<Point, int> corners;
        double shortest = highest;
        double longest = 0.0;
        for (int i = 0; i < drawn.size(); i += perFace) {
            Point middle = {};
            for (int k = 0; k < perFace; ++k) {
                const Point &from = drawn.at(i + k);
                const Point &to = drawn.at(i + (k + 1) % perFace);
                ++edges[{from, to}];
                ++corners[from];
                middle = middle + from;
                shortest = std::min(shortest, length(to - from));
                longest = std::max(longest, length(to - from));
            }
            const double outward = dot(middle, cross(drawn.at(i + 1) - drawn.at(i), drawn.at(i + 2) - drawn.at(i)));
            QVERIFY(solid.clockwise ? outward < 0.0 : outward > 0.0);
        }
        QVERIFY(longest - shortest <= 1e-3 * longest);

        // Two faces meet in an edge, and run through it in opposite directions.
        for (const auto &edge : edges) {
            QCOMPARE(edge.second, 1);
            QCOMPARE(edges.count({edge.first.second, edge.first.first}), std::size_t(1));
        }
        QCOMPARE(int(corners.size()) - int(edges.size()) / 2 + solid.faces.size(), 2);
    }

    void colorsOfEveryKind()
    {
        std::array<QColor, 4> colors = {QColor::fromHsv(120, 255, 255), QColor(), QColor::fromCmyk(0, 255, 255, 0),
                                        QColor::fromRgba64(0x8000, 1, 0xFFFE)};
        gl.tetrahedron(GL_TRIANGLES, colors.data());
        QVector<OpenGLCall> sent;
        for (const OpenGLCall &call : FakeOpenGL::calls()) {
            if (call.name == "glColor3f")
                sent.append(call);
        }
        const ExpectedCalls expected = {
            {"glColor3f", {0.0, 1.0, 0.0}},
            {"glColor3f", {0.0, 0.0, 0.0}},
            {"glColor3f", {1.0, 0.0, 0.0}},
            {"glColor3f", {toFloat(32768 / 65535.0), toFloat(1 / 65535.0), toFloat(65534 / 65535.0)}},
        };
        QCOMPARE(difference(sent, expected), QByteArray());
    }

    void cubeCoords()
    {
        const QVector<Point> corners = cubeCorners(0.707);
        const float *first = gl.cubeCoords(0, 1.0F);
        for (const float scale : {1.0F, 2.5F, -1.0F, 0.0F, 1e-45F, 1e38F, 3.4e38F, std::nanf("")}) {
            for (int i = 0; i < 8; ++i) {
                const Point &corner = corners.at(i);
                const float *coords = gl.cubeCoords(i, scale);
                QCOMPARE(coords, first);
                const auto scaled = [scale](double x) { return double(static_cast<float>(x) * scale); };
                QCOMPARE(difference(coords, {scaled(corner[0]), scaled(corner[1]), scaled(corner[2])}), QByteArray());
            }
        }
        COMPARE_CALLS(ExpectedCalls());
    }

    void cubeCoordsOutsideTheTable()
    {
        const double nan = std::nan("");
        for (const int i : {-1, 8, lowest, highest}) {
            QCOMPARE(difference(gl.cubeCoords(3, 1.0F), {toFloat(0.707), toFloat(-0.707), toFloat(0.707)}),
                     QByteArray());
            QCOMPARE(difference(gl.cubeCoords(i, 1.0F), {nan, nan, nan}), QByteArray());
        }
    }

    void cubeFace_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QVector<int>>("drawn");
        for (int number = 0; number < 12; ++number)
            QTest::addRow("%d", number) << number << QVector<int>{number < 6 ? number : number - 6};
        for (int number = 1; number < 6; ++number)
            QTest::addRow("-%d", number) << -number << QVector<int>();
        QTest::newRow("-6") << -6 << QVector<int>{0};
        QTest::newRow("-7") << -7 << QVector<int>();
        QTest::newRow("-600") << -600 << QVector<int>{0};
        QTest::newRow("lowest") << lowest << QVector<int>();    // 2 below a multiple of 6
        QTest::newRow("highest") << highest << QVector<int>{1}; // 1 above one
    }

    void cubeFace()
    {
        QFETCH(int, number);
        QFETCH(QVector<int>, drawn);
        gl.cubeFace(number);
        COMPARE_CALLS(texturedFaces(drawn));
    }

    void cubesOfFaces()
    {
        gl.drawScene();
        COMPARE_CALLS(texturedFaces({1, 2, 5}));
        FakeOpenGL::clear();
        gl.cubeTextured();
        COMPARE_CALLS(texturedFaces({0, 1, 2, 3, 4, 5}));
    }

    // Seen from outside, the picture has its own proportions and is not mirrored.
    void theTextureLiesOnTheCubeFaceOut()
    {
        for (int face = 0; face < 6; ++face) {
            FakeOpenGL::clear();
            gl.cubeFace(face);
            std::map<std::pair<double, double>, Point> at;
            const QVector<OpenGLCall> &calls = FakeOpenGL::calls();
            QCOMPARE(calls.size(), 10);
            for (int k = 1; k < 9; k += 2) {
                const QVector<double> &texture = calls.at(k).arguments;
                const QVector<double> &p = calls.at(k + 1).arguments;
                at[{texture.at(0), texture.at(1)}] = {p.at(0), p.at(1), p.at(2)};
            }
            QCOMPARE(at.size(), std::size_t(4));
            const Point right = at[{1, 0}] - at[{0, 0}];
            const Point up = at[{0, 1}] - at[{0, 0}];
            const Point middle = at[{0, 0}] + at[{1, 1}];
            QCOMPARE((at[{1, 1}]), (at[{1, 0}] + up));
            QCOMPARE(length(right), 2.0);
            QCOMPARE(length(up), 2.0);
            QCOMPARE(dot(cross(right, up), middle), 8.0);
        }
    }

    void dodecahedronFace()
    {
        for (const int round : {1, 2}) {
            for (int face = 0; face < 12; ++face) {
                FakeOpenGL::clear();
                gl.dodecahedronFace(face);
                const QByteArray found = difference(FakeOpenGL::calls(), texturedPentagon(face));
                QVERIFY2(
                    found.isEmpty(),
                    qPrintable(QString("face %1, round %2, %3").arg(face).arg(round).arg(QString::fromLatin1(found))));
            }
        }
    }

    void dodecahedronFaceOutsideTheTable()
    {
        for (const int face : {-1, 12, lowest, highest}) {
            gl.dodecahedronFace(face);
            COMPARE_CALLS(ExpectedCalls());
        }
    }

    void dodecahedronSolid()
    {
        gl.dodecahedronSolid();
        ExpectedCalls expected;
        for (int face = 0; face < 12; ++face)
            expected += texturedPentagon(face);
        COMPARE_CALLS(expected);
    }

    void textPolygon()
    {
        for (int n = 1; n <= 1000; n += n < 24 ? 1 : 61) {
            const std::unique_ptr<float[]> texture(gl.textPolygon(n));
            QCOMPARE(difference(texture.get(), polygonTexture(n), 1e-6), QByteArray());
        }
        COMPARE_CALLS(ExpectedCalls());
    }

    void textPolygonInWords()
    {
        const std::unique_ptr<float[]> square(gl.textPolygon(4));
        const QVector<double> corners = {0.5, 0, 1, 0.5, 0.5, 1, 0, 0.5}; // bottom, right, top, left
        QCOMPARE(difference(square.get(), corners, 1e-7), QByteArray());

        const std::unique_ptr<float[]> pentagon(gl.textPolygon(5));
        gl.dodecahedronFace(0);
        for (int k = 0; k < 5; ++k)
            QCOMPARE(difference(pentagon.get() + std::ptrdiff_t(2) * k, FakeOpenGL::calls().at(1 + 2 * k).arguments,
                                2e-7),
                     QByteArray());
    }

    void textPolygonWithoutCorners()
    {
        for (const int n : {0, -1, lowest}) {
            const std::unique_ptr<float[]> texture(gl.textPolygon(n));
            QVERIFY(texture != nullptr);
        }
    }
};

QTEST_APPLESS_MAIN(OpenGLSolidsTest)
#include "OpenGLSolidsTest.moc"
