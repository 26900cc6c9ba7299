// Writes the program's icon as SVG to standard output: pendrix_icon SIZE
//
// SIZE is the intended width in pixels: smaller icons have fewer and thicker turns of the curve. The drawing for 512
// can be scaled up.
//
// Shows the engine's curve of the second preset, coloured by depth and tilted. Its frequencies are whole numbers, so
// that each turn is almost closed and the drawing can leave turns out.

#include "engine/Pendrix3D.h"

#include <QColor>
#include <QString>
#include <QTextStream>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

constexpr double pi = 3.14159265358979323846;

/// Points per turn of an oscillator with frequency 1.
constexpr double pointsPerTurn = 2.0 * pi / Pendrix3D::timeStep;

/// Width and height of the drawing in its units.
constexpr double side = 512.0;

/// Style of icons of at least `size` pixels.
struct Style
{
    int size;
    int every;        ///< draws every n-th turn
    double lineWidth; ///< in units of the drawing
    double margin;    ///< from the drawing's edge to the plate
    double extent;    ///< the larger of width and height of the curve
};

constexpr Style styles[] = {
    {128, 4, 4.2, 16.0, 396.0}, {64, 5, 6.5, 8.0, 412.0},   {48, 6, 8.5, 8.0, 416.0},
    {32, 9, 13.0, 8.0, 424.0},  {22, 26, 26.0, 0.0, 420.0}, {0, 60, 42.0, 0.0, 416.0},
};

/// Point of the drawing: x to the right, y down, z to the viewer.
struct DrawingPoint
{
    double x;
    double y;
    double z;
};

