#pragma once

class QColor;

/// Fixed-function drawing helpers, a base class of the views: solids, spheres, panels and curves, points of regular
/// figures, vector arithmetic and two functions that set up a context.
///
/// Has no data. Functions that draw call OpenGL in immediate mode and need a current context with fixed-function
/// OpenGL; functions that compute need none. GUI thread only.
///
/// - `mode` is a primitive type for glBegin: GL_POLYGON fills the faces of a solid, GL_LINE_LOOP draws their edges (but
///   see icosahedron).
/// - `colors` is either null, which keeps the current colour, or has one colour per face in face order, which is set
///   with glColor3f before the vertices of the face. Alpha is ignored.
/// - The caller owns a returned array, except for the one of cubeCoords, and frees it with `delete[]`. A count below 1
///   gives a zero-length array, which must still be freed.
/// - Lengths are in scene units, angles in radians. NaN and infinities propagate as in IEEE 754.
class OpenGL
{
public:
    OpenGL() = default;

    /// Draws the 4 triangles of a tetrahedron about the origin with circumradius sqrt(3) and its apex on the positive
    /// z axis. Sends no normals.
    void tetrahedron(int mode, QColor *colors);

    /// Draws the 8 triangles of an octahedron with its vertices on the axes, at 1.414. Sends no normals.
    void octahedron(int mode, QColor *colors);

    /// Draws the 6 squares of a cube with its vertices at (+-1, +-1, +-1). Sends no normals.
    void cube(int mode, QColor *colors);

    /// Draws the 12 pentagons of a dodecahedron about the origin with a circumradius of about 1.07. Sends no normals.
    void dodecahedron(int mode, QColor *colors);

    /// Draws the 20 triangles of an icosahedron with its vertices on the unit sphere. Sends no normals. Its faces are
    /// clockwise as seen from outside; the faces of the other solids are anticlockwise.
    ///
    /// Unlike the other solids, sends all faces between one glBegin and one glEnd: GL_TRIANGLES makes them one batch,
    /// a line mode one figure through all 60 vertices of the faces.
    void icosahedron(int mode, QColor *colors);

    /// Returns vertex `i`, 0 to 7, of the cube with its vertices at (+-0.707, +-0.707, +-0.707), in the order of cube,
    /// times `scale`: x, y, z. Any other `i` gives three NaN.
    ///
    /// The array is static: it must not be freed, and the next call overwrites it.
    float *cubeCoords(int i, float scale);

    /// Draws face `face` % 6 of the cube with its vertices at (+-1, +-1, +-1) as a quad that the texture fills: 0
    /// front, 1 back, 2 left, 3 right, 4 top, 5 bottom. Draws nothing if the remainder is negative.
    void cubeFace(int face);

    /// Draws the faces 1, 2 and 5 of cubeFace.
    void drawScene();

    /// Draws the faces 0 to 5 of cubeFace.
    void cubeTextured();

    /// Draws face `face`, 0 to 11, of dodecahedron as a triangle fan with the texture coordinates of textPolygon(5).
    /// Draws nothing for any other `face`.
    void dodecahedronFace(int face);

    /// Draws the faces 0 to 11 of dodecahedronFace.
    void dodecahedronSolid();

    /// Returns the texture coordinates s, t of a regular `n`-gon in the unit square as a new array of 2 `n` floats.
    ///
    ///     s = 0.5 + 0.5 sin(a),  t = 0.5 + 0.5 cos(a),  a = (k - n / 2) 2 pi / n,  k = n down to 1
    ///
    /// The first point is (0.5, 0), to the rounding of pi; all lie on the circle of radius 0.5 about (0.5, 0.5).
    float *textPolygon(int n);

    /// Draws a lit sphere of radius `r` about the origin with its poles on the y axis, in `n` bands from pole to pole
    /// of `n` cells each. Draws nothing for an `n` below 1.
    ///
    ///     (-r sin(theta) cos(phi),  r cos(theta),  r sin(theta) sin(phi)),  theta = pi i / n,  phi = 2 pi j / n
    ///
    /// for i and j from 0 to `n`. Cell (i, j) has the vertices (i, j), (i, j + 1), (i + 1, j + 1), (i + 1, j). It is
    /// drawn as a triangle fan of one colour, element i `n` + j of `colors` (`n` squared elements) or else Qt::blue.
    /// The normal of its first three vertices is sent before every vertex. Normals point to the centre for a positive
    /// `r` and away from it for a negative one; in the band at the pole i = 0 the three are collinear and it is 0.
    ///
    /// Frees its mesh before it returns. Not re-entrant, like the other spheres.
    void sphere(float r, int n, QColor *colors);

    /// Draws the outline of every cell of sphere as a line loop, in the current colour and without normals.
    void sphereLine(float r, int n);

    /// Draws the cells of sphere as quads with the same normals, in the current colour. The texture coordinates of
    /// vertex (i, j) are s = j / n, once round from seam to seam, and t = i / n, from pole to pole.
    void sphereTextured(float r, int n);

    /// Returns the unit normal of the triangle `p0`, `p1`, `p2` (three floats each) as a new array of three floats:
    /// the cross product of p1 - p0 and p2 - p0 divided by its length, in single precision. 0, 0, 0 for collinear
    /// points, and if the squared length is NaN.
    float *calcNormal(float *p0, float *p1, float *p2);

    /// Returns (`x`, `y`, `z`) divided by its length as a new array of three floats, in single precision; 0, 0, 0 if
    /// the squared length is 0 or NaN.
    float *normalise(float x, float y, float z);

    /// Returns the angle between the vectors `a` and `b` (three floats each), 0 to pi: the arc cosine of their scalar
    /// product divided by both lengths, in double. If rounding moves that cosine beyond 1 or -1, the angle is pi / 2.
    /// NaN for a zero vector.
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

    /// Returns the vertices of a regular polygon as a new array of 3 `n` floats: x = `r` sin(a), y = `r` cos(a),
    /// z = `z` `r` with a = 2 pi k / n for k = 0 to n - 1.
    float *polygon(int n, float r, float z);

    /// Returns the points of a lattice, row after row, as a new array of 2 `rows` `cols` floats: column j of row i has
    /// x = j `size` / `cols` and y = i `size` / `rows`, so that no point lies on the far edges at `size`.
    float *grid(int rows, int cols, float size);

    /// Shuffles the `n` ints of `a` with std::rand: for m = `n` down to 2, swaps element `rand() % m` with element
    /// m - 1. Does nothing for an `n` below 2.
    void shuffle(int *a, int n);

    /// Draws a circle of radius 1 of `n` points as a line loop parallel to the plane z = 0, about `centre` (three
    /// floats) or, if that is null, about the origin. Ignores `z`.
    void circle(float *centre, int n, float z);

    /// Draws a filled rectangle about the origin in the plane z = 0, `b` wide along x and `a` high along y.
    void panel(float a, float b);

    /// Draws the rectangle of panel filled with the texture: (0, 0) lower left, (1, 1) upper right.
    void panelFace(float a, float b);

    /// Draws the points of ellipseCoords in the plane z = 0 as a line loop.
    void ellipse(float cx, float cy, float rx, float ry, int n);

    /// Returns `n` points on the ellipse about (`cx`, `cy`) with the half axes `rx` along x and `ry` along y as a new
    /// array of 2 `n` floats: x = `cx` + `rx` cos(a), y = `cy` + `ry` sin(a), a = 2 pi k / n for k = 0 to n - 1.
    float *ellipseCoords(float cx, float cy, float rx, float ry, int n);
};
