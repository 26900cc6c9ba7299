// The writer of binary glTF 2.0.

#include "export/Writers.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

using Bounds = std::array<float, 3>;

// Numbers that glTF defines.
constexpr quint32 magic = 0x46546C67;     // "glTF"
constexpr quint32 jsonChunk = 0x4E4F534A; // "JSON"
constexpr quint32 binaryChunk = 0x004E4942;
constexpr int componentFloat = 5126;
constexpr int arrayBuffer = 34962;
constexpr int lineStrip = 3;
constexpr int vectorSize = 12; // bytes of three floats

QByteArray number(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

void append(QByteArray &bytes, float value)
{
    char data[4];
    qToLittleEndian(value, data);
    bytes.append(data, 4);
}

QByteArray chunk(quint32 type, QByteArray content, char padding)
{
    content.append((4 - content.size() % 4) % 4, padding);
    return number(static_cast<quint32>(content.size())) + number(type) + content;
}

/// Returns the linear intensity of an sRGB channel, 0 to 255.
float linear(int channel)
{
    const double value = channel / 255.0;
    return static_cast<float>(value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
}

QJsonArray array(const Bounds &bounds)
{
    return {static_cast<double>(bounds[0]), static_cast<double>(bounds[1]), static_cast<double>(bounds[2])};
}

} // namespace

QByteArray glbOf(const Curve &curve)
{
    const int count = static_cast<int>(curve.points.size());
    QByteArray positions;
    QByteArray colors;
    Bounds lowest;
    Bounds highest;
    lowest.fill(std::numeric_limits<float>::infinity());
    highest.fill(-std::numeric_limits<float>::infinity());
    for (int i = 0; i < count; ++i) {
        const CurvePoint &p = curve.points.at(i);
        const Bounds position = {p.x, p.y, p.z};
        for (std::size_t axis = 0; axis < position.size(); ++axis) {
            append(positions, position[axis]);
            lowest[axis] = std::min(lowest[axis], position[axis]);
            highest[axis] = std::max(highest[axis], position[axis]);
        }
        const QRgb color = vertexColor(curve.colors, i);
        for (const int channel : {qRed(color), qGreen(color), qBlue(color)})
            append(colors, linear(channel));
    }

    const auto view = [count](int index) {
        return QJsonObject{{"buffer", 0},
                           {"byteOffset", index * count * vectorSize},
                           {"byteLength", count * vectorSize},
                           {"target", arrayBuffer}};
    };
    const auto accessor = [count](int index) {
        return QJsonObject{
            {"bufferView", index}, {"componentType", componentFloat}, {"count", count}, {"type", "VEC3"}};
    };
    QJsonObject positionAccessor = accessor(0);
    positionAccessor.insert("min", array(lowest));
    positionAccessor.insert("max", array(highest));
    const QJsonObject primitive{
        {"attributes", QJsonObject{{"POSITION", 0}, {"COLOR_0", 1}}}, {"material", 0}, {"mode", lineStrip}};
    const QString unlit = QStringLiteral("KHR_materials_unlit");
    const QJsonObject file{
        {"asset", QJsonObject{{"version", "2.0"}, {"generator", "pendrix3d-export " PENDRIX_VERSION}}},
        {"extensionsUsed", QJsonArray{unlit}},
        {"scene", 0},
        {"scenes", QJsonArray{QJsonObject{{"nodes", QJsonArray{0}}}}},
        // Rotated by 180 degrees about x, as in the view of the application: y points down and z away.
        {"nodes", QJsonArray{QJsonObject{{"mesh", 0}, {"name", "curve"}, {"rotation", QJsonArray{1, 0, 0, 0}}}}},
        {"meshes", QJsonArray{QJsonObject{{"primitives", QJsonArray{primitive}}}}},
        {"materials", QJsonArray{QJsonObject{{"extensions", QJsonObject{{unlit, QJsonObject()}}}}}},
        {"accessors", QJsonArray{positionAccessor, accessor(1)}},
        {"bufferViews", QJsonArray{view(0), view(1)}},
        {"buffers", QJsonArray{QJsonObject{{"byteLength", 2 * count * vectorSize}}}},
    };
    const QByteArray chunks = chunk(jsonChunk, QJsonDocument(file).toJson(QJsonDocument::Compact), ' ') +
                              chunk(binaryChunk, positions + colors, '\0');
    constexpr quint32 headerSize = 12;
    return number(magic) + number(2) + number(headerSize + static_cast<quint32>(chunks.size())) + chunks;
}
