#include "engine/Pendrix3D.h"

#include "color/ColorScale.h"
#include "color/FloatModel.h"
#include "color/Truncate.h"

#include <qopengl.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <limits>

namespace {

constexpr int presetCount = 12;

// The tiny phase2 is not a rounded zero: it is stored, copied and shown as it stands.
constexpr float tiny = 1.5e-8F;

// clang-format off
constexpr float presetTable[presetCount][Pendrix3D::rowLength] = {
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

/// `frequency` moved on by `step`, added in double and rounded to float.
float drifted(float frequency, double step)
{
    return static_cast<float>(static_cast<double>(frequency) + step);
}

/// The oscillator's displacement: the sine of the float `angle`, damped, in double and rounded to float.
float displacement(float angle, float amplitude)
{
    return static_cast<float>(std::sin(static_cast<double>(angle)) * static_cast<double>(amplitude));
}

/// `position` without its whole turns of the palette, in [0, 1) for a position that is not negative.
float wrapped(float position)
{
    return static_cast<float>(std::fmod(static_cast<double>(position), 1.0));
}

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
    for (const auto &preset : presetTable)
        presets.append(QVector<float>(std::begin(preset), std::end(preset)));

    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    set(0);

    resetParamList();
}

void Pendrix3D::set(int n)
{
    setIndex = n % presetCount;
    set(presets.value(setIndex));
}

// By value as the interface has it: a caller may hand over a row of the list that it is about to change.
void Pendrix3D::set(QVector<float> row) // NOLINT(performance-unnecessary-value-param)
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
    row.append(static_cast<float>(std::rand() % 5));
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
    for (const QVector<float> &preset : qAsConst(presets))
        paramList.append(preset);
    while (paramList.size() < rowCount)
        paramList.append(blankRow);
}

QStringList Pendrix3D::preset2StringList()
{
    QStringList lines;
    lines.reserve(presets.size());
    for (const QVector<float> &preset : qAsConst(presets)) {
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

void Pendrix3D::draw()
{
    // Whoever changed a list since the last pass gets a shorter strip, never a read past its end.
    const int count = std::min({nPoints, points.size(), colors.size()});

    glBegin(GL_LINE_STRIP);
    for (int i = 0; i < count; ++i) {
        const CurvePoint &point = points.at(i);
        const QColor &color = colors.at(i);
        glVertex3f(point.x, point.y, point.z);
        glColor4f(static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
                  static_cast<float>(color.blueF()), static_cast<float>(color.alphaF()));
    }
    glEnd();
}

void Pendrix3D::next()
{
    next(0.0004, 0.0004);
}

void Pendrix3D::next(double dFreq1, double dFreq3)
{
    freq1 = drifted(freq1, dFreq1);
    freq3 = drifted(freq3, dFreq3);
    calcCoords();
}

void Pendrix3D::calcCoords()
{
    setParams();
    amplitude = total;
    t = 0.0F;
    nPoints = truncatedOr(static_cast<double>(total / step), 0);

    points.clear(); // keeps the storage
    colors.clear();
    points.reserve(std::max(nPoints, 0));
    colors.reserve(std::max(nPoints, 0));
    for (int i = 0; i < nPoints; ++i) {
        calcSegment(i);
        points.append({x, y, z});
        colors.append(QColor(static_cast<QRgb>(alpha) << 24U | static_cast<QRgb>(red) << 16U |
                             static_cast<QRgb>(green) << 8U | static_cast<QRgb>(blue)));
    }
}

void Pendrix3D::calcSegment(int i)
{
    t = static_cast<float>(static_cast<double>(t) + 0.02);
    amplitude = amplitude - step;
    x = displacement(freq2 * t, amplitude);
    y = displacement(phase1 * twoPi + freq1 * t, amplitude);
    z = displacement(phase2 * twoPi + freq3 * t, amplitude);

    // A position of 1 or more goes round the palette again. One that is not finite, does not fit an int or is negative
    // has no place on it and takes entry 0.
    const float entry = static_cast<float>(paletteSize) * palettePosition(i);
    const int index = truncatedOr(static_cast<double>(entry), 0) % paletteSize;
    const unsigned int color = palette[std::max(index, 0)];
    red = static_cast<int>((color >> 16U) & 255U);
    green = static_cast<int>((color >> 8U) & 255U);
    blue = static_cast<int>(color & 255U);
    alpha = 1;
}

/// The place on the palette, in palette lengths, of point `i`, which has just been computed.
float Pendrix3D::palettePosition(int i) const
{
    switch (colorMode) {
    case 0:
        return static_cast<float>(i) / static_cast<float>(nPoints);
    case 1:
        return wrapped(z / (total + total) + 0.5F);
    case 2:
        return std::sqrt(x * x + y * y + z * z) / radiusScale * 1.5F;
    case 3:
        return wrapped(t / twoPi);
    case 4:
        return wrapped(t / (twoPi * 0.125F));
    default:
        return 1.0F;
    }
}
