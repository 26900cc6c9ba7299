#include "engine/Pendrix3D.h"

#include "color/ColorScale.h"
#include "engine/Advance.h"
#include "engine/DampedSine.h"
#include "engine/PaletteIndex.h"
#include "engine/Recurrence.h"
#include "numerics/FloatModel.h"
#include "numerics/Truncate.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <limits>
#include <new>
#include <utility>

namespace {

// Not a rounded zero: stored, copied and shown with this value.
constexpr float tiny = 1.5e-8F;

// clang-format off
constexpr float presetTable[Pendrix3D::presetCount][Pendrix3D::rowLength] = {
    // freq1  freq2   freq3  phase1  phase2  color
    {   1.0F,  2.0F,   3.0F,  0.46F,   tiny,  1.0F},
    {   2.0F,  3.0F,   4.0F,  0.25F,   0.0F,  2.0F},
    {   1.0F,  3.0F,   1.0F,  0.25F,   tiny,  4.0F},
    {   2.0F,  1.0F,   3.0F,  0.37F,   0.0F,  2.0F},
    {   2.0F,  2.0F,  11.0F,  0.25F,   tiny,  2.0F},
    {   1.0F,  1.0F,  1.01F,  0.25F,  0.29F,  0.0F},
    {   4.0F,  4.0F,  22.0F,  0.25F,   0.0F,  4.0F},
    {   1.0F,  1.0F,   4.0F,  0.43F,   tiny,  3.0F},
    {   1.0F,  2.0F,   0.0F,   0.1F,   0.3F,  2.0F},
    {   6.0F,  3.0F,   2.0F,  0.21F,   0.3F,  0.0F},
    {   1.0F,  2.0F,  -1.0F,   0.1F,   0.3F,  2.0F},
    {   6.0F, -3.0F,   2.0F,  0.21F,   0.3F,  0.0F},
};
// clang-format on

} // namespace

Pendrix3D pdx3;

Pendrix3D::Pendrix3D()
    : blankRow(rowLength, 0.0F), header{QStringLiteral("freq1"),  QStringLiteral("freq2"),  QStringLiteral("freq3"),
                                        QStringLiteral("phase1"), QStringLiteral("phase2"), QStringLiteral("color")}
{
    palette = new unsigned int[static_cast<std::size_t>(paletteSize)];
    for (int i = 0; i < paletteSize; ++i)
        palette[i] = ColorScaleHSL(0x0000FF, 0xFF0000, static_cast<float>(i) * 0.001953125F); // i / 512

    presets.reserve(presetCount);
    for (const auto &preset : presetTable) {
        QVector<float> row(rowLength);
        std::copy(std::begin(preset), std::end(preset), row.begin());
        presets.append(row);
    }

    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    set(0);

    resetParamList();
}

void Pendrix3D::set(int n)
{
    setIndex = n % presetCount;
    if (setIndex >= 0)
        set(presets.at(setIndex));
}

void Pendrix3D::set(QVector<float> row) // by value: part of the interface. NOLINT(performance-unnecessary-value-param)
{
    if (row.size() < rowLength)
        return;
    const int mode = truncatedOr(static_cast<double>(row.at(5)), std::numeric_limits<int>::min());
    set(row.at(0), row.at(1), row.at(2), row.at(3), row.at(4), mode);
}

void Pendrix3D::set(float f1, float f2, float f3, float p1, float p2, int c)
{
    freq1 = f1;
    freq2 = f2;
    freq3 = f3;
    phase1 = p1;
    phase2 = p2;
    colorMode = c;
    calcCoords();
}

void Pendrix3D::setRandom()
{
    QVector<float> row;
    row.reserve(rowLength);
    while (row.size() < rowLength - 1)
        row.append(static_cast<float>(std::rand() % 100));
    row.append(static_cast<float>(std::rand() % colorModeCount));
    set(row);
}

void Pendrix3D::nextSet()
{
    setIndex += 1;
    set(setIndex);
}

void Pendrix3D::resetParamList()
{
    paramList.clear(); // keeps the storage
    for (const QVector<float> &preset : std::as_const(presets))
        paramList.append(preset);
    while (paramList.size() < rowCount)
        paramList.append(blankRow);
}

