// CSV, PLY and GLB compared with the engine, bit for bit.

#include "engine/Pendrix3D.h"
#include "export/Writers.h"
#include "tests/support/FloatBits.h"
#include "tests/support/RandomRows.h"
#include "tests/support/SampleSize.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>

namespace {

/// Reads a text from its start.
class Reader
{
public:
    explicit Reader(const QByteArray &text) : at(text.constData()) {}

    bool atEnd() const { return *at == '\0'; }

    bool skip(const char *expected)
    {
        const std::size_t length = std::strlen(expected);
        const bool found = std::strncmp(at, expected, length) == 0;
        at += found ? length : 0;
        return found;
    }

    /// Reads a number. Returns whether it has at most nine significant digits and the bits of `expected`.
    bool skipFloat(float expected)
    {
        const char *const start = at;
        char *end = nullptr;
        const float read = std::strtof(start, &end);
        at = end;
        int digits = 0;
        for (const char *c = start; c < end && *c != 'e'; ++c)
            digits += *c >= '0' && *c <= '9' && (*c != '0' || digits > 0) ? 1 : 0;
        return bitsOf(read) == bitsOf(expected) && digits <= 9 && *start != ' ';
    }

    bool skipInt(int expected)
    {
        const char *const start = at;
        char *end = nullptr;
        const long read = std::strtol(start, &end, 10);
        at = end;
        return read == expected && *start != ' ' && end > start;
    }

    /// Reads a vertex. Returns whether it has the coordinates of the engine's point `i` and the colour in a view.
    bool skipVertex(int i, const char *separator)
    {
        const CurvePoint &point = pdx3.points.at(i);
        const QColor &color = pdx3.colors.at(i > 0 ? i - 1 : 0);
        return skipFloat(point.x) && skip(separator) && skipFloat(point.y) && skip(separator) && skipFloat(point.z) &&
               skip(separator) && skipInt(color.red()) && skip(separator) && skipInt(color.green()) &&
               skip(separator) && skipInt(color.blue()) && skip("\n");
    }

private:
    const char *at;
};

/// Returns the position of the first difference of `csv` from the engine's curve, empty if there is none.
QByteArray csvDifference(const QByteArray &csv)
{
    Reader reader(csv);
    if (!reader.skip("t,x,y,z,red,green,blue\n"))
        return "titles";
    float t = 0.0F;
    for (int i = 0; i < 16666; ++i) {
        t = static_cast<float>(static_cast<double>(t) + 0.02);
        if (!reader.skipFloat(t) || !reader.skip(",") || !reader.skipVertex(i, ","))
            return "CSV vertex " + QByteArray::number(i);
    }
    return reader.atEnd() ? "" : "end of the CSV";
}

/// Returns the position of the first difference of `ply` from the engine's curve, empty if there is none.
QByteArray plyDifference(const QByteArray &ply)
{
    Reader reader(ply);
    if (!reader.skip("ply\nformat ascii 1.0\nelement vertex 16666\n"
                     "property float x\nproperty float y\nproperty float z\n"
                     "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                     "element edge 16665\nproperty int vertex1\nproperty int vertex2\n"
                     "property uchar red\nproperty uchar green\nproperty uchar blue\nend_header\n"))
        return "header";
    for (int i = 0; i < 16666; ++i) {
        if (!reader.skipVertex(i, " "))
            return "PLY vertex " + QByteArray::number(i);
    }
    for (int i = 0; i < 16665; ++i) {
        const QColor &color = pdx3.colors.at(i);
        if (!reader.skipInt(i) || !reader.skip(" ") || !reader.skipInt(i + 1) || !reader.skip(" ") ||
            !reader.skipInt(color.red()) || !reader.skip(" ") || !reader.skipInt(color.green()) || !reader.skip(" ") ||
            !reader.skipInt(color.blue()) || !reader.skip("\n"))
            return "PLY edge " + QByteArray::number(i);
    }
    return reader.atEnd() ? "" : "end of the PLY";
}

/// Returns the number that glTF stores at `offset` of `bytes`.
template <typename Number>
Number numberAt(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<Number>(bytes.constData() + offset);
}

/// Returns the first difference of `glb` from the engine's curve, empty if there is none.
QByteArray glbDifference(const QByteArray &glb)
{
    constexpr int count = 16666;
    const int jsonSize = numberAt<int>(glb, 12);
    if (glb.left(4) != "glTF" || numberAt<int>(glb, 4) != 2 || numberAt<int>(glb, 8) != glb.size() ||
        glb.mid(16, 4) != "JSON" || jsonSize % 4 != 0)
        return "header";
    const int binary = 20 + jsonSize;
    if (numberAt<int>(glb, binary) != 24 * count || glb.mid(binary + 4, 4) != QByteArray("BIN\0", 4) ||
        glb.size() != binary + 8 + 24 * count)
        return "binary chunk";
    const QJsonObject file = QJsonDocument::fromJson(glb.mid(20, jsonSize)).object();
    const QJsonArray accessors = file.value("accessors").toArray();
    const QJsonObject primitive =
        file.value("meshes").toArray().at(0).toObject().value("primitives").toArray().at(0).toObject();
    if (primitive.value("mode").toInt() != 3 ||
        primitive.value("attributes").toObject().value("POSITION").toInt() != 0 ||
        primitive.value("attributes").toObject().value("COLOR_0").toInt() != 1)
        return "primitive";
    float lowest[3] = {2.0F, 2.0F, 2.0F};
    float highest[3] = {-2.0F, -2.0F, -2.0F};
    for (int i = 0; i < count; ++i) {
        const CurvePoint &point = pdx3.points.at(i);
        const QColor &color = pdx3.colors.at(i > 0 ? i - 1 : 0);
        const float position[3] = {point.x, point.y, point.z};
        const int channels[3] = {color.red(), color.green(), color.blue()};
        for (int axis = 0; axis < 3; ++axis) {
            const int offset = binary + 8 + 12 * i + 4 * axis;
            lowest[axis] = std::min(lowest[axis], position[axis]);
            highest[axis] = std::max(highest[axis], position[axis]);
            // The inverse of the conversion: a linear intensity as sRGB.
            const auto intensity = double(numberAt<float>(glb, offset + 12 * count));
            const double channel =
                intensity <= 0.0031308 ? 12.92 * intensity : 1.055 * std::pow(intensity, 1.0 / 2.4) - 0.055;
            if (bitsOf(numberAt<float>(glb, offset)) != bitsOf(position[axis]) ||
                std::abs(channel * 255.0 - channels[axis]) > 0.01)
                return "GLB vertex " + QByteArray::number(i);
        }
    }
    for (int axis = 0; axis < 3; ++axis) {
        const QJsonObject positions = accessors.at(0).toObject();
        if (positions.value("min").toArray().at(axis).toDouble() != double(lowest[axis]) ||
            positions.value("max").toArray().at(axis).toDouble() != double(highest[axis]))
            return "bounds";
    }
    return "";
}

/// Advances the engine by `frames` frames of `row`. To save time, only the last curve has more than one point and
/// colour.
void showFrames(const QVector<float> &row, int frames)
{
    pdx3.step = 1.0F;
    pdx3.paletteSize = 1;
    pdx3.set(row);
    for (int frame = 1; frame < frames; ++frame)
        pdx3.next();
    setDefaultSettings();
    pdx3.paletteSize = 512;
    if (frames > 0)
        pdx3.next();
    else
        pdx3.set(row);
}

} // namespace

