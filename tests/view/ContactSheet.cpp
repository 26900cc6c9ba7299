// The drawing helpers side by side, to be looked at: pendrix_contact_sheet PICTURE.png
//
// Ends with 1 if a cell shows nothing, if its drawing is cut off or an error of OpenGL, or if there is no sheet.

#include "tests/support/OffscreenOpenGL.h"
#include "view/OpenGL.h"

#include <QColor>
#include <QGuiApplication>
#include <QPainter>
#include <QtDebug>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

namespace {

constexpr int columns = 6;
constexpr int side = 220;
constexpr int labelHeight = 26;
constexpr int gap = 10;
/// Pixels of OpenGL by pixels of the sheet, along each side: smooth edges.
constexpr int finer = 3;
constexpr int bands = 24;

using Floats = std::unique_ptr<float[]>;

/// How a cell is looked at: straight, along the z axis, or in perspective from above and from the front and the right
/// or else the right alone.
struct View
{
    enum Direction { Straight, Turned, FromRight } direction;
    /// How far the drawing reaches from `middle`, in x, y and z.
    double reach;
    /// x and y of what is in the middle of the cell.
    double middle = 0.0;
};

enum Surface { Plain = 0, Lit = 1, Textured = 2 };

struct Cell
{
    const char *name;
    View view;
    void (*draw)(OpenGL &);
    int surface = Plain;
};

/// `count` colours, those of neighbours in the list far from one another.
std::vector<QColor> colors(int count)
{
    std::vector<QColor> all;
    all.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        all.push_back(QColor::fromHsvF(i * 7 % count / double(count), i % 2 ? 0.55 : 0.85, i % 3 ? 0.95 : 0.75));
    return all;
}

/// A beach ball: one hue from pole to pole, and every second band paler.
std::vector<QColor> ballColors()
{
    std::vector<QColor> all;
    for (int i = 0; i < bands; ++i) {
        for (int j = 0; j < bands; ++j)
            all.push_back(QColor::fromHsvF(j / double(bands), i % 2 ? 0.4 : 0.9, 0.95));
    }
    return all;
}

/// A letter on a checkerboard tells the turned texture from the mirrored one. Red is at (0, 0), green at (1, 0).
void bindCheckerboard()
{
    constexpr int size = 256;
    constexpr int square = size / 8;
    QImage board(size, size, QImage::Format_RGB32);
    QPainter painter(&board);
    for (int i = 0; i < 64; ++i) {
        const QColor color = (i + i / 8) % 2 ? QColor(0xF2E8CF) : QColor(0xA7B5C6);
        painter.fillRect(i % 8 * square, i / 8 * square, square, square, color);
    }
    painter.fillRect(0, size - 2 * square, 2 * square, 2 * square, Qt::red);
    painter.fillRect(size - 2 * square, size - 2 * square, 2 * square, 2 * square, Qt::darkGreen);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(180);
    painter.setFont(font);
    painter.setPen(QColor(0x1B263B));
    painter.drawText(board.rect(), Qt::AlignCenter, "F");
    painter.end();
    OffscreenOpenGL::bindTexture(board, GL_LINEAR);
}

/// Draws the `count` points of `components` floats each, from red at the first round to violet.
void drawArray(GLenum mode, const float *points, int count, int components)
{
    glBegin(mode);
    for (int i = 0; i < count; ++i) {
        const QColor color = QColor::fromHsvF(0.8 * i / count, 0.7, 1.0);
        glColor3d(color.redF(), color.greenF(), color.blueF());
        const float *const point = points + static_cast<std::ptrdiff_t>(i) * components;
        if (components == 2)
            glVertex2fv(point);
        else
            glVertex3fv(point);
    }
    glEnd();
}

void drawCubeCoords(OpenGL &helpers, float scale)
{
    std::array<float, 24> corners = {};
    for (int i = 0; i < 8; ++i) {
        const float *const corner = helpers.cubeCoords(i, scale);
        std::copy(corner, corner + 3, &corners[static_cast<std::size_t>(i) * 3]);
    }
    drawArray(GL_LINE_STRIP, corners.data(), 8, 3); // each corner has an edge to the next one
    drawArray(GL_POINTS, corners.data(), 8, 3);
}

const std::array<Cell, 30> cells = {{
    {"tetrahedron", {View::Turned, 1.74}, [](OpenGL &gl) { gl.tetrahedron(GL_POLYGON, colors(4).data()); }},
    {"octahedron", {View::Turned, 1.42}, [](OpenGL &gl) { gl.octahedron(GL_POLYGON, colors(8).data()); }},
    {"cube", {View::Turned, 1.74}, [](OpenGL &gl) { gl.cube(GL_POLYGON, colors(6).data()); }},
    {"dodecahedron", {View::Turned, 1.08}, [](OpenGL &gl) { gl.dodecahedron(GL_POLYGON, colors(12).data()); }},
    {"icosahedron", {View::Turned, 1.0}, [](OpenGL &gl) { gl.icosahedron(GL_TRIANGLES, colors(20).data()); }},
    {"chrysanthemum", {View::Straight, 10.0}, [](OpenGL &gl) { gl.chrysanthemum(); }},

    {"tetrahedron, lines", {View::Turned, 1.74}, [](OpenGL &gl) { gl.tetrahedron(GL_LINE_LOOP, nullptr); }},
    {"octahedron, lines", {View::Turned, 1.42}, [](OpenGL &gl) { gl.octahedron(GL_LINE_LOOP, nullptr); }},
    {"cube, lines", {View::Turned, 1.74}, [](OpenGL &gl) { gl.cube(GL_LINE_LOOP, nullptr); }},
    {"dodecahedron, lines", {View::Turned, 1.08}, [](OpenGL &gl) { gl.dodecahedron(GL_LINE_LOOP, nullptr); }},
    {"icosahedron, one line", {View::Turned, 1.0}, [](OpenGL &gl) { gl.icosahedron(GL_LINE_LOOP, nullptr); }},
    {"sphereLine", {View::Turned, 1.0}, [](OpenGL &gl) { gl.sphereLine(1.0F, bands / 2); }},

    {"sphere", {View::Turned, 1.0}, [](OpenGL &gl) { gl.sphere(1.0F, bands, nullptr); }, Lit},
    {"sphere, colours", {View::Turned, 1.0}, [](OpenGL &gl) { gl.sphere(1.0F, bands, ballColors().data()); }, Lit},
    {"sphereTextured", {View::FromRight, 1.0}, [](OpenGL &gl) { gl.sphereTextured(1.0F, bands); }, Textured},
    {"sphereTextured, lit", {View::FromRight, 1.0}, [](OpenGL &gl) { gl.sphereTextured(1.0F, bands); }, Lit | Textured},
    {"dodecahedronFace(0)", {View::Turned, 1.08}, [](OpenGL &gl) { gl.dodecahedronFace(0); }, Textured},
    {"dodecahedronSolid", {View::Turned, 1.08}, [](OpenGL &gl) { gl.dodecahedronSolid(); }, Textured},

    {"cubeFace(3)", {View::Turned, 1.74}, [](OpenGL &gl) { gl.cubeFace(3); }, Textured},
    {"cubeTextured", {View::Turned, 1.74}, [](OpenGL &gl) { gl.cubeTextured(); }, Textured},
    {"drawScene", {View::Turned, 1.74}, [](OpenGL &gl) { gl.drawScene(); }, Textured},
    {"cubeCoords",
     {View::Turned, 1.23},
     [](OpenGL &gl) {
         drawCubeCoords(gl, 1.0F);
         drawCubeCoords(gl, 0.5F);
     }},
    {"panel(1, 2)",
     {View::Straight, 1.2},
     [](OpenGL &gl) {
         glColor3f(0.3F, 0.6F, 0.9F);
         gl.panel(1.0F, 2.0F);
     }},
    {"panelFace(2, 1.5)", {View::Straight, 1.2}, [](OpenGL &gl) { gl.panelFace(2.0F, 1.5F); }, Textured},

    {"circle(nullptr)", {View::Straight, 1.8}, [](OpenGL &gl) { gl.circle(nullptr, 64, 0.0F); }},
    {"circle(centre)",
     {View::Straight, 1.8},
     [](OpenGL &gl) {
         std::array<float, 3> centre = {0.7F, 0.5F, 0.0F};
         gl.circle(centre.data(), 64, 0.0F);
     }},
    {"ellipse, ellipseCoords",
     {View::Straight, 1.2},
     [](OpenGL &gl) {
         gl.ellipse(0.0F, 0.0F, 1.1F, 0.6F, 64);
         const Floats points(gl.ellipseCoords(0.25F, 0.0F, 0.6F, 0.4F, 16));
         drawArray(GL_POINTS, points.get(), 16, 2);
     }},
    {"textPolygon(3), (5)",
     {View::Straight, 0.6, 0.5},
     [](OpenGL &gl) {
         for (const int n : {3, 5}) {
             const Floats points(gl.textPolygon(n));
             drawArray(GL_LINE_LOOP, points.get(), n, 2);
             drawArray(GL_POINTS, points.get(), n, 2);
         }
     }},
    {"polygon, z -0.6 to 0.6",
     {View::Turned, 1.2},
     [](OpenGL &gl) {
         for (const float z : {-0.6F, 0.0F, 0.6F}) {
             const Floats points(gl.polygon(7, 1.0F, z));
             drawArray(GL_LINE_LOOP, points.get(), 7, 3);
             drawArray(GL_POINTS, points.get(), 7, 3);
         }
     }},
    {"grid(6, 10, 2)",
     {View::Straight, 1.2, 1.0},
     [](OpenGL &gl) {
         const Floats points(gl.grid(6, 10, 2.0F));
         drawArray(GL_POINTS, points.get(), 60, 2);
     }},
}};

void look(const View &view)
{
    const double half = 1.08 * view.reach;
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    if (view.direction == View::Straight) {
        glOrtho(view.middle - half, view.middle + half, view.middle - half, view.middle + half, -half, half);
        glMatrixMode(GL_MODELVIEW);
        return;
    }
    // The ball about the scene touches the sides of the pyramid that is seen.
    const double distance = 4.0 * half;
    const double front = distance - half;
    const double edge = front * std::tan(std::asin(half / distance));
    glFrustum(-edge, edge, -edge, edge, front, distance + half);
    glMatrixMode(GL_MODELVIEW);
    glTranslated(0.0, 0.0, -distance);
    glRotated(22.0, 1.0, 0.0, 0.0);
    glRotated(view.direction == View::Turned ? -32.0 : -90.0, 0.0, 1.0, 0.0);
}

/// The axes of a cell that is looked at straight. They stand behind everything.
void drawAxes(const View &view)
{
    const double end = view.middle + 2.0 * view.reach;
    glDisable(GL_DEPTH_TEST);
    glBegin(GL_LINES);
    glVertex2d(-end, 0.0);
    glVertex2d(end, 0.0);
    glVertex2d(0.0, -end);
    glVertex2d(0.0, end);
    glEnd();
    glEnable(GL_DEPTH_TEST);
}

/// Empty if `after` shows a whole drawing in front of `before`. Else what is wrong.
QString fault(const QImage &before, const QImage &after)
{
    if (const GLenum error = glGetError(); error != GL_NO_ERROR)
        return QString("OpenGL error 0x%1").arg(error, 0, 16);
    if (after == before)
        return "nothing is drawn";
    const int last = after.width() - 1;
    for (int i = 0; i <= last; ++i) {
        for (const QPoint at : {QPoint(i, 0), QPoint(i, last), QPoint(0, i), QPoint(last, i)}) {
            if (after.pixel(at) != before.pixel(at))
                return "the drawing is cut off";
        }
    }
    return {};
}

/// Draws `cell` and sets `wrong` to what is wrong with it, if anything.
QImage drawCell(const Cell &cell, const OffscreenOpenGL &offscreen, QString *wrong)
{
    OpenGL helpers;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    helpers.setup();
    glClearColor(0.05F, 0.06F, 0.08F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glLineWidth(1.3F * finer);
    glPointSize(5.0F * finer);
    look(cell.view);
    glColor3f(0.2F, 0.23F, 0.28F);
    if (cell.view.direction == View::Straight)
        drawAxes(cell.view);
    const QImage before = offscreen.picture();

    if (cell.surface & Lit) {
        // The lights stay with the viewer, whatever way the scene is turned.
        glPushMatrix();
        glLoadIdentity();
        helpers.sceneInit(Qt::black);
        glPopMatrix();
    }
    if (cell.surface & Textured)
        bindCheckerboard();
    glColor3f(1.0F, 1.0F, 1.0F); // after the lights: only a change of the colour is sure to reach the material
    cell.draw(helpers);
    const QImage after = offscreen.picture();
    *wrong = fault(before, after);
    glPopAttrib();
    return after.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2) {
        qCritical("usage: pendrix_contact_sheet PICTURE.png");
        return 1;
    }
    const OffscreenOpenGL offscreen(side * finer);
    if (!offscreen.isValid()) {
        qCritical("There is no fixed-function OpenGL.");
        return 1;
    }

    constexpr int rows = (static_cast<int>(cells.size()) + columns - 1) / columns;
    QImage sheet(gap + columns * (side + gap), gap + rows * (side + labelHeight + gap), QImage::Format_RGB32);
    sheet.fill(QColor(0x23272F));
    QPainter painter(&sheet);
    painter.setPen(QColor(0xE3E7ED));
    QFont font = painter.font();
    font.setPixelSize(14);
    painter.setFont(font);

    int status = 0;
    QPoint corner(gap, gap);
    for (const Cell &cell : cells) {
        QString wrong;
        painter.drawImage(corner, drawCell(cell, offscreen, &wrong));
        painter.drawText(QRect(corner + QPoint(0, side), QSize(side, labelHeight)), Qt::AlignCenter, cell.name);
        if (!wrong.isEmpty()) {
            qCritical("%s: %s", cell.name, qPrintable(wrong));
            status = 1;
        }
        corner.rx() += side + gap;
        if (corner.x() >= sheet.width())
            corner = {gap, corner.y() + side + labelHeight + gap};
    }
    painter.end();
    if (!sheet.save(arguments[1])) {
        qCritical("%s cannot be written.", qPrintable(arguments[1]));
        return 1;
    }
    return status;
}
