#pragma once

#include <QColor>
#include <QStringList>
#include <QTypeInfo>
#include <QVector>

/// A vertex of the curve, in scene units. With the default amplitude every coordinate is in -1 to 1 or NaN.
struct CurvePoint
{
    float x;
    float y;
    float z;
};
Q_DECLARE_TYPEINFO(CurvePoint, Q_PRIMITIVE_TYPE);

/// The curve engine: the trace of a damped three-axis pendulum drawing machine, as coloured points.
///
/// Owns the parameter rows of the table, the built-in presets, the parameters of the current curve, the palette and the
/// computed curve. The program has one engine, the global `pdx3`, and uses it on the GUI thread only.
///
/// A *parameter row* is six floats: freq1, freq2, freq3, phase1, phase2, color. The cross-over is intended: freq1
/// drives y and freq2 drives x. Phases are in turns. The last value is the colour mode. A row may hold any
/// float; NaN and infinities propagate to the coordinates as in IEEE 754.
///
/// Selecting a row copies it: later edits of the row change the curve only when the row is selected again.
class Pendrix3D
{
public:
    /// Number of parameter rows in the table.
    static constexpr int rowCount = 64;
    /// Number of values in a parameter row.
    static constexpr int rowLength = 6;
    /// Number of colour modes, which are 0 to `colorModeCount` - 1.
    static constexpr int colorModeCount = 5;
    /// Number of built-in presets.
    static constexpr int presetCount = 12;
    /// What a frame of the animation adds to freq1 and freq3.
    static constexpr double driftPerFrame = 0.0004;
    /// Curve time from point to point.
    static constexpr double timeStep = 0.02;

    /// Builds the palette and the presets, seeds `rand` from the time, computes the curve of preset 0 and fills
    /// `paramList`.
    Pendrix3D();

    /// Makes preset `n` % `presetCount` current and computes its curve. Reaches only the built-in presets, never
    /// `paramList`. A negative remainder sets `setIndex` but leaves the curve unchanged.
    void set(int n);

    /// Makes `row` current and computes its curve. The colour mode is truncated toward zero; one that does not fit an
    /// int becomes the lowest int, which selects entry 0 for every point. Ignores a row of fewer than six values, and
    /// values after the sixth.
    void set(QVector<float> row);

    /// Makes these values, in row order, current and computes the curve.
    void set(float f1, float f2, float f3, float p1, float p2, int c);

    /// Makes a random row current and computes its curve: five whole numbers 0 to 99 and one of the colour modes, each
    /// from one call of `rand`, in row order. Does not change `paramList` and `setIndex`.
    void setRandom();

    /// Makes the next preset current, the first after the twelfth, and computes its curve.
    void nextSet();

    /// Returns the address of `params`, which stays valid while the engine exists.
    float *getParams();

    /// Replaces `paramList` by the presets and blank rows up to 64. Does not change the curve.
    void resetParamList();

    /// Returns the built-in presets as text, one line for each: six values with up to six significant digits, separated
    /// by a comma and a blank.
    QStringList preset2StringList();

    /// Copies the current parameters to `params`.
    void setParams();

    /// Draws the curve as one line strip in the current OpenGL context, with the current transform.
    ///
    /// Sets the colour of a point after its vertex (one-vertex colour lag, intended): each vertex has the colour of the
    /// point before it, and the first vertex has the colour that was current before the call.
    void draw();

    /// Advances the animation: adds `driftPerFrame` to freq1 and freq3, without bound, and computes the curve.
    void next();

    /// Adds `dFreq1` to freq1 and `dFreq3` to freq3 and computes the curve.
    void next(double dFreq1, double dFreq3);

    /// Computes the curve of the current parameters: `nPoints` points, and in `colors` the colour of each. Copies the
    /// parameters to `params`. Stores the last point in `x`, `y`, `z`, `t`, `amplitude`, `red`, `green` and `blue`.
    ///
    /// The number of points is int(total / step), or 0 if the quotient is NaN or does not fit an int. Both lists keep
    /// their storage, so that a pass allocates nothing once they have grown.
    void calcCoords();

