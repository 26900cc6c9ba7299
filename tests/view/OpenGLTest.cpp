// The drawing helpers in a real context: what the set-ups leave behind, and where the shapes and textures come out.

#include "view/OpenGL.h"

#include "tests/support/ApplicationTest.h"
#include "tests/support/OffscreenOpenGL.h"

#include <QColor>
#include <QPainter>
#include <QVector3D>
#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <vector>

namespace {

/// The picture shows x and y from -2 to 2 and z from -4 to 4, the greater z in front.
constexpr int side = 200;
constexpr double scale = side / 4.0;

constexpr std::array<GLenum, 2> lights = {GL_LIGHT0, GL_LIGHT1};
constexpr std::array<GLenum, 3> parts = {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR}; // of a light and of a material

using Vector = std::array<float, 4>;
using Draw = std::function<void(OpenGL &)>;

Vector light(GLenum which, GLenum value)
{
    Vector result = {};
    glGetLightfv(which, value, result.data());
    return result;
}

Vector material(GLenum face, GLenum value)
{
    Vector result = {};
    glGetMaterialfv(face, value, result.data());
    return result;
}

Vector floats(GLenum value)
{
    Vector result = {};
    glGetFloatv(value, result.data());
    return result;
}

int integer(GLenum value)
{
    int result = -1;
    glGetIntegerv(value, &result);
    return result;
}

bool isLit(const QImage &picture, int x, int y)
{
    return (picture.pixel(x, y) & 0xFFFFFFU) != 0;
}

/// The pixel of the picture that (x, y) is in.
QPoint pixelAt(double x, double y)
{
    return {static_cast<int>(std::floor((2.0 + x) * scale)), static_cast<int>(std::floor((2.0 - y) * scale))};
}

/// Whether a line through (x, y) has been drawn: its pixel or one beside it is lit.
bool isDrawnAt(const QImage &picture, double x, double y)
{
    const QPoint at = pixelAt(x, y);
    for (int dx = -1; dx <= 1; ++dx) {
        for (int dy = -1; dy <= 1; ++dy) {
            if (isLit(picture, at.x() + dx, at.y() + dy))
                return true;
        }
    }
    return false;
}

/// The distances of the lit pixels from (x, y), in units of the scene.
std::vector<double> distances(const QImage &picture, double x, double y)
{
    std::vector<double> all;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            if (isLit(picture, column, row))
                all.push_back(std::hypot((column + 0.5) / scale - 2.0 - x, 2.0 - (row + 0.5) / scale - y));
        }
    }
    return all;
}

double farthest(const QImage &picture)
{
    const std::vector<double> all = distances(picture, 0.0, 0.0);
    return all.empty() ? 0.0 : *std::max_element(all.begin(), all.end());
}