QStringList Pendrix3D::preset2StringList()
{
    QStringList lines;
    lines.reserve(presets.size());
    for (const QVector<float> &preset : std::as_const(presets)) {
        QString line;
        for (const float value : preset)
            line += QStringLiteral("%1, ").arg(static_cast<double>(value), 0, 'g', -1);
        lines.append(line.left(line.length() - 2));
    }
    return lines;
}

float *Pendrix3D::getParams()
{
    return params;
}

void Pendrix3D::setParams()
{
    params[0] = freq1;
    params[1] = freq2;
    params[2] = freq3;
    params[3] = phase1;
    params[4] = phase2;
    params[5] = static_cast<float>(colorMode);
}

void Pendrix3D::next()
{
    next(driftPerFrame, driftPerFrame);
}

void Pendrix3D::next(double dFreq1, double dFreq3)
{
    freq1 = advanced(freq1, dFreq1);
    freq3 = advanced(freq3, dFreq3);
    calcCoords();
}

void Pendrix3D::calcSegment(int i)
{
    CurvePoint point;
    int index = 0;
    calcBlock(i, 1, &point, &index);
}

void Pendrix3D::calcCoords()
{
    setParams();
    amplitude = total;
    t = 0.0F;
    nPoints = truncatedOr(static_cast<double>(total / step), 0);

    const int count = std::max(nPoints, 0);
    points.resize(count);
    colors.resize(count);
    paletteColors.resize(paletteSize);
    CurvePoint *const point = points.data();
    QColor *const color = colors.data();
    QColor *const paletteColor = paletteColors.data();
    for (int i = 0; i < paletteSize; ++i)
        new (paletteColor + i) QColor(palette[i]);
    for (int first = 0; first < count; first += blockLength) {
        const int length = std::min(count - first, blockLength);
        int indices[blockLength];
        calcBlock(first, length, point + first, indices);
        for (int j = 0; j < length; ++j)
            new (color + first + j) QColor(paletteColor[indices[j]]);
    }
}

// A structure of arrays, with one loop per step of the computation, so that the compiler vectorises the loops.
void Pendrix3D::calcBlock(int first, int count, CurvePoint *point, int *indices)
{
    float times[blockLength];
    float amplitudes[blockLength] = {};
    t = fillRecurrence(t, times, count, [](float time) { return advanced(time, timeStep); });
    amplitude = fillRecurrence(amplitude, amplitudes, count, [this](float a) { return a - step; });

    float angles[blockLength] = {};
    const auto oscillate = [&](float phase, float frequency, float *displacements) {
        for (int j = 0; j < count; ++j)
            angles[j] = phase + frequency * times[j];
        dampedSines(angles, amplitudes, displacements, count);
    };
    float xs[blockLength];
    float ys[blockLength];
    float zs[blockLength];
    oscillate(-0.0F, freq2, xs); // no phase: adding -0 changes no float, adding 0 would change -0
    oscillate(phase1 * twoPi, freq1, ys);
    oscillate(phase2 * twoPi, freq3, zs);

    float positions[blockLength]; // in palette lengths, see PaletteIndex.h
    switch (colorMode) {
    case 0:
        for (int j = 0; j < count; ++j)
            positions[j] = static_cast<float>(first + j) / static_cast<float>(nPoints);
        break;
    case 1:
        for (int j = 0; j < count; ++j)
            positions[j] = fractionalPart(zs[j] / (total + total) + 0.5F);
        break;
    case 2:
        for (int j = 0; j < count; ++j)
            positions[j] = std::sqrt(xs[j] * xs[j] + ys[j] * ys[j] + zs[j] * zs[j]) / radiusScale * 1.5F;
        break;
    case 3:
        for (int j = 0; j < count; ++j)
            positions[j] = fractionalPart(times[j] / twoPi);
        break;
    case 4:
        for (int j = 0; j < count; ++j)
            positions[j] = fractionalPart(times[j] / (twoPi * 0.125F));
        break;
    default:
        std::fill_n(positions, count, 1.0F);
    }

    const int size = paletteSize; // a copy, because the stores to `indices` could alias the member
    for (int j = 0; j < count; ++j)
        indices[j] = paletteIndex(positions[j], size);
    for (int j = 0; j < count; ++j)
        point[j] = {xs[j], ys[j], zs[j]};

    const int last = count - 1;
    const QRgb color = palette[indices[last]];
    x = xs[last];
    y = ys[last];
    z = zs[last];
    red = qRed(color);
    green = qGreen(color);
    blue = qBlue(color);
    alpha = 1;
}
