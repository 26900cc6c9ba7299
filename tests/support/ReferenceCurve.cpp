#include "tests/support/ReferenceCurve.h"

#include "engine/Pendrix3D.h"

#include "tests/support/FloatBits.h"

#include <array>
#include <cmath>

namespace {

/// One point with its colour.
struct Sample
{
    float time = 0.0F;
    float amplitude = 0.0F;
    std::array<float, 3> at = {};
    unsigned int color = 0;
};

float rounded(double value)
{
    return static_cast<float>(value);
}

float fraction(float value)
{
    return rounded(std::fmod(double(value), 1.0));
}

/// Every sample of the curve. Each rounding to float is a statement of its own.
std::vector<Sample> trace(const ReferenceCurve &curve)
{
    const float turn = 6.28318530717958647692F;
    std::vector<Sample> samples(curve.size());
    const float startY = curve.phaseY * turn;
    const float startZ = curve.phaseZ * turn;
    Sample sample;
    sample.amplitude = curve.total;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        sample.time = rounded(double(sample.time) + 0.02);
        sample.amplitude = sample.amplitude - curve.step;
        const float angleX = curve.freqX * sample.time;
        const float turnedY = curve.freqY * sample.time;
        const float turnedZ = curve.freqZ * sample.time;
        const float angleY = startY + turnedY;
        const float angleZ = startZ + turnedZ;
        const std::array<float, 3> angles = {angleX, angleY, angleZ};
        for (std::size_t axis = 0; axis < 3; ++axis)
            sample.at[axis] = rounded(std::sin(double(angles[axis])) * double(sample.amplitude));

        float position = 1.0F;
        if (curve.mode == 0) {
            position = float(i) / float(samples.size());
        } else if (curve.mode == 1) {
            const float height = sample.at[2] / (curve.total * 2.0F);
            position = fraction(height + 0.5F);
        } else if (curve.mode == 2) {
            const float xx = sample.at[0] * sample.at[0];
            const float yy = sample.at[1] * sample.at[1];
            const float zz = sample.at[2] * sample.at[2];
            const float xxyy = xx + yy;
            const float square = xxyy + zz;
            // The square root of a double that holds a float, rounded to float, is the float's own square root.
            const float radius = rounded(std::sqrt(double(square)));
            const float scaled = radius / curve.radiusScale;
            position = scaled * 1.5F;
        } else if (curve.mode == 3) {
            position = fraction(sample.time / turn);
        } else if (curve.mode == 4) {
            position = fraction(sample.time / (turn / 8.0F));
        }

        const auto size = static_cast<double>(curve.palette.size());
        const float entry = float(size) * position;
        const double whole = std::trunc(double(entry));
        const bool onPalette = whole >= 0.0 && whole < 2147483648.0;
        const double index = onPalette ? std::fmod(whole, size) : 0.0;
        sample.color = curve.palette[static_cast<std::size_t>(index)];
        samples[i] = sample;
    }
    return samples;
}

} // namespace

ReferenceCurve ReferenceCurve::current()
{
    return {pdx3.freq2,     pdx3.freq1, pdx3.freq3, pdx3.phase1,      pdx3.phase2,
            pdx3.colorMode, pdx3.total, pdx3.step,  pdx3.radiusScale, {pdx3.palette, pdx3.palette + pdx3.paletteSize}};
}

std::size_t ReferenceCurve::size() const
{
    volatile float quotient = total / step; // 10, not 9, for 1 by 0.1: rounded to float
    const double count = std::trunc(double(quotient));
    return count >= 1.0 && count < 2147483648.0 ? static_cast<std::size_t>(count) : 0;
}

QByteArray ReferenceCurve::difference() const
{
    const std::vector<Sample> samples = trace(*this);
    const int count = static_cast<int>(samples.size());
    if (pdx3.points.size() != count || pdx3.colors.size() != count)
        return QByteArray::number(pdx3.points.size()) + " points instead of " + QByteArray::number(count);
    for (int i = 0; i < count; ++i) {
        const Sample &sample = samples[static_cast<std::size_t>(i)];
        const CurvePoint &point = pdx3.points.at(i);
        if (!sameFloat(point.x, sample.at[0]) || !sameFloat(point.y, sample.at[1]) || !sameFloat(point.z, sample.at[2]))
            return "position of point " + QByteArray::number(i);
        if (pdx3.colors.at(i) != QColor(0xFF000000U | sample.color))
            return "colour of point " + QByteArray::number(i);
    }
    if (count > 0) {
        const Sample &last = samples.back();
        if (!sameFloat(pdx3.t, last.time) || !sameFloat(pdx3.amplitude, last.amplitude))
            return "time and amplitude after the pass";
        if (!sameFloat(pdx3.x, last.at[0]) || !sameFloat(pdx3.y, last.at[1]) || !sameFloat(pdx3.z, last.at[2]))
            return "position after the pass";
        const auto packed = static_cast<unsigned int>((pdx3.red * 256 + pdx3.green) * 256 + pdx3.blue);
        if (packed != last.color || pdx3.alpha != 1)
            return "colour after the pass";
    }
    return {};
}
