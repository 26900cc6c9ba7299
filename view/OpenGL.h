#pragma once

class QColor;

/// Fixed-function drawing helpers for a view, to be inherited: solids, spheres, panels and curves, points of regular
/// figures, a little vector arithmetic and two set-ups.
///
/// Holds no data. What draws calls OpenGL in immediate mode and needs a current context with fixed-function OpenGL;
/// what only computes needs none. GUI thread only.
///
/// - `mode` is the OpenGL primitive that a face is drawn as, as for glBegin: GL_POLYGON fills the faces of a solid,
///   GL_LINE_LOOP draws their edges (but see icosahedron).
/// - `colors` is null, and the current colour holds, or one colour per face in face order, set with glColor3f before
///   the corners of the face. Its alpha is not used.
/// - A returned array is the caller's, to be freed with `delete[]`; see cubeCoords for the one exception. A count below
///   1 gives an array without elements, which is freed all the same.
/// - Lengths are in scene units, angles in radians. Nothing is checked for being finite: what is not comes out as the
///   arithmetic gives it.
class OpenGL
{
public:
    OpenGL() = default;

    /// Draws the 4 triangles of a tetrahedron about the origin, apex on the positive z axis, corners at a distance of
    /// sqrt(3). Sends no normals.
    void tetrahedron(int mode, QColor *colors);

    /// Draws the 8 triangles of an octahedron with its corners on the axes, at 1.414. Sends no normals.
    void octahedron(int mode, QColor *colors);

    /// Draws the 6 squares of a cube with its corners at (+-1, +-1, +-1). Sends no normals.
    void cube(int mode, QColor *colors);

    /// Draws the 12 pentagons of a dodecahedron about the origin, corners at a distance of about 1.07.
    /// Sends no normals.
    void dodecahedron(int mode, QColor *colors);

    /// Draws the 20 triangles of an icosahedron with its corners on the unit sphere. Sends no normals. The corners of a
    /// face run clockwise as seen from outside; those of the other solids anticlockwise.
    ///
    /// Unlike the other solids all faces stand between one glBegin and one glEnd: GL_TRIANGLES makes them one batch,
    /// a line mode one figure that runs through all 60 corners.
    void icosahedron(int mode, QColor *colors);

    /// Corner `i`, 0 to 7, of the cube with its corners at (+-0.707, +-0.707, +-0.707), in the order of cube, times
    /// `scale`: x, y, z. Another `i` gives three NaN.
    ///
    /// The array belongs to the routine, is not freed, and is overwritten by the next call.
    float *cubeCoords(int i, float scale);

    /// Draws face `face` % 6 of the cube with its corners at (+-1, +-1, +-1) as a quad with the corners of the texture
    /// at its own: 0 front, 1 back, 2 left, 3 right, 4 top, 5 bottom. The remainder of a negative `face` is not
    /// positive; unless it is 0 nothing is drawn.
    void cubeFace(int face);

    /// Draws the faces 1, 2 and 5 of cubeFace, a corner of a room.
    void drawScene();

    /// Draws the faces 0 to 5 of cubeFace.
    void cubeTextured();

    /// Draws face `face`, 0 to 11, of the solid of dodecahedron as a triangle fan with the texture coordinates
    /// of textPolygon(5). Another `face` draws nothing.
    void dodecahedronFace(int face);

    /// Draws the faces 0 to 11 of dodecahedronFace.
    void dodecahedronSolid();

    /// The texture coordinates s, t of a regular polygon of `n` corners in the unit square, as a new array of
    /// 2 `n` floats.
    ///
    ///     s = 0.5 + 0.5 sin(a),  t = 0.5 + 0.5 cos(a),  a = (k - n / 2) 2 pi / n,  k = n down to 1
    ///
    /// The first corner is (0.5, 0), to the rounding of pi, and all lie on the circle of radius 0.5 about (0.5, 0.5).
    float *textPolygon(int n);

    /// Draws a lit sphere of radius `r` about the origin with its poles on the y axis, in `n` bands from pole to pole
    /// of `n` cells each. An `n` below 1 draws nothing.
    ///
    ///     (-r sin(theta) cos(phi),  r cos(theta),  r sin(theta) sin(phi)),  theta = pi i / n,  phi = 2 pi j / n
    ///
    /// for i and j from 0 to `n`. Cell (i, j) has the corners (i, j), (i, j + 1), (i + 1, j + 1), (i + 1, j) and is a
    /// triangle fan of its own with one colour, entry i `n` + j of `colors` (`n` squared entries) or else Qt::blue,
    /// and one normal before every corner, that of its first three. The normals point to the centre for a positive `r`
    /// and away from it for a negative one; in the band at the pole i = 0, where the three make no triangle, they are
    /// 0.
    ///
    /// Corners and cells are freed before it returns. Like the other spheres it cannot be called from within itself.
    void sphere(float r, int n, QColor *colors);

