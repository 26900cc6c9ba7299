// The regular solids: exact calls.

#include "view/OpenGL.h"

#include "tests/support/FakeOpenGL.h"
#include "tests/view/FloatArray.h"

#include <QColor>
#include <QtTest>
#include <qopengl.h>

#include <array>
#include <limits>
#include <utility>

namespace {

using Point = std::array<float, 3>;
using Calls = QVector<OpenGLCall>;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

struct Solid
{
    void (OpenGL::*draw)(int mode, QColor *colors) = nullptr;
    QVector<Point> vertices;
    QVector<QVector<int>> faces;
    bool oneFigure = false; ///< all faces are between one glBegin and one glEnd
};

const Solid tetrahedron = {&OpenGL::tetrahedron,
                           {{0, 0, 1.732051F},
                            {1.632993F, 0, -0.5773503F},
                            {-0.8164966F, 1.414214F, -0.5773503F},
                            {-0.8164966F, -1.414214F, -0.5773503F}},
                           {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {1, 3, 2}}};

const Solid octahedron = {
    &OpenGL::octahedron,
    {{0, 0, 1.414F}, {1.414F, 0, 0}, {0, 1.414F, 0}, {-1.414F, 0, 0}, {0, -1.414F, 0}, {0, 0, -1.414F}},
    {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}, {1, 4, 5}, {1, 5, 2}, {2, 5, 3}, {3, 5, 4}}};

const Solid cube = {
    &OpenGL::cube,
    {{1, 1, 1}, {-1, 1, 1}, {-1, -1, 1}, {1, -1, 1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, -1}},
    {{3, 0, 1, 2}, {3, 4, 5, 0}, {0, 5, 6, 1}, {1, 6, 7, 2}, {2, 7, 4, 3}, {5, 4, 7, 6}}};

const Solid dodecahedron = {&OpenGL::dodecahedron,
                            {{0, 0, 1.07047F},
                             {0.713644F, 0, 0.797878F},
                             {-0.356822F, 0.618F, 0.797878F},
                             {-0.356822F, -0.618F, 0.797878F},
                             {0.797878F, 0.618034F, 0.356822F},
                             {0.797878F, -0.618F, 0.356822F},
                             {-0.934172F, 0.381966F, 0.356822F},
                             {0.136294F, 1, 0.356822F},
                             {0.136294F, -1, 0.356822F},
                             {-0.934172F, -0.381966F, 0.356822F},
                             {0.934172F, 0.381966F, -0.356822F},
                             {0.934172F, -0.381966F, -0.356822F},
                             {-0.797878F, 0.618F, -0.356822F},
                             {-0.136294F, 1, -0.356822F},
                             {-0.136294F, -1, -0.356822F},
                             {-0.797878F, -0.618034F, -0.356822F},
                             {0.356822F, 0.618F, -0.797878F},
                             {0.356822F, -0.618F, -0.797878F},
                             {-0.713644F, 0, -0.797878F},
                             {0, 0, -1.07047F}},
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

constexpr float a = 0.5257311F;
constexpr float b = 0.8506508F;
const Solid icosahedron = {&OpenGL::icosahedron,
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
                           true};

OpenGLCall vertex(const Point &p)
{
    return {"glVertex3fv", {p[0], p[1], p[2]}};
}

struct TexturedVertex
{
    Point at;
    float s, t;
};

const std::array<std::array<TexturedVertex, 4>, 6> texturedCube = {{
    {{{{-1, -1, 1}, 0, 0}, {{1, -1, 1}, 1, 0}, {{1, 1, 1}, 1, 1}, {{-1, 1, 1}, 0, 1}}},
    {{{{-1, -1, -1}, 1, 0}, {{-1, 1, -1}, 1, 1}, {{1, 1, -1}, 0, 1}, {{1, -1, -1}, 0, 0}}},
    {{{{-1, -1, -1}, 0, 0}, {{-1, -1, 1}, 1, 0}, {{-1, 1, 1}, 1, 1}, {{-1, 1, -1}, 0, 1}}},
    {{{{1, -1, -1}, 1, 0}, {{1, 1, -1}, 1, 1}, {{1, 1, 1}, 0, 1}, {{1, -1, 1}, 0, 0}}},
    {{{{-1, 1, -1}, 0, 1}, {{-1, 1, 1}, 0, 0}, {{1, 1, 1}, 1, 0}, {{1, 1, -1}, 1, 1}}},
    {{{{-1, -1, -1}, 1, 1}, {{1, -1, -1}, 0, 1}, {{1, -1, 1}, 0, 0}, {{-1, -1, 1}, 1, 0}}},
}};

Calls texturedCubeFaces(const QVector<int> &numbers)
{
    Calls calls;
    for (const int number : numbers) {
        calls << OpenGLCall{"glBegin", {GL_QUADS}};
        for (const TexturedVertex &corner : texturedCube.at(std::size_t(number)))
            calls << OpenGLCall{"glTexCoord2fv", {corner.s, corner.t}} << vertex(corner.at);
        calls << OpenGLCall{"glEnd", {}};
    }
    return calls;
}

Calls texturedPentagon(int face)
{
    const std::array<std::array<float, 2>, 5> texture = {{{0.5F, 0.0F},
                                                          {0.97552824F, 0.34549147F},
                                                          {0.7938926F, 0.9045085F},
                                                          {0.20610736F, 0.9045085F},
                                                          {0.02447175F, 0.34549147F}}};
    Calls calls = {{"glBegin", {GL_TRIANGLE_FAN}}};
    for (int k = 0; k < 5; ++k) {
        const auto &[s, t] = texture.at(std::size_t(k));
        calls << OpenGLCall{"glTexCoord2fv", {s, t}}
              << vertex(dodecahedron.vertices.at(dodecahedron.faces.at(face).at(k)));
    }
    return calls << OpenGLCall{"glEnd", {}};
}

} // namespace

