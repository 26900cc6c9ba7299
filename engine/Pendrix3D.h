#pragma once

#include <QColor>
#include <QStringList>
#include <QTypeInfo>
#include <QVector>

/// One vertex of the curve, in scene units; with the default amplitude every coordinate lies in -1 to 1 or is NaN.
struct CurvePoint
{
    float x;
    float y;
    float z;
};
Q_DECLARE_TYPEINFO(CurvePoint, Q_PRIMITIVE_TYPE);

/// The curve engine: the trace of a damped three-axis pendulum drawing machine, as coloured points.
///
/// Holds the parameter rows of the table, the built-in presets, the parameters of the curve on screen, the palette and
/// the computed curve. There is one engine in the program, the global `pdx3`; all of it runs on the GUI thread.
///
/// A *parameter row* is six floats: freq1, freq2, freq3, phase1, phase2, color. freq1 drives y and freq2 drives x;
/// the cross-over is intended. Phases are in turns. The last value is the colour mode, 0 to 4.
/// Selecting a row copies it: later edits of the row reach the curve when it is selected again.
///
/// A row may hold any float, NaN and infinities included; the curve then has its points all the same, with the
/// coordinates that the arithmetic gives.
class Pendrix3D
{
public:
    /// Number of parameter rows in the table.
    static constexpr int rowCount = 64;
    /// Number of values in a parameter row.
    static constexpr int rowLength = 6;

    /// Builds the palette and the presets, seeds the C library's random generator from the time, computes the curve
    /// of preset 0 and fills `paramList` with the presets and blank rows.
    Pendrix3D();

    /// Makes preset `n` % 12 current and computes its curve. Only the built-in presets are reached, never the user's
    /// rows. A negative `n` that is no multiple of 12 leaves the curve as it is, with `setIndex` negative.
    void set(int n);

    /// Makes `row` current and computes its curve. The colour mode is truncated toward zero; one that does not fit
    /// an int (NaN, infinite, 1e38) becomes the lowest int, a mode like any other that has no colouring of its own.
    /// A row of fewer than six values changes nothing; values after the sixth are not read.
    void set(QVector<float> row);

    /// Makes these values current, as a row of the same order would, and computes the curve.
    void set(float f1, float f2, float f3, float p1, float p2, int c);

    /// Makes a random row current and computes its curve: five whole numbers 0 to 99 and a colour mode 0 to 4, each
    /// from one `rand` of the C library in row order. The phases are whole turns, in effect no offset.
    /// `paramList` and `setIndex` do not change.
    void setRandom();

    /// Steps to the next preset, after the twelfth to the first, and computes its curve.
    void nextSet();

    /// The six current parameters in row order, the colour mode as a float, as of the last pass; the animation's
    /// drift shows in freq1 and freq3. The address stays valid while the engine lives.
    float *getParams();

    /// Fills `paramList` anew: the presets and then blank rows up to 64. The curve on screen does not change.
    void resetParamList();

    /// The built-in presets as text, one line a row: six values with up to six significant digits, separated by a comma
    /// and a blank. The user's rows have no part in it.
    QStringList preset2StringList();

    /// Copies the current parameters to `params`. Every pass does the same at its start.
    void setParams();

    /// Draws the curve as one line strip in the current OpenGL context, which must have its transform set up.
    ///
    /// The colour of a point is set after its vertex and so colours the next one: each vertex has the colour of the
    /// point before it, and the first the colour that was current. The lag is intended.
    void draw();

    /// One step of the animation: raises freq1 and freq3 by 0.0004 and computes the curve. The drift has no bound and
    /// lasts until the next set.
    void next();

    /// Raises freq1 by `dFreq1` and freq3 by `dFreq3` and computes the curve.
    void next(double dFreq1, double dFreq3);

    /// Computes the curve of the current parameters: `nPoints` points and as many colours, entry i of `colors` being
    /// the colour of point i. A `total` / `step` that is negative, NaN or does not fit an int gives no points.
    /// The lists keep their storage from pass to pass, so that a pass allocates nothing once they have grown.
    /// Afterwards the fields hold the last point's values. Every point is what calcSegment gives, to the bit; see
    /// DampedSine.h.
    void calcCoords();