class TableWritersTest : public QObject
{
    Q_OBJECT

    /// Verifies both formats for frame `frame` of `row`.
    static void verify(const QVector<float> &row, int frame)
    {
        QVector<float> advanced = row;
        advance(advanced, frame);
        const Curve curve = curveOf(advanced);
        showFrames(row, frame);
        const QByteArray inCsv = csvDifference(csvOf(curve));
        QVERIFY2(inCsv.isEmpty(), inCsv);
        const QByteArray inPly = plyDifference(plyOf(curve));
        QVERIFY2(inPly.isEmpty(), inPly);
        const QByteArray inGlb = glbDifference(glbOf(curve));
        QVERIFY2(inGlb.isEmpty(), inGlb);
    }

private slots:
    void presetsEqualEngine_data()
    {
        QTest::addColumn<int>("preset");
        QTest::addColumn<int>("frame");
        for (int preset = 0; preset < 12; preset += sampleSize(3, 1)) {
            for (const int frame : {0, 1, 100, 100000})
                QTest::addRow("preset %d, frame %d", preset + 1, frame) << preset << frame;
        }
    }

    void presetsEqualEngine()
    {
        QFETCH(int, preset);
        QFETCH(int, frame);
        verify(pdx3.presets.at(preset), frame);
    }

    void modesEqualEngine()
    {
        QVector<float> row = pdx3.presets.at(4);
        for (const float mode : {0.0F, 1.0F, 2.9F, 3.0F, 4.0F, 5.0F, -0.5F, -1.0F, 1e38F}) {
            row[5] = mode;
            verify(row, 7);
        }
    }

    void randomRowsEqualEngine()
    {
        std::mt19937 random(1);
        int finiteRows = 0;
        for (int number = 0; finiteRows < sampleSize(5, 1000); ++number) {
            const QVector<float> row = randomRow(random, number);
            if (firstNonFinite(curveOf(row)) >= 0)
                continue;
            ++finiteRows;
            verify(row, 0);
        }
    }

    void negativeZeroKeepsItsSign()
    {
        verify({-0.0F, -0.0F, 0.0F, -0.0F, -0.0F, 0.0F}, 0);
        QVERIFY(csvOf(curveOf({-1e-45F, -1e-45F, 0.0F, 0.0F, 0.0F, 0.0F})).contains("-0,"));
    }

    void findsFirstNonFiniteVertex()
    {
        QCOMPARE(firstNonFinite(curveOf({1.0F, 2.0F, 3.0F, 0.0F, 0.0F, 0.0F})), -1);
        // freq2 * t exceeds the range of a float from t = 1.9 on.
        QCOMPARE(firstNonFinite(curveOf({1.0F, 1.8e38F, 3.0F, 0.0F, 0.0F, 0.0F})), 94);
        for (const int column : {0, 2, 3, 4}) {
            QVector<float> row(6, 1.0F);
            row[column] = 3e38F;
            QVERIFY(firstNonFinite(curveOf(row)) >= 0);
        }
    }
};

QTEST_APPLESS_MAIN(TableWritersTest)
#include "TableWritersTest.moc"
