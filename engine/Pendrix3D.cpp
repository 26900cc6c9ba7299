#include "engine/Pendrix3D.h"

#include "color/ColorScale.h"
#include "engine/DampedSine.h"
#include "engine/PaletteEntry.h"
#include "engine/Sequence.h"
#include "numerics/FloatModel.h"
#include "numerics/Truncate.h"

#include <qopengl.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <limits>
#include <new>

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

/// The time of the point after the one at `t`.
float timeAfter(float t)
{
    return static_cast<float>(static_cast<double>(t) + 0.02);
}

// The bytes of a packed colour 0x00RRGGBB.

std::size_t redOf(unsigned int color)
{
    return (color >> 16U) & 255U;
}

std::size_t greenOf(unsigned int color)
{
    return (color >> 8U) & 255U;
}

std::size_t blueOf(unsigned int color)
{
    return color & 255U;
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

    for (int byte = 0; byte < 256; ++byte)
        byteComponents[byte] = componentsOf(QColor(byte, byte, byte)).red;

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

Pendrix3D::ColorComponents Pendrix3D::componentsOf(const QColor &color)
{
    return {static_cast<float>(color.redF()), static_cast<float>(color.greenF()), static_cast<float>(color.blueF()),
            static_cast<float>(color.alphaF())};
}

void Pendrix3D::draw()
{
    // Whoever changed a list since the last pass gets a shorter strip, never a read past its end.
    const int count = std::min({nPoints, points.size(), colors.size()});
    // The colours share their storage with those of the pass until somebody writes to them.
    const bool colorsAreOfPass = colors.constData() == colorsOfPass.constData();
    const CurvePoint *const point = points.constData();
    const QColor *const color = colors.constData();
    const int *const entry = entries.constData();
    const ColorComponents *const paletteComponent = paletteComponents.constData();

    glBegin(GL_LINE_STRIP);
    for (int i = 0; i < count; ++i) {
        const ColorComponents parts = colorsAreOfPass ? paletteComponent[entry[i]] : componentsOf(color[i]);
        glVertex3f(point[i].x, point[i].y, point[i].z);
        glColor4f(parts.red, parts.green, parts.blue, parts.alpha);
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

// One point, as it is defined. A pass computes the same by blocks of points.
void Pendrix3D::calcSegment(int i)
{
    t = timeAfter(t);
    amplitude = amplitude - step;
    x = dampedSine(freq2 * t, amplitude);
    y = dampedSine(phase1 * twoPi + freq1 * t, amplitude);
    z = dampedSine(phase2 * twoPi + freq3 * t, amplitude);
    setColor(entryAt(palettePlace(i), paletteSize) % paletteSize);
}

void Pendrix3D::setColor(int entry)
{
    const unsigned int color = palette[entry];
    red = static_cast<int>(redOf(color));
    green = static_cast<int>(greenOf(color));
    blue = static_cast<int>(blueOf(color));
    alpha = 1;
}

/// The place on the palette of point `i`, which has just been computed. calcColors has the same for a block.
float Pendrix3D::palettePlace(int i) const
{
    switch (colorMode) {
    case 0:
        return placeAlongCurve(i, nPoints);
    case 1:
        return placeByHeight(z, total);
    case 2:
        return placeByRadius(x, y, z, radiusScale);
    case 3:
        return placeByTime(t, twoPi);
    case 4:
        return placeByTime(t, twoPi * 0.125F);
    default:
        return placeOfOtherModes;
    }
}

void Pendrix3D::calcCoords()
{
    setParams();
    amplitude = total;
    t = 0.0F;
    nPoints = truncatedOr(static_cast<double>(total / step), 0);

    preparePalette();
    const int count = std::max(nPoints, 0);
    colorsOfPass = {};    // so that nobody shares the colours, which would be copied
    points.resize(count); // keeps the storage, as the next ones do
    colors.resize(count);
    entries.resize(count);
    for (int first = 0; first < count; first += blockLength)
        calcBlock(first, std::min(count - first, blockLength));
    colorsOfPass = colors;
}

void Pendrix3D::preparePalette()
{
    paletteColors.resize(paletteSize);
    paletteComponents.resize(paletteSize);
    for (int i = 0; i < paletteSize; ++i) {
        const unsigned int color = palette[i];
        paletteColors[i] = QColor(color);
        paletteComponents[i] = {byteComponents[redOf(color)], byteComponents[greenOf(color)],
                                byteComponents[blueOf(color)], 1.0F};
    }
}

// The steps of calcSegment, each for all points of the block before the next step: loops that become vector
// instructions.
void Pendrix3D::calcBlock(int first, int count)
{
    calcPoints(first, count);
    calcColors(first, count);
    x = block.x[count - 1];
    y = block.y[count - 1];
    z = block.z[count - 1];
    setColor(entries.at(first + count - 1));
}

void Pendrix3D::calcPoints(int first, int count)
{
    t = fillSequence(t, block.times, count, timeAfter);
    amplitude = fillSequence(amplitude, block.amplitudes, count, [this](float a) { return a - step; });

    for (int j = 0; j < count; ++j)
        block.angles[j] = freq2 * block.times[j];
    dampedSines(block.angles, block.amplitudes, block.x, count);
    for (int j = 0; j < count; ++j)
        block.angles[j] = phase1 * twoPi + freq1 * block.times[j];
    dampedSines(block.angles, block.amplitudes, block.y, count);
    for (int j = 0; j < count; ++j)
        block.angles[j] = phase2 * twoPi + freq3 * block.times[j];
    dampedSines(block.angles, block.amplitudes, block.z, count);

    CurvePoint *const point = points.data() + first;
    for (int j = 0; j < count; ++j)
        point[j] = {block.x[j], block.y[j], block.z[j]};
}

void Pendrix3D::calcColors(int first, int count)
{
    float *const places = block.places;
    switch (colorMode) {
    case 0:
        for (int j = 0; j < count; ++j)
            places[j] = placeAlongCurve(first + j, nPoints);
        break;
    case 1:
        for (int j = 0; j < count; ++j)
            places[j] = placeByHeight(block.z[j], total);
        break;
    case 2:
        for (int j = 0; j < count; ++j)
            places[j] = placeByRadius(block.x[j], block.y[j], block.z[j], radiusScale);
        break;
    case 3:
        for (int j = 0; j < count; ++j)
            places[j] = placeByTime(block.times[j], twoPi);
        break;
    case 4:
        for (int j = 0; j < count; ++j)
            places[j] = placeByTime(block.times[j], twoPi * 0.125F);
        break;
    default:
        std::fill_n(places, count, placeOfOtherModes);
    }
    int *const entry = entries.data() + first;
    int highest = 0;
    for (int j = 0; j < count; ++j) {
        entry[j] = entryAt(places[j], paletteSize);
        highest = std::max(highest, entry[j]);
    }
    if (highest >= paletteSize) { // divisions cost more than all the rest here
        for (int j = 0; j < count; ++j)
            entry[j] %= paletteSize;
    }

    QColor *const color = colors.data() + first;
    const QColor *const paletteColor = paletteColors.constData();
    for (int j = 0; j < count; ++j)
        new (color + j) QColor(paletteColor[entry[j]]); // an assignment would be a call
}