Q_DECLARE_METATYPE(Solid)

class OpenGLSolidsTest : public QObject
{
    Q_OBJECT

    OpenGL gl;

private slots:
    void init() { FakeOpenGL::clear(); }

    void drawsFacesInOrder_data()
    {
        QTest::addColumn<Solid>("solid");
        QTest::newRow("tetrahedron") << tetrahedron;
        QTest::newRow("octahedron") << octahedron;
        QTest::newRow("cube") << cube;
        QTest::newRow("dodecahedron") << dodecahedron;
        QTest::newRow("icosahedron") << icosahedron;
    }

    void drawsFacesInOrder()
    {
        QFETCH(Solid, solid);
        QVector<QColor> colors;
        for (int i = 0; i < solid.faces.size(); ++i)
            colors << QColor(51 * (i % 6), 51 * (i / 6), 255, 128); // the alpha is ignored

        for (const int mode : {GL_LINE_LOOP, GL_TRIANGLES, GL_POLYGON, 77}) {
            for (const bool colored : {false, true}) {
                Calls expected;
                for (int i = 0; i < solid.faces.size(); ++i) {
                    if (i == 0 || !solid.oneFigure)
                        expected << OpenGLCall{"glBegin", {double(mode)}};
                    if (colored) {
                        const std::array<float, 6> shares = {0.0F, 0.2F, 0.4F, 0.6F, 0.8F, 1.0F};
                        expected << OpenGLCall{"glColor3f",
                                               {shares.at(std::size_t(i % 6)), shares.at(std::size_t(i / 6)), 1.0}};
                    }
                    for (const int index : solid.faces.at(i))
                        expected << vertex(solid.vertices.at(index));
                    if (i + 1 == solid.faces.size() || !solid.oneFigure)
                        expected << OpenGLCall{"glEnd", {}};
                }
                FakeOpenGL::clear();
                (gl.*solid.draw)(mode, colored ? colors.data() : nullptr);
                COMPARE_CALLS(expected);
            }
        }
    }

