#include "tests/support/ReferenceCurve.h"

#include "engine/Pendrix3D.h"

#include "tests/support/FloatBits.h"

#include <cmath>

namespace {

float rounded(double value)
{
    return static_cast<float>(value);
}

float fraction(float value)
{
    return rounded(std::fmod(double(value), 1.0));
}

/// Compares the engine's fields for the last computed point.
QByteArray fieldDifference(const ReferencePoint &point)
{
    if (!sameFloat(pdx3.t, point.time) || !sameFloat(pdx3.amplitude, point.amplitude))
        return "time or amplitude";
    if (!sameFloat(pdx3.x, point.at[0]) || !sameFloat(pdx3.y, point.at[1]) || !sameFloat(pdx3.z, point.at[2]))
        return "position";
    const auto packed = static_cast<unsigned int>((pdx3.red * 256 + pdx3.green) * 256 + pdx3.blue);
    return packed == point.color && pdx3.alpha == 1 ? QByteArray() : QByteArray("colour");
}

} // namespace

ReferenceCurve ReferenceCurve::current()
{
    return {pdx3.freq2,
            pdx3.freq1,
            pdx3.freq3,
            pdx3.phase1,
            pdx3.phase2,
            pdx3.colorMode,
            pdx3.total,
            pdx3.step,
            pdx3.radiusScale,
            pdx3.twoPi,
            {pdx3.palette, pdx3.palette + pdx3.paletteSize}};
}

std::size_t ReferenceCurve::size() const
{
    volatile float quotient = total / step; // 10, not 9, for 1 by 0.1: rounded to float
    const double count = std::trunc(double(quotient));
    return count >= 1.0 && count < 2147483648.0 ? static_cast<std::size_t>(count) : 0;
}

std::vector<ReferencePoint> ReferenceCurve::points() const
{
    std::vector<ReferencePoint> samples(size());
    const float startY = phaseY * turn;
    const float startZ = phaseZ * turn;
    ReferencePoint sample;
    sample.amplitude = total;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        sample.time = rounded(double(sample.time) + 0.02);
        sample.amplitude = sample.amplitude - step;
        const float turnedY = freqY * sample.time;
        const float turnedZ = freqZ * sample.time;
        const std::array<float, 3> angles = {freqX * sample.time, startY + turnedY, startZ + turnedZ};
        for (std::size_t axis = 0; axis < 3; ++axis)
            sample.at[axis] = rounded(std::sin(double(angles[axis])) * double(sample.amplitude));

        float position = 1.0F;
        if (mode == 0) {
            position = float(i) / float(samples.size());
        } else if (mode == 1) {
            const float height = sample.at[2] / (total * 2.0F);
            position = fraction(height + 0.5F);
        } else if (mode == 2) {
            const float xx = sample.at[0] * sample.at[0];
            const float yy = sample.at[1] * sample.at[1];
            const float zz = sample.at[2] * sample.at[2];
            const float square = (xx + yy) + zz;
            // The double square root of a float, rounded to float, equals the float square root.
            const float radius = rounded(std::sqrt(double(square)));
            position = (radius / radiusScale) * 1.5F;
        } else if (mode == 3) {
            position = fraction(sample.time / turn);
        } else if (mode == 4) {
            position = fraction(sample.time / (turn / 8.0F));
        }

        const auto paletteLength = static_cast<double>(palette.size());
        const float scaled = float(paletteLength) * position;
        const double whole = std::trunc(double(scaled));
        const bool fitsInt = whole >= 0.0 && whole < 2147483648.0;
        const double index = fitsInt ? std::fmod(whole, paletteLength) : 0.0;
        sample.color = palette[static_cast<std::size_t>(index)] % 0x1000000U;
        samples[i] = sample;
    }
    return samples;
}

QByteArray ReferenceCurve::difference() const
{
    const std::vector<ReferencePoint> samples = points();
    const int count = static_cast<int>(samples.size());
    if (pdx3.points.size() != count || pdx3.colors.size() != count)
        return QByteArray::number(pdx3.points.size()) + " points instead of " + QByteArray::number(count);
    for (int i = 0; i < count; ++i) {
        const ReferencePoint &sample = samples[static_cast<std::size_t>(i)];
        const CurvePoint &point = pdx3.points.at(i);
        if (!sameFloat(point.x, sample.at[0]) || !sameFloat(point.y, sample.at[1]) || !sameFloat(point.z, sample.at[2]))
            return "position of point " + QByteArray::number(i);
        if (pdx3.colors.at(i) != QColor(0xFF000000U | sample.color))
            return "colour of point " + QByteArray::number(i);
    }
    const QByteArray different = count > 0 ? fieldDifference(samples.back()) : QByteArray();
    return different.isEmpty() ? different : different + " after the pass";
}

QByteArray ReferenceCurve::segmentDifference() const
{
    const std::vector<ReferencePoint> samples = points();
    pdx3.t = 0.0F;
    pdx3.amplitude = pdx3.total;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        pdx3.calcSegment(static_cast<int>(i));
        const QByteArray different = fieldDifference(samples[i]);
        if (!different.isEmpty())
            return different + " of segment " + QByteArray::number(static_cast<int>(i));
    }
    return {};
}