    /// Moves time and amplitude on by one point and computes the position and the colour of point `i`.
    ///
    ///     x = sin(freq2 t) amplitude
    ///     y = sin(2 pi phase1 + freq1 t) amplitude
    ///     z = sin(2 pi phase2 + freq3 t) amplitude
    ///
    /// where t grows by 0.02 and the amplitude falls by `step` from point to point. The sines' arguments are computed
    /// in float; the sine and its product with the amplitude in double, and the product is rounded to float.
    void calcSegment(int i);

    /// Six zeros, the row that pads `paramList`.
    QVector<float> blankRow;
    /// The six column titles.
    QStringList header;
    /// The rows of the table: 64 parameter rows, at first and after a reset the presets and blank rows.
    QVector<QVector<float>> paramList;

    /// The point just computed.
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
    /// Curve time of the point just computed.
    float t = 0.0F;

    /// The colour of the point just computed, 0 to 255.
    int red = 0;
    int green = 0;
    int blue = 0;
    /// 1 once a point has been computed. It has no effect: every colour is opaque.
    int alpha = 0;

    /// The current parameters in row order; see getParams.
    float params[6] = {};
    /// 2 pi as a float, bits 0x40C90FDB.
    float twoPi = 6.2831855F;
    /// Amplitude of the point just computed.
    float amplitude = 0.0F;

    /// The computed curve. A pass fills it anew; pointers and iterators from before it are no longer to be used.
    QVector<CurvePoint> points;
    /// One colour per point, same index; the same holds.
    QVector<QColor> colors;
    /// Number of points of the curve, 16666 with the default `total` and `step`.
    int nPoints = 0;

    /// Index of the preset that was last chosen by number, 0 to 11 unless a negative one was asked for.
    int setIndex = 0;

    /// `paletteSize` packed colours 0x00RRGGBB. Never released: the engine lives as long as the process. A change shows
    /// from the next pass on. The size must be 1 at least and no more than the palette has.
    unsigned int *palette = nullptr;
    int paletteSize = 512;
    /// First colour of the palette. Like the next one it tells how the palette was built; nothing reads it.
    unsigned int paletteFrom = 0x0000FF;
    /// The colour that the palette runs to. Its last entry stands at 511/512 of the way.
    unsigned int paletteTo = 0xFF0000;

    /// Amplitude lost per point.
    float step = 6e-5F;
    /// Starting amplitude.
    float total = 1.0F;
    /// Divisor of the radius in colour mode 2.
    float radiusScale = 1.0F;
    /// What the palette follows: 0 the position along the curve, 1 the height z, 2 the distance from the centre,
    /// 3 the time, one sweep per 2 pi, 4 the time, eight sweeps per 2 pi. Any other mode is one colour, entry 0.
    int colorMode = 1;

    /// The twelve built-in rows; never changed.
    QVector<QVector<float>> presets;

    /// The current parameters, elements 0 to 4 of a row.
    float freq1 = 0.0F;
    float freq2 = 0.0F;
    float freq3 = 0.0F;
    float phase1 = 0.0F;
    float phase2 = 0.0F;

private:
    Q_DISABLE_COPY(Pendrix3D)

    /// A colour's floating-point components, narrowed to float.
    struct ColorComponents
    {
        float red;
        float green;
        float blue;
        float alpha;
    };
    static ColorComponents componentsOf(const QColor &color);
    /// The floating-point component that a byte of a colour stands for.
    float byteComponents[256] = {};

    /// Points of a pass that are computed together, step by step; few enough to stay in the processor's first cache.
    static constexpr int blockLength = 256;
    struct Block
    {
        float times[blockLength];
        float amplitudes[blockLength];
        float angles[blockLength];
        float x[blockLength];
        float y[blockLength];
        float z[blockLength];
        float places[blockLength]; ///< on the palette
    };

    void preparePalette();
    void calcBlock(int first, int count);
    void calcPoints(int first, int count);
    void calcColors(int first, int count);
    void setColor(int entry);
    float palettePlace(int i) const;

    // Scratch space of the passes, kept for the next one.
    Block block = {};
    /// The palette as of the last pass, as colours and as what OpenGL is told of them.
    QVector<QColor> paletteColors;
    QVector<ColorComponents> paletteComponents;
    /// The palette entry of each point of the last pass.
    QVector<int> entries;
    /// The colours as the last pass left them: shares the storage of `colors`, which leaves it when it is written to.
    QVector<QColor> colorsOfPass;
};

/// The program's engine, constructed before main.
extern Pendrix3D pdx3;