    void acceptsColorsOfEveryKind()
    {
        std::array<QColor, 4> colors = {QColor::fromHsv(120, 255, 255), QColor(), QColor::fromCmyk(0, 255, 255, 0),
                                        QColor::fromRgba64(0x8000, 1, 0xFFFE)};
        gl.tetrahedron(GL_TRIANGLES, colors.data());
        const Calls &calls = FakeOpenGL::calls();
        QCOMPARE(calls.at(1), (OpenGLCall{"glColor3f", {0.0, 1.0, 0.0}}));
        QCOMPARE(calls.at(7), (OpenGLCall{"glColor3f", {0.0, 0.0, 0.0}}));
        QCOMPARE(calls.at(13), (OpenGLCall{"glColor3f", {1.0, 0.0, 0.0}}));
        QCOMPARE(calls.at(19), (OpenGLCall{"glColor3f", {0.5000076F, 1.5259022e-05F, 0.99998474F}}));
    }

    void cubeCoordsScalesOneStaticArray()
    {
        const float *first = gl.cubeCoords(0, 1.0F);
        for (const auto &[scale, s] :
             {std::pair{1.0F, 0.707F}, std::pair{0.3F, 0.21210001F}, std::pair{-1e38F, -7.07e37F}}) {
            for (int i = 0; i < 8; ++i) {
                const Point &corner = cube.vertices.at(i);
                const float *coords = gl.cubeCoords(i, scale);
                QCOMPARE(coords, first);
                QCOMPARE(difference(coords, {s * corner[0], s * corner[1], s * corner[2]}), QByteArray());
            }
        }
    }

    void cubeCoordsOutsideTableIsNaN()
    {
        const float nan = std::numeric_limits<float>::quiet_NaN();
        for (const int i : {-1, 8, lowest, highest}) {
            gl.cubeCoords(3, 1.0F);
            QCOMPARE(difference(gl.cubeCoords(i, 1.0F), {nan, nan, nan}), QByteArray());
        }
    }

    void cubeFaceIsRemainderOfSix_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QVector<int>>("drawn");
        for (int number = 0; number < 8; ++number)
            QTest::addRow("%d", number) << number << QVector<int>{number % 6};
        for (const int number : {-1, -5, -7})
            QTest::addRow("%d", number) << number << QVector<int>();
        QTest::newRow("-6") << -6 << QVector<int>{0};
        QTest::newRow("lowest") << lowest << QVector<int>();    // 2 below a multiple of 6
        QTest::newRow("highest") << highest << QVector<int>{1}; // 1 above one
    }

    void cubeFaceIsRemainderOfSix()
    {
        QFETCH(int, number);
        QFETCH(QVector<int>, drawn);
        gl.cubeFace(number);
        COMPARE_CALLS(texturedCubeFaces(drawn));
    }

    void cubesDrawTheirFaces()
    {
        gl.drawScene();
        COMPARE_CALLS(texturedCubeFaces({1, 2, 5}));
        FakeOpenGL::clear();
        gl.cubeTextured();
        COMPARE_CALLS(texturedCubeFaces({0, 1, 2, 3, 4, 5}));
    }

    void dodecahedronSolidDrawsAllFaces()
    {
        Calls all;
        for (int face = 0; face < 12; ++face) {
            FakeOpenGL::clear();
            gl.dodecahedronFace(face);
            COMPARE_CALLS(texturedPentagon(face));
            all << FakeOpenGL::calls();
        }
        FakeOpenGL::clear();
        gl.dodecahedronSolid();
        COMPARE_CALLS(all);
    }

    void dodecahedronFaceOutsideTableDrawsNothing()
    {
        for (const int face : {-1, 12, lowest, highest})
            gl.dodecahedronFace(face);
        COMPARE_CALLS({});
    }
};

QTEST_APPLESS_MAIN(OpenGLSolidsTest)
#include "OpenGLSolidsTest.moc"