QRect litArea(const QImage &picture)
{
    QRect area;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            if (isLit(picture, x, y))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

/// The depth at a pixel of the picture as a z of the scene.
double heightAt(QPoint pixel)
{
    float depth = 0.0F;
    glReadPixels(pixel.x(), side - 1 - pixel.y(), 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    return 4.0 - 8.0 * static_cast<double>(depth);
}

/// A texture of one texel for each colour, `columns` in a row, the top row first. Nothing is blended at its edges.
void bindTexels(const std::vector<QColor> &texels, int columns)
{
    QImage picture(columns, static_cast<int>(texels.size()) / columns, QImage::Format_RGB32);
    for (int i = 0; i < static_cast<int>(texels.size()); ++i)
        picture.setPixelColor(i % columns, i / columns, texels[static_cast<std::size_t>(i)]);
    OffscreenOpenGL::bindTexture(picture, GL_NEAREST);
}

/// As seen with the texture upright: green at (1, 1), red at (0, 0).
constexpr std::array<Qt::GlobalColor, 4> corners = {Qt::blue, Qt::green, Qt::red, Qt::yellow};

void bindCorners()
{
    bindTexels({corners.begin(), corners.end()}, 2);
}

/// What a rectangle of the scene looks like with the texture of bindCorners, upright.
QImage withCorners(double width, double height)
{
    QImage picture(side, side, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    const QSize quarter(qRound(width / 2.0 * scale), qRound(height / 2.0 * scale));
    const QPoint middle(side / 2, side / 2);
    painter.fillRect(QRect(middle - QPoint(quarter.width(), quarter.height()), quarter), corners[0]);
    painter.fillRect(QRect(middle - QPoint(0, quarter.height()), quarter), corners[1]);
    painter.fillRect(QRect(middle - QPoint(quarter.width(), 0), quarter), corners[2]);
    painter.fillRect(QRect(middle, quarter), corners[3]);
    return picture;
}

std::vector<QColor> distinctColors(int count)
{
    std::vector<QColor> all;
    all.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        all.emplace_back(255 - 7 * i, 30 + 7 * i, 100 + 60 * (i % 3));
    return all;
}

/// Brings one of the sides to the front, upright.
void turnToFront(int face)
{
    switch (face) {
    case 1: // back
        glRotated(180.0, 0.0, 1.0, 0.0);
        break;
    case 2: // left
        glRotated(90.0, 0.0, 1.0, 0.0);
        break;
    case 3: // right
        glRotated(-90.0, 0.0, 1.0, 0.0);
        break;
    case 4: // top
        glRotated(90.0, 1.0, 0.0, 0.0);
        break;
    case 5: // bottom, the back edge up
        glRotated(180.0, 0.0, 0.0, 1.0);
        glRotated(-90.0, 1.0, 0.0, 0.0);
        break;
    default:
        break;
    }
}

/// A closed surface about the origin.
struct Solid
{
    const char *name;
    double radius;          // of the ball that holds it and that its corners lie on
    double turn;            // about the z axis in degrees, which brings a corner into the plane of x and z
    GLenum winding;         // of its faces, seen from outside: not the same for all
    void (*fill)(OpenGL &); // in the current colour
};

constexpr int bands = 16;

const std::array<Solid, 8> solids = {{
    {"tetrahedron", 1.732, 0.0, GL_CCW, [](OpenGL &gl) { gl.tetrahedron(GL_POLYGON, nullptr); }},
    {"octahedron", 1.414, 0.0, GL_CCW, [](OpenGL &gl) { gl.octahedron(GL_POLYGON, nullptr); }},
    {"cube", 1.732, 45.0, GL_CCW, [](OpenGL &gl) { gl.cube(GL_POLYGON, nullptr); }},
    {"cubeTextured", 1.732, 45.0, GL_CCW, [](OpenGL &gl) { gl.cubeTextured(); }},
    {"dodecahedron", 1.0705, 0.0, GL_CCW, [](OpenGL &gl) { gl.dodecahedron(GL_POLYGON, nullptr); }},
    {"dodecahedronSolid", 1.0705, 0.0, GL_CCW, [](OpenGL &gl) { gl.dodecahedronSolid(); }},
    {"icosahedron", 1.0, 0.0, GL_CW, [](OpenGL &gl) { gl.icosahedron(GL_TRIANGLES, nullptr); }},
    {"sphereTextured", 1.5, 0.0, GL_CW, [](OpenGL &gl) { gl.sphereTextured(1.5F, bands); }},
}};

/// What can be drawn filled, as lines and with a colour for each face.
struct Faces
{
    const char *name;
    int count;
    GLenum filled;
    void (OpenGL::*draw)(int, QColor *);
};

const std::array<Faces, 5> faces = {{
    {"tetrahedron", 4, GL_POLYGON, &OpenGL::tetrahedron},
    {"octahedron", 8, GL_POLYGON, &OpenGL::octahedron},
    {"cube", 6, GL_POLYGON, &OpenGL::cube},
    {"dodecahedron", 12, GL_POLYGON, &OpenGL::dodecahedron},
    {"icosahedron", 20, GL_TRIANGLES, &OpenGL::icosahedron},
}};

/// Corner (i, j) of a sphere of radius 1.5 in 4 bands.
QVector3D sphereCorner(int i, int j)
{
    const double theta = M_PI * i / 4.0;
    const double phi = M_PI * j / 2.0;
    return {static_cast<float>(-1.5 * std::sin(theta) * std::cos(phi)), static_cast<float>(1.5 * std::cos(theta)),
            static_cast<float>(1.5 * std::sin(theta) * std::sin(phi))};
}

/// The middle of cell (i, j) of it.
QVector3D sphereCell(int i, int j)
{
    return (sphereCorner(i, j) + sphereCorner(i, j + 1) + sphereCorner(i + 1, j) + sphereCorner(i + 1, j + 1)) / 4.0F;
}

} // namespace

class OpenGLTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<OffscreenOpenGL> offscreen;
    OpenGL helpers;

    /// The picture of `draw` alone.
    QImage picture(const Draw &draw)
    {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        draw(helpers);
        return offscreen->picture();
    }

    /// The picture after a turn that shows no edge end on.
    QImage turnedPicture(int turn, const Draw &draw)
    {
        glLoadIdentity();
        glRotated(17.0 + 63.0 * turn, 1.0, 0.0, 0.0);
        glRotated(29.0 + 101.0 * turn, 0.0, 1.0, 0.0);
        return picture(draw);
    }

    /// Whether every cell of a sphere of 1.5 in 4 bands shows its own of 16 colours on the outside.
    void showsCells(const std::vector<QColor> &colors, const Draw &draw)
    {
        for (const int back : {0, 1}) {
            glLoadIdentity();
            glRotated(180.0 * back, 0.0, 1.0, 0.0);
            const QImage shown = picture(draw);
            for (int i = 0; i < 4; ++i) {
                for (int j = 2 * back; j < 2 * back + 2; ++j) {
                    const QVector3D middle = sphereCell(i, j) * (back ? -1.0F : 1.0F);
                    const QPoint pixel = pixelAt(middle.x(), sphereCell(i, j).y());
                    QCOMPARE(shown.pixelColor(pixel), colors[static_cast<std::size_t>(4 * i + j)]);
                }
            }
        }
    }

private slots:
    void init()
    {
        offscreen = std::make_unique<OffscreenOpenGL>(side);
        QVERIFY(offscreen->isValid());
        glMatrixMode(GL_PROJECTION);
        glOrtho(-2.0, 2.0, -2.0, 2.0, -4.0, 4.0);
        glMatrixMode(GL_MODELVIEW);
    }

    void cleanup()
    {
        QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
        offscreen.reset();
    }

    void setupClearsColorsAndEnables()
    {
        glClearColor(0.1F, 0.2F, 0.3F, 0.4F);
        glClearDepth(0.25);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glClearDepth(1.0);
        QVERIFY(!glIsEnabled(GL_TEXTURE_2D));
        QVERIFY(!glIsEnabled(GL_DEPTH_TEST));

        helpers.setup();
        QVERIFY(glIsEnabled(GL_TEXTURE_2D));
        QVERIFY(glIsEnabled(GL_DEPTH_TEST));
        QCOMPARE(floats(GL_COLOR_CLEAR_VALUE), (Vector{0.0F, 0.0F, 0.0F, 0.0F}));
        for (const QPoint at : {QPoint(0, 0), QPoint(side / 2, side / 3), QPoint(side - 1, side - 1)}) {
            Vector pixel = {1.0F, 1.0F, 1.0F, 1.0F};
            glReadPixels(at.x(), at.y(), 1, 1, GL_RGBA, GL_FLOAT, pixel.data());
            QCOMPARE(pixel, (Vector{0.0F, 0.0F, 0.0F, 0.0F}));
            QVERIFY(std::abs(heightAt(at) - 2.0) < 0.001); // the depths stay
        }
    }

    void sceneInitSetsLightsAndMaterial()
    {
        const Vector other = {0.3F, 0.4F, 0.6F, 0.7F};
        for (const GLenum part : parts) {
            for (const GLenum which : lights)
                glLightfv(which, part, other.data());
            glMaterialfv(GL_FRONT_AND_BACK, part, other.data());
        }
        glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 7.0F);
        glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 1);
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
        glShadeModel(GL_FLAT);
        glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST);
        glHint(GL_POINT_SMOOTH_HINT, GL_FASTEST);
        // The current colour takes the place of a part of the material. It is given one that the set-up leaves alone,
        // so that the ambient and diffuse colours that it sets can be seen.
        glColorMaterial(GL_FRONT_AND_BACK, GL_EMISSION);
        glClearColor(0.2F, 0.3F, 0.4F, 0.5F);
        glClear(GL_COLOR_BUFFER_BIT);
        const QImage before = offscreen->picture();

        const QColor background(255, 128, 51, 20);
        helpers.sceneInit(background);

        QCOMPARE(floats(GL_COLOR_CLEAR_VALUE),
                 (Vector{1.0F, static_cast<float>(background.greenF()), static_cast<float>(background.blueF()), 1.0F}));
        QCOMPARE(offscreen->picture(), before); // nothing is cleared yet
        for (const GLenum which : lights) {
            QVERIFY(glIsEnabled(which));
            QCOMPARE(light(which, GL_AMBIENT), (Vector{0.1F, 0.1F, 0.1F, 1.0F}));
            QCOMPARE(light(which, GL_DIFFUSE), (Vector{1.0F, 1.0F, 1.0F, 0.0F}));
            QCOMPARE(light(which, GL_SPECULAR), (Vector{1.0F, 1.0F, 1.0F, 0.0F}));
        }
        QCOMPARE(light(GL_LIGHT0, GL_POSITION), (Vector{1.0F, 0.5F, 1.0F, 0.0F}));
        QCOMPARE(light(GL_LIGHT1, GL_POSITION), (Vector{-1.0F, 0.5F, -1.0F, 0.0F}));
        QCOMPARE(integer(GL_LIGHT_MODEL_LOCAL_VIEWER), 0);
        QCOMPARE(integer(GL_LIGHT_MODEL_TWO_SIDE), 0);
        QVERIFY(glIsEnabled(GL_LIGHTING));

        QCOMPARE(material(GL_FRONT, GL_AMBIENT), (Vector{0.0F, 0.0F, 0.0F, 1.0F}));
        QCOMPARE(material(GL_FRONT, GL_SHININESS)[0], 40.0F);
        QCOMPARE(material(GL_FRONT, GL_SPECULAR), (Vector{1.0F, 1.0F, 1.0F, 0.0F}));
        QCOMPARE(material(GL_FRONT, GL_DIFFUSE), (Vector{1.0F, 0.0F, 0.0F, 0.0F}));
        QCOMPARE(material(GL_BACK, GL_SHININESS)[0], 7.0F);
        for (const GLenum part : parts)
            QCOMPARE(material(GL_BACK, part), other);
        QVERIFY(glIsEnabled(GL_COLOR_MATERIAL));

        QCOMPARE(integer(GL_SHADE_MODEL), GL_SMOOTH);
        QVERIFY(glIsEnabled(GL_LINE_SMOOTH));
        QCOMPARE(integer(GL_PERSPECTIVE_CORRECTION_HINT), GL_NICEST);
        QCOMPARE(integer(GL_POINT_SMOOTH_HINT), GL_NICEST);
    }

    void sceneInitLeavesTheMaterialToTheColor()
    {
        helpers.sceneInit(Qt::black);
        // Only what follows a change of the colour is looked at: drivers differ in whether the set-up's own red
        // outlives the moment at which the colour takes over.
        glColor3f(0.0F, 1.0F, 0.5F);
        QCOMPARE(material(GL_FRONT, GL_AMBIENT), (Vector{0.0F, 1.0F, 0.5F, 1.0F}));
        QCOMPARE(material(GL_FRONT, GL_DIFFUSE), (Vector{0.0F, 1.0F, 0.5F, 1.0F}));
        QCOMPARE(material(GL_FRONT, GL_SPECULAR), (Vector{1.0F, 1.0F, 1.0F, 0.0F}));
    }

    void sceneInitTurnsItsLightsWithTheScene()
    {
        glTranslated(3.0, 4.0, 5.0); // nothing to a direction
        glRotated(90.0, 0.0, 1.0, 0.0);
        helpers.sceneInit(Qt::black);
        const std::array<Vector, 2> expected = {{{1.0F, 0.5F, -1.0F, 0.0F}, {-1.0F, 0.5F, 1.0F, 0.0F}}};
        for (std::size_t i = 0; i < lights.size(); ++i) {
            const Vector position = light(lights[i], GL_POSITION);
            for (std::size_t k = 0; k < 4; ++k)
                QVERIFY(std::abs(position[k] - expected[i][k]) < 1e-5F);
        }
    }

    void panelFillsItsRectangle()
    {
        glEnable(GL_DEPTH_TEST);
        const QImage shown = picture([](OpenGL &gl) { gl.panel(1.0F, 3.0F); });
        QImage expected(side, side, QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter(&expected).fillRect(QRect(pixelAt(-1.5, 0.5), QSize(150, 50)), Qt::white);
        QCOMPARE(shown, expected);
        QVERIFY(std::abs(heightAt(pixelAt(1.2, 0.3))) < 0.001);
    }

    void panelFaceShowsItsTextureUpright()
    {
        helpers.setup();
        bindCorners();
        QCOMPARE(picture([](OpenGL &gl) { gl.panelFace(1.0F, 3.0F); }), withCorners(3.0, 1.0));
        QVERIFY(std::abs(heightAt(pixelAt(1.2, 0.3))) < 0.001);
    }

    void cubeFacesShowTheirTextureUprightFromOutside()
    {
        const QImage expected = withCorners(2.0, 2.0);
        const QImage nothing = picture([](OpenGL &) {});
        helpers.setup();
        bindCorners();
        for (int face = 0; face < 6; ++face) {
            glLoadIdentity();
            turnToFront(face);
            glDisable(GL_CULL_FACE);
            QCOMPARE(picture([](OpenGL &gl) { gl.cubeTextured(); }), expected);
            QVERIFY(std::abs(heightAt(pixelAt(0.5, 0.5)) - 1.0) < 0.001);

            // The other faces are seen end on or from their back.
            glEnable(GL_CULL_FACE);
            for (int other = 0; other < 6; ++other) {
                const QImage shown = picture([=](OpenGL &gl) { gl.cubeFace(other); });
                QCOMPARE(shown, other == face ? expected : nothing);
                QCOMPARE(picture([=](OpenGL &gl) { gl.cubeFace(other + 6); }), shown);
            }
            const bool inScene = face == 1 || face == 2 || face == 5;
            QCOMPARE(picture([](OpenGL &gl) { gl.drawScene(); }), inScene ? expected : nothing);
        }
    }

    void dodecahedronFacesShowTheirTextureUprightFromOutside()
    {
        // The first corners of the faces 0, 1 and 2, the bottom of the texture, meet on the z axis. Each face takes a
        // third of a turn about it from the x axis on, anticlockwise: first its right half and then its left one.
        helpers.setup();
        bindCorners();
        const QImage solid = picture([](OpenGL &gl) { gl.dodecahedronSolid(); });
        for (int face = 0; face < 3; ++face) {
            const QImage alone = picture([=](OpenGL &gl) { gl.dodecahedronFace(face); });
            for (int sixth = 0; sixth < 6; ++sixth) {
                const bool left = sixth % 2;
                const double angle = (60.0 * sixth + (left ? 25.0 : 35.0)) * M_PI / 180.0;
                const auto at = [=](double r) { return pixelAt(r * std::cos(angle), r * std::sin(angle)); };
                const QColor lower = corners[left ? 2 : 3];
                const QColor upper = corners[left ? 0 : 1];
                QCOMPARE(solid.pixelColor(at(0.2)), lower);
                QCOMPARE(solid.pixelColor(at(0.75)), upper);
                QCOMPARE(alone.pixelColor(at(0.2)), sixth / 2 == face ? lower : QColor(Qt::black));
                QCOMPARE(alone.pixelColor(at(0.75)), sixth / 2 == face ? upper : QColor(Qt::black));
            }
        }
    }

    void facesThatAreNoneDrawNothing()
    {
        const QImage nothing = picture([](OpenGL &) {});
        for (const int face : {-1, 12, 1000000})
            QCOMPARE(picture([=](OpenGL &gl) { gl.dodecahedronFace(face); }), nothing);
        for (const int face : {-1, -5, -7})
            QCOMPARE(picture([=](OpenGL &gl) { gl.cubeFace(face); }), nothing);
        QCOMPARE(picture([](OpenGL &gl) { gl.sphere(1.0F, 0, nullptr); }), nothing);
        QVERIFY(picture([](OpenGL &gl) { gl.cubeFace(-6); }) != nothing);
    }

    void solidsAreClosedAndInTheirBalls()
    {
        const QColor layer(40, 40, 40);
        glColor3ub(40, 40, 40);
        glBlendFunc(GL_ONE, GL_ONE);
        glEnable(GL_BLEND); // a pixel counts the faces that cover it
        for (const Solid &solid : solids) {
            for (int turn = 0; turn < 6; ++turn) {
                glDisable(GL_CULL_FACE);
                const QImage all = turnedPicture(turn, solid.fill);
                glEnable(GL_CULL_FACE);
                glFrontFace(solid.winding);
                const QImage outside = turnedPicture(turn, solid.fill);
                QVERIFY2(isLit(all, side / 2, side / 2), solid.name);
                QVERIFY2(farthest(all) < solid.radius + 0.01, solid.name);
                for (int y = 0; y < side; ++y) {
                    for (int x = 0; x < side; ++x) {
                        const int layers = qBlue(all.pixel(x, y)) / layer.blue();
                        QVERIFY2(layers == 0 || layers == 2, solid.name); // a face in front and one at the back
                        QVERIFY2(qBlue(outside.pixel(x, y)) / layer.blue() == layers / 2, solid.name);
                    }
                }
            }
            glLoadIdentity();
            glRotated(90.0, 1.0, 0.0, 0.0);
            glRotated(solid.turn, 0.0, 0.0, 1.0);
            QVERIFY2(farthest(picture(solid.fill)) > solid.radius - 0.03, solid.name);
        }
    }

    void facesHaveTheirColors()
    {
        glEnable(GL_DEPTH_TEST);
        for (const Faces &solid : faces) {
            std::vector<QColor> colors = distinctColors(solid.count);
            std::set<QRgb> expected;
            for (const QColor &color : colors)
                expected.insert(color.rgb() & 0xFFFFFFU);
            QCOMPARE(static_cast<int>(expected.size()), solid.count);

            std::set<QRgb> seen;
            for (int turn = 0; turn < 12; ++turn) {
                const QImage plain = turnedPicture(turn, [&](OpenGL &gl) {
                    glColor3f(0.0F, 1.0F, 0.0F);
                    (gl.*solid.draw)(static_cast<int>(solid.filled), nullptr);
                });
                const QImage shown = turnedPicture(
                    turn, [&](OpenGL &gl) { (gl.*solid.draw)(static_cast<int>(solid.filled), colors.data()); });
                for (int y = 0; y < side; ++y) {
                    for (int x = 0; x < side; ++x) {
                        QCOMPARE(isLit(shown, x, y), isLit(plain, x, y));
                        if (!isLit(shown, x, y))
                            continue;
                        QCOMPARE(plain.pixelColor(x, y), QColor(Qt::green));
                        seen.insert(shown.pixel(x, y) & 0xFFFFFFU);
                    }
                }
            }
            QVERIFY2(seen == expected, solid.name);
        }
    }

    void linesGoAlongTheEdges()
    {
        for (const Faces &solid : faces) {
            const QImage filled =
                turnedPicture(0, [&](OpenGL &gl) { (gl.*solid.draw)(static_cast<int>(solid.filled), nullptr); });
            const QImage lines = turnedPicture(0, [&](OpenGL &gl) { (gl.*solid.draw)(GL_LINE_LOOP, nullptr); });
            const QRect around = litArea(filled);
            QVERIFY2(around.adjusted(-1, -1, 1, 1).contains(litArea(lines)), solid.name);
            QVERIFY2(litArea(lines).adjusted(-1, -1, 1, 1).contains(around), solid.name);
            QVERIFY2(3 * distances(lines, 0.0, 0.0).size() < distances(filled, 0.0, 0.0).size(), solid.name);
        }
    }

    void sphereCellsHaveTheirColors()
    {
        glEnable(GL_DEPTH_TEST);
        std::vector<QColor> colors = distinctColors(16);
        showsCells(colors, [&](OpenGL &gl) { gl.sphere(1.5F, 4, colors.data()); });
        glLoadIdentity();
        const QImage blue = picture([](OpenGL &gl) { gl.sphere(1.5F, 4, nullptr); });
        QCOMPARE(blue.pixelColor(pixelAt(0.5, 0.5)), QColor(Qt::blue));
    }

    void sphereTexturedGoesRoundOnce()
    {
        // A texel for each cell. The texture's lower left is where its t is 0: at the upper pole.
        helpers.setup();
        const std::vector<QColor> colors = distinctColors(16);
        std::vector<QColor> texels;
        for (const std::ptrdiff_t row : {12, 8, 4, 0})
            texels.insert(texels.end(), colors.begin() + row, colors.begin() + row + 4);
        bindTexels(texels, 4);
        showsCells(colors, [](OpenGL &gl) { gl.sphereTextured(1.5F, 4); });
    }

    void spheresAreLitFromBelow()
    {
        // Both lights shine down, and the normals point to the centre.
        const std::vector<Draw> spheres = {[](OpenGL &gl) { gl.sphere(1.0F, 32, nullptr); },
                                           [](OpenGL &gl) {
                                               glColor3f(0.0F, 0.0F, 1.0F);
                                               gl.sphereTextured(1.0F, 32);
                                           }};
        helpers.setup();
        helpers.sceneInit(Qt::black);
        glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
        for (const Draw &draw : spheres) {
            const QImage shown = picture(draw);
            // The scene's 0.2 and 0.1 of each light
            const QColor top = shown.pixelColor(pixelAt(0.0, 0.95));
            QCOMPARE(top.red() + top.green(), 0);
            QVERIFY2(std::abs(top.blueF() - 0.4) < 0.02, qPrintable(top.name()));
            const QColor bottom = shown.pixelColor(pixelAt(0.0, -0.95));
            QVERIFY2(bottom.blueF() > 0.9, qPrintable(bottom.name()));
        }
    }

    void sphereLineIsItsCellsOutlines()
    {
        const QImage shown = picture([](OpenGL &gl) {
            glColor3f(0.0F, 1.0F, 0.0F);
            gl.sphereLine(1.5F, 4);
        });
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) {
                const QVector3D corner = sphereCorner(i, j);
                const QVector3D across = (corner + sphereCorner(i, j + 1)) / 2.0F;
                const QVector3D down = (corner + sphereCorner(i + 1, j)) / 2.0F;
                for (const QVector3D &at : {corner, across, down})
                    QVERIFY(isDrawnAt(shown, at.x(), at.y()));
                const QVector3D middle = sphereCell(i, j);
                QVERIFY(!isDrawnAt(shown, middle.x(), middle.y()));
            }
        }
        QVERIFY(isDrawnAt(shown, 0.0, -1.5));
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                QVERIFY(!isLit(shown, x, y) || shown.pixelColor(x, y) == QColor(Qt::green));
        }
    }

    void chrysanthemumIsRed()
    {
        const double shrink = 0.19; // its radius is up to 10
        glScaled(shrink, shrink, shrink);
        const QImage shown = picture([](OpenGL &gl) { gl.chrysanthemum(); });
        QPointF last;
        for (int i = 1; i <= 3000; ++i) {
            const double u = i * 21.0 * M_PI / 3000.0;
            const double r =
                5.0 * (1.0 + std::sin(2.2 * u)) -
                4.0 * std::pow(std::sin(17.0 * u / 3.0), 4) * std::pow(std::sin(2.0 * std::cos(3.0 * u) - 28.0 * u), 8);
            const QPointF at = shrink * r * QPointF(std::cos(u), std::sin(u));
            const QPointF between = i == 1 ? at : (at + last) / 2.0;
            QVERIFY2(isDrawnAt(shown, at.x(), at.y()), QByteArray::number(i));
            QVERIFY2(isDrawnAt(shown, between.x(), between.y()), QByteArray::number(i));
            last = at;
        }
        QVERIFY(farthest(shown) > 9.8 * shrink);
        QVERIFY(farthest(shown) < 10.0 * shrink + 1.5 / scale);
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                QVERIFY(!isLit(shown, x, y) || shown.pixelColor(x, y) == QColor(Qt::red));
        }
    }

    void circleGoesRoundItsCentre()
    {
        glEnable(GL_DEPTH_TEST);
        std::array<float, 3> centre = {0.5F, -0.25F, 1.5F};
        std::array<float, 3> origin = {};
        for (const bool given : {true, false}) {
            const std::array<float, 3> &middle = given ? centre : origin;
            const auto x = static_cast<double>(middle[0]);
            const auto y = static_cast<double>(middle[1]);
            const QImage shown = picture([&](OpenGL &gl) { gl.circle(given ? centre.data() : nullptr, 90, 0.75F); });
            for (int degrees = 0; degrees < 360; ++degrees) {
                const double angle = degrees * M_PI / 180.0;
                QVERIFY(isDrawnAt(shown, x + std::cos(angle), y + std::sin(angle)));
            }
            const std::vector<double> radii = distances(shown, x, y);
            for (const double radius : radii)
                QVERIFY(std::abs(radius - 1.0) < 1.5 / scale);
            // its height is the centre's alone
            const QRect area = litArea(shown);
            int row = area.top();
            while (!isLit(shown, area.left(), row))
                ++row;
            QVERIFY(std::abs(heightAt({area.left(), row}) - static_cast<double>(middle[2])) < 0.001);
        }
    }

    void ellipseGoesThroughItsPoints()
    {
        const QImage shown = picture([](OpenGL &gl) { gl.ellipse(0.5F, -0.25F, 1.25F, 0.5F, 120); });
        const std::unique_ptr<float[]> points(helpers.ellipseCoords(0.5F, -0.25F, 1.25F, 0.5F, 120));
        for (std::size_t k = 0; k < 120; ++k)
            QVERIFY(isDrawnAt(shown, static_cast<double>(points[2 * k]), static_cast<double>(points[2 * k + 1])));
        const QRect expected(pixelAt(-0.75, 0.25), pixelAt(1.75, -0.75));
        const QRect area = litArea(shown);
        QVERIFY(expected.adjusted(-1, -1, 1, 1).contains(area));
        QVERIFY(area.adjusted(-1, -1, 1, 1).contains(expected));
        QVERIFY(!isDrawnAt(shown, 0.5, -0.25));
    }
};

PENDRIX_APPLICATION_TEST_MAIN(OpenGLTest)
#include "OpenGLTest.moc"