    /// Draws the outline of every cell of `sphere`, each as a line loop, in the current colour and without normals.
    void sphereLine(float r, int n);

    /// Draws the cells of `sphere` as quads with the same normals, in the current colour, and with texture
    /// coordinates: corner (i, j) has s = j / n, once round from seam to seam, and t = i / n, from pole to pole.
    void sphereTextured(float r, int n);

    /// The unit normal of the triangle `p0`, `p1`, `p2` (three floats each) as a new array of three floats:
    /// the cross product of p1 - p0 and p2 - p0 divided by its length. Corners in one line, or that give no number,
    /// give 0, 0, 0. In single precision.
    float *calcNormal(float *p0, float *p1, float *p2);

    /// (`x`, `y`, `z`) divided by its length, as a new array of three floats; 0, 0, 0 for a vector whose squared length
    /// is 0 or no number. In single precision.
    float *normalise(float x, float y, float z);

    /// The angle between the vectors `a` and `b` (three floats each), 0 to pi, from the arc cosine of their scalar
    /// product by their lengths, in double.
    /// Where rounding makes that cosine greater than 1 or less than -1, the angle is pi / 2. NaN for a zero vector.
    float angleVect(float *a, float *b);

    /// Draws a chrysanthemum, a flower-like curve, as one red line strip of 3000 points:
    ///
    ///     r = 5 (1 + sin(11 u / 5)) - 4 sin(17 u / 3)^4 sin(2 cos(3 u) - 28 u)^8
    ///     (r cos(u),  r sin(u),  (r / 20 + 0.2) sin(2 pi r / 7)),  u = 21 pi i / 3000,  i = 1 to 3000
    ///
    /// in double, sent as floats. The radius r stays within -4 and 10, z within -0.7 and 0.7.
    void chrysanthemum();

    /// Clears the colour buffer to transparent black, enables GL_TEXTURE_2D and GL_DEPTH_TEST and flushes.
    void setup();

    /// Sets up a lit scene: the clear colour `background`, opaque; two white directional lights, from the upper right
    /// in front and the upper left behind; a material that follows the current colour; smooth shading and lines.
    void sceneInit(QColor background);

    /// The corners of a regular polygon as a new array of 3 `n` floats: x = `r` sin(a), y = `r` cos(a), z = `z` `r`
    /// with a = 2 pi k / n for k = 0 to n - 1. Its height is the product of the arguments.
    float *polygon(int n, float r, float z);

    /// The points of a lattice, row after row, as a new array of 2 `rows` `cols` floats: column j of row i has
    /// x = j `size` / `cols` and y = i `size` / `rows`, so that the far edges at `size` are not reached.
    float *grid(int rows, int cols, float size);

    /// Shuffles the `n` ints of `a` with the C library's `rand`: for m = `n` down to 2 it swaps element `rand() % m`
    /// with element m - 1. Does nothing for an `n` below 2.
    void shuffle(int *a, int n);

    /// Draws a circle of radius 1 of `n` points as a line loop: about `centre` (three floats) in its height, or about
    /// the origin if `centre` is null. `z` is accepted and has no effect.
    void circle(float *centre, int n, float z);

    /// Draws a filled rectangle about the origin in the plane z = 0, `b` wide along x and `a` high along y.
    void panel(float a, float b);

    /// As panel, with the corners of the texture at its own: (0, 0) lower left, (1, 1) upper right.
    void panelFace(float a, float b);

    /// Draws the points of ellipseCoords in the plane z = 0 as a line loop.
    void ellipse(float cx, float cy, float rx, float ry, int n);

    /// `n` points on the ellipse about (`cx`, `cy`) with the half axes `rx` along x and `ry` along y, as a new array of
    /// 2 `n` floats: x = `cx` + `rx` cos(a), y = `cy` + `ry` sin(a), a = 2 pi k / n for k = 0 to n - 1.
    float *ellipseCoords(float cx, float cy, float rx, float ry, int n);
};