DrawingPoint operator+(const DrawingPoint &a, const DrawingPoint &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

DrawingPoint operator*(const DrawingPoint &a, double factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

/// Projects `point` of the tilted figure, seen from a distance of 5 units.
DrawingPoint projected(const CurvePoint &point)
{
    constexpr double tilt = -25.0 * pi / 180.0;
    constexpr double distance = 5.0;
    const auto x = static_cast<double>(point.x);
    const auto y = static_cast<double>(point.y);
    const auto z = static_cast<double>(point.z);
    const double up = y * std::cos(tilt) - z * std::sin(tilt);
    const double near = y * std::sin(tilt) + z * std::cos(tilt);
    const double perspective = distance / (distance - near);
    return {x * perspective, -up * perspective, near};
}

/// Returns the curve's points in the drawing, centred and scaled to `extent`. Keeps z.
QVector<DrawingPoint> drawing(const QVector<CurvePoint> &curve, double extent)
{
    QVector<DrawingPoint> points;
    points.reserve(curve.size());
    std::transform(curve.cbegin(), curve.cend(), std::back_inserter(points), projected);
    const auto byX = std::minmax_element(points.cbegin(), points.cend(),
                                         [](const DrawingPoint &a, const DrawingPoint &b) { return a.x < b.x; });
    const auto byY = std::minmax_element(points.cbegin(), points.cend(),
                                         [](const DrawingPoint &a, const DrawingPoint &b) { return a.y < b.y; });
    const double left = byX.first->x;
    const double right = byX.second->x;
    const double top = byY.first->y;
    const double bottom = byY.second->y;
    const double scale = extent / std::max(right - left, bottom - top);
    for (DrawingPoint &point : points) {
        point.x = side / 2.0 + (point.x - (left + right) / 2.0) * scale;
        point.y = side / 2.0 + (point.y - (top + bottom) / 2.0) * scale;
    }
    return points;
}

/// Returns a channel of the curve's colour on the dark plate: brighter, because pure blue is too dark there, and dimmed
/// with the distance.
int channel(int value, double nearness)
{
    const double light = 70.0 + value * 0.725;
    return static_cast<int>(light * (0.6 + 0.4 * nearness));
}

QString coordinates(const DrawingPoint &point)
{
    return QStringLiteral("%1 %2").arg(point.x, 0, 'f', 1).arg(point.y, 0, 'f', 1);
}

/// Piece of the line in one colour.
struct Piece
{
    double z;
    QString path;
};

/// Returns the line between two indices of `points` as a cubic, in the colour of the middle point.
Piece piece(const QVector<DrawingPoint> &points, int first, int last, double lineWidth)
{
    const auto slope = [&points](int i) {
        const int before = std::max(i - 1, 0);
        const int after = std::min(i + 1, static_cast<int>(points.size()) - 1);
        return (points.at(after) + points.at(before) * -1.0) * (1.0 / (after - before));
    };
    const double third = (last - first) / 3.0;
    const QString data = QStringLiteral("M%1C%2 %3 %4")
                             .arg(coordinates(points.at(first)), coordinates(points.at(first) + slope(first) * third),
                                  coordinates(points.at(last) + slope(last) * -third), coordinates(points.at(last)));

    const int middle = (first + last) / 2;
    const double z = points.at(middle).z;
    const double nearness = std::clamp((z + 1.0) / 2.0, 0.0, 1.0);
    const QColor &color = pdx3.colors.at(middle);
    const QColor shown(channel(color.red(), nearness), channel(color.green(), nearness),
                       channel(color.blue(), nearness));
    return {z, QStringLiteral("<path stroke=\"%1\" stroke-width=\"%2\" d=\"%3\"/>\n")
                   .arg(shown.name())
                   .arg(lineWidth * (0.8 + 0.4 * nearness), 0, 'f', 1)
                   .arg(data)};
}

QString icon(const Style &style)
{
    constexpr int piecesPerTurn = 52;
    QVector<float> row = pdx3.presets.at(1);
    row[5] = 1.0F; // colours by depth
    pdx3.set(row);
    const QVector<DrawingPoint> points = drawing(pdx3.points, style.extent);
    const auto pointAt = [](double turns) { return static_cast<int>(std::lround(turns * pointsPerTurn)); };

    QVector<Piece> pieces;
    for (int turn = 0; pointAt(turn + 1) < points.size(); turn += style.every) {
        for (int i = 0; i < piecesPerTurn; ++i) {
            const double begin = turn + static_cast<double>(i) / piecesPerTurn;
            const double end = turn + static_cast<double>(i + 1) / piecesPerTurn;
            pieces.append(piece(points, pointAt(begin), pointAt(end), style.lineWidth));
        }
    }
    std::stable_sort(pieces.begin(), pieces.end(), [](const Piece &a, const Piece &b) { return a.z < b.z; });

    const double plate = side - 2.0 * style.margin;
    QString text =
        QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %1 %1\" width=\"%1\" height=\"%1\">\n"
                       "<title>Pendrix 3D</title>\n"
                       "<radialGradient id=\"night\" cx=\".5\" cy=\".42\" r=\".75\">"
                       "<stop offset=\"0\" stop-color=\"#262e52\"/><stop offset=\"1\" stop-color=\"#0b0e1c\"/>"
                       "</radialGradient>\n"
                       "<rect x=\"%2\" y=\"%2\" width=\"%3\" height=\"%3\" rx=\"%4\" fill=\"url(#night)\"/>\n"
                       "<g fill=\"none\" stroke-linecap=\"round\">\n")
            .arg(side)
            .arg(style.margin)
            .arg(plate)
            .arg(plate * 0.2);
    for (const Piece &each : std::as_const(pieces))
        text += each.path;
    return text + QStringLiteral("</g>\n</svg>\n");
}

} // namespace

int main(int argc, char *argv[])
{
    const int size = argc == 2 ? QString::fromLocal8Bit(argv[1]).toInt() : 0;
    if (size < 1) {
        QTextStream(stderr) << "usage: pendrix_icon SIZE\n";
        return 2;
    }
    const Style &style =
        *std::find_if(std::begin(styles), std::end(styles), [size](const Style &s) { return s.size <= size; });
    QTextStream(stdout) << icon(style);
    return 0;
}