    /// Computes point `i`: adds `timeStep` to `t`, subtracts `step` from `amplitude`, and sets
    ///
    ///     x = sin(freq2 t) amplitude
    ///     y = sin(phase1 twoPi + freq1 t) amplitude
    ///     z = sin(phase2 twoPi + freq3 t) amplitude
    ///
    /// and the colour. The sines' arguments are computed in float. The sine and its product with the amplitude are
    /// computed in double, and the product is rounded to float.
    void calcSegment(int i);

    /// Six zeros, the row that pads `paramList`.
    QVector<float> blankRow;
    /// The six column titles.
    QStringList header;
    /// The rows of the table: 64 parameter rows, initially and after a reset the presets and blank rows.
    QVector<QVector<float>> paramList;

    /// The last computed point.
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
    /// Curve time of the last computed point.
    float t = 0.0F;

    /// Colour of the last computed point, 0 to 255.
    int red = 0;
    int green = 0;
    int blue = 0;
    /// 1 once a point has been computed. Has no effect: every colour is opaque.
    int alpha = 0;

    /// The parameters of the last pass in row order, the colour mode as a float.
    float params[rowLength] = {};
    /// 2 pi as a float, bits 0x40C90FDB.
    float twoPi = 6.2831855F;
    /// Amplitude of the last computed point.
    float amplitude = 0.0F;

    /// The computed curve.
    QVector<CurvePoint> points;
    /// One colour for each point, same index.
    QVector<QColor> colors;
    /// Number of points of the curve, 16666 with the default `total` and `step`.
    int nPoints = 0;

    /// Index of the last preset selected by number, 0 to 11, or negative after a negative number.
    int setIndex = 0;

    /// `paletteSize` (1 or more) packed colours 0x00RRGGBB. Takes effect at the next pass. Never released: the engine
    /// lives as long as the process.
    unsigned int *palette = nullptr;
    int paletteSize = 512;
    /// The end colours of the palette, for information: changing them has no effect. The last entry is 511/512 of the
    /// way to `paletteTo`.
    unsigned int paletteFrom = 0x0000FF;
    unsigned int paletteTo = 0xFF0000;

    /// Amplitude lost per point.
    float step = 6e-5F;
    /// Starting amplitude.
    float total = 1.0F;
    /// Divisor of the radius in colour mode 2.
    float radiusScale = 1.0F;
    /// What the palette position follows:
    /// - 0: the position along the curve
    /// - 1: the depth at the start (z)
    /// - 2: the distance from the centre
    /// - 3: the time, one sweep per 2 pi
    /// - 4: the time, eight sweeps per 2 pi
    ///
    /// Any other mode selects entry 0.
    int colorMode = 1;

    /// The twelve built-in rows; constant after construction.
    QVector<QVector<float>> presets;

    /// The current parameters, elements 0 to 4 of a row.
    float freq1 = 0.0F;
    float freq2 = 0.0F;
    float freq3 = 0.0F;
    float phase1 = 0.0F;
    float phase2 = 0.0F;

private:
    Q_DISABLE_COPY(Pendrix3D)

    /// Number of points that are computed together. Small enough for a block's arrays to stay in the first-level cache.
    static constexpr int blockLength = 256;

    /// Computes `count` points (1 to blockLength) from point `first` on into `point`, and their palette indices into
    /// `indices`. Advances `t` and `amplitude`. Stores the last point in `x`, `y`, `z`, `red`,
    /// `green` and `blue`.
    void calcBlock(int first, int count, CurvePoint *point, int *indices);

    /// The palette of the current pass as QColor. A pass constructs these colours and the points' colours in place:
    /// QColor's copy constructor is inline, but its copy assignment is not, and a temporary would pass through the
    /// stack.
    QVector<QColor> paletteColors;
};

/// The program's engine, constructed before main.
extern Pendrix3D pdx3;
