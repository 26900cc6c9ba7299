// Prints a digest of the results of the engine and the colour functions for each of several lists of inputs. If two
// builds print the same digests, their results are equal bit for bit, except for the bits of NaNs.

#include "color/ColorScale.h"
#include "engine/Pendrix3D.h"

#include "tests/support/FloatBits.h"
#include "tests/support/RandomRows.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>

namespace {

/// A 64-bit digest of a sequence of numbers. Each step is a bijection, so a single different number always changes it.
class Digest
{
public:
    explicit Digest(const char *name) : listName(name) {}

    void add(quint32 bits)
    {
        state = (state ^ bits) * 0x9E3779B97F4A7C15U; // an odd factor
        state ^= state >> 32U;
        ++count;
    }

    /// Adds the bits of `value`. All NaNs are equal.
    void add(float value) { add(std::isnan(value) ? 0x7FC00000U : bitsOf(value)); }

    void add(double value)
    {
        const quint64 bits = std::isnan(value) ? 0x7FF8000000000000U : bitsOf(value);
        add(static_cast<quint32>(bits));
        add(static_cast<quint32>(bits >> 32U));
    }

    /// Adds the engine's curve and the fields that a pass sets.
    void addCurve()
    {
        for (int i = 0; i < Pendrix3D::rowLength; ++i)
            add(pdx3.getParams()[i]);
        add(static_cast<quint32>(pdx3.nPoints));
        for (const CurvePoint &point : std::as_const(pdx3.points)) {
            add(point.x);
            add(point.y);
            add(point.z);
        }
        for (const QColor &color : std::as_const(pdx3.colors))
            add(color.rgba());
        for (const float value : {pdx3.t, pdx3.amplitude, pdx3.x, pdx3.y, pdx3.z})
            add(value);
        for (const int value : {pdx3.red, pdx3.green, pdx3.blue, pdx3.alpha})
            add(static_cast<quint32>(value));
    }

    /// Prints the digest, the count and the name of the list. Returns whether printing succeeded.
    bool print() const
    {
        return std::printf("%016llx %10lld %s\n", static_cast<unsigned long long>(state), count, listName) > 0;
    }

private:
    const char *listName;
    quint64 state = 0;
    long long count = 0;
};

bool presetsInEveryMode()
{
    Digest digest("the presets, in every mode");
    for (int preset = 0; preset < 12; ++preset) {
        const QVector<float> row = pdx3.presets.at(preset);
        for (int mode = -1; mode <= Pendrix3D::colorModeCount; ++mode) {
            pdx3.set(row[0], row[1], row[2], row[3], row[4], mode);
            digest.addCurve();
        }
        pdx3.set(preset);
        digest.addCurve();
    }
    return digest.print();
}

bool randomRows()
{
    Digest digest("5000 rows of random bits");
    std::mt19937 random(5000); // specified by the C++ standard
    for (int number = 0; number < 5000; ++number) {
        setRandomSettings(random, number);
        pdx3.set(randomRow(random, number));
        digest.addCurve();
        pdx3.next();
        digest.addCurve();
    }
    setDefaultSettings();
    return digest.print();
}

bool paletteAndBlends()
{
    Digest digest("the palette and 200000 blends of each kind");
    for (int i = 0; i < pdx3.paletteSize; ++i)
        digest.add(pdx3.palette[i]);
    std::mt19937 random(200000);
    const auto anyColor = [&random] { return static_cast<quint32>(random()); };
    // Fractions of -1/2 to 3/2, and floats of any bits.
    const auto anyFraction = [&random](int k) {
        return k % 4 ? static_cast<float>(double(random()) * 0x1p-31 - 0.5) : anyFloat(random);
    };
    for (int k = 0; k < 200000; ++k) {
        const std::array<quint32, 3> c = {anyColor(), anyColor(), anyColor()};
        const std::array<float, 3> w = {anyFraction(k), anyFraction(k), anyFraction(k)};
        digest.add(ColorScaleRGB(c[0], c[1], w[0]));
        digest.add(ColorScaleHSL(c[0], c[1], w[0]));
        digest.add(ColorScaleRGB3(c[0], c[1], c[2], w[0], w[1], w[2]));
        digest.add(ColorScaleHSL3(c[0], c[1], c[2], w[0], w[1], w[2]));
        digest.add(HLStoRGB(double(w[0]), double(w[1]), double(w[2])));
        std::array<double, 3> hls = {};
        RGBtoHLS(c[0], hls[0], hls[1], hls[2]);
        for (const double value : hls)
            digest.add(value);
    }
    return digest.print();
}

} // namespace

int main()
{
    const bool isPrinted = presetsInEveryMode() && randomRows() && paletteAndBlends();
    return isPrinted ? EXIT_SUCCESS : EXIT_FAILURE;
}
