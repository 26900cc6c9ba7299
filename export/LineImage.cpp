#include "export/LineImage.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

// Supersampling: QPainter draws the lines from far to near, without antialiasing, at 4 by 4 times the size into a tile,
// and the mean of each 16 samples is a pixel. QPainter's own antialiasing would blend the background into the joints,
// and its stroker takes 1.2 times the time of filling the polygons below (3.5 times for wide lines).
//
// The image is divided recursively into tiles. In a tile, pieces behind lines that cover the whole tile are
// skipped, so that wide lines do not fill each pixel thousands of times.

namespace {

constexpr int scale = 4; ///< samples per pixel in each direction

/// Tiles have at most `maxTileSize` pixels a side. Tiles of more than `minTileSize` are divided while lines would fill
/// them more than `maxFills` times. Measured at 1600x1600: every width takes less than five times the time of the
/// default width.
constexpr int maxTileSize = 256;
constexpr int minTileSize = 32;
constexpr double maxFills = 30.0;

/// A straight piece of the curve of one colour.
struct Piece
{
    QPointF from;
    QPointF to;
    double nearness;
    QRgb color;
};

using Pieces = std::vector<const Piece *>;

/// Returns the greatest difference of a channel of `a` and `b`.
int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// Returns the colour `part` (0 to 1) of the way from `a` to `b`.
QRgb mixed(QRgb a, QRgb b, double part)
{
    const auto mix = [part](int from, int to) { return static_cast<int>(std::lround(from + (to - from) * part)); };
    return qRgb(mix(qRed(a), qRed(b)), mix(qGreen(a), qGreen(b)), mix(qBlue(a), qBlue(b)));
}

/// Appends the pieces of segment `i` of `drawing` to `pieces`. A piece is at most `maxLength` long, so that nearness
/// changes in small steps, and at most 1/16 pixel from a Bézier curve. The colours of its ends differ by at most 32 in
/// a channel, unless the piece is shorter than 2 pixels.
void appendPieces(std::vector<Piece> &pieces, const Drawing &drawing, int i, double maxLength)
{
    const QPointF a = drawing.position(i);
    const QPointF d = drawing.position(i + 1);
    const bool isCurved = !drawing.controls.isEmpty();
    const QPointF b = isCurved ? drawing.controls.at(2 * i) : a;
    const QPointF c = isCurved ? drawing.controls.at(2 * i + 1) : d;
    const auto length = [](const QPointF &v) { return std::sqrt(QPointF::dotProduct(v, v)); };
    // The second derivative of a Bézier curve is at most 6 times the greater second difference. n chords of equal
    // parameter steps deviate from the curve by at most 1 / (8 n^2) times this bound.
    const double bend = isCurved ? std::max(length(a - 2.0 * b + c), length(b - 2.0 * c + d)) : 0.0;
    const QRgb color = vertexColor(drawing.colors, i);
    const QRgb next = vertexColor(drawing.colors, i + 1);
    const double steps = std::min(difference(color, next) / 32.0, length(d - a) / 2.0);
    const double parts = std::max({length(d - a) / maxLength, std::sqrt(6.0 * bend / 8.0 * 16.0), steps});
    const int count = static_cast<int>(std::ceil(std::clamp(parts, 1.0, 1000.0)));
    const auto at = [&](int k) {
        const double s = static_cast<double>(k) / count;
        const double r = 1.0 - s;
        return isCurved ? a * (r * r * r) + b * (3.0 * r * r * s) + c * (3.0 * r * s * s) + d * (s * s * s)
                        : a * r + d * s;
    };
    const double near = drawing.points.at(i).nearness;
    const double change = drawing.points.at(i + 1).nearness - near;
    for (int k = 0; k < count; ++k) {
        const double middle = (k + 0.5) / count;
        pieces.push_back({at(k), at(k + 1), near + change * middle, mixed(color, next, middle)});
    }
}

/// Draws pieces of one width into an image.
class Painting
{
public:
    Painting(QImage &target, double lineWidth, const QColor &background)
        : image(target), radius(lineWidth / 2.0), ground(background.isValid() ? background.rgb() : 0U)
    {
        // A polygon in place of a half circle: at most 1/4 sample from it up to a diameter of 200 pixels.
        constexpr double pi = 3.14159265358979323846;
        const double samples = radius * scale;
        const int edges = std::clamp(static_cast<int>(std::ceil(pi * std::sqrt(samples / 2.0))), 4, 32);
        for (int i = 0; i <= edges; ++i) {
            const double angle = pi * (static_cast<double>(i) / edges - 0.5);
            halfCircle.append({samples * std::cos(angle), samples * std::sin(angle)});
        }
    }

    /// Draws `pieces`, which are sorted from near to far, into the part `tile` of the image.
    void draw(const QRect &tile, const Pieces &pieces)
    {
        // Farther pieces are visible only in the cells of the tile that nearer ones leave open.
        std::vector<QRectF> open = cellsOf(tile);
        const double halfDiagonal = std::hypot(open.front().width(), open.front().height()) / 2.0;
        Pieces visible;
        double area = 0.0;
        for (const Piece *piece : pieces) {
            const double part = areaIn(tile, *piece);
            if (part <= 0.0)
                continue;
            bool isVisible = false;
            const auto isCovered = [&](const QRectF &cell) {
                const double away = distance(*piece, cell.center());
                isVisible = isVisible || away < radius + halfDiagonal + 1.0;
                return away + halfDiagonal < radius * 0.998 - 0.25; // the polygon is not a circle
            };
            open.erase(std::remove_if(open.begin(), open.end(), isCovered), open.end());
            if (!isVisible)
                continue;
            visible.push_back(piece);
            area += part;
            if (open.empty())
                break;
        }
        if (visible.empty())
            return;
        const int side = std::max(tile.width(), tile.height());
        if (side > maxTileSize || (side > minTileSize && area > maxFills * tile.width() * tile.height())) {
            const int width = (tile.width() + 1) / 2;
            const int height = (tile.height() + 1) / 2;
            for (const int y : {0, height}) {
                for (const int x : {0, width})
                    draw(tile & QRect(tile.x() + x, tile.y() + y, width, height), visible);
            }
            return;
        }
        QImage samples(tile.size() * scale, QImage::Format_ARGB32_Premultiplied);
        if (samples.isNull())
            throw std::bad_alloc();
        samples.fill(ground);
        fill(samples, tile.topLeft(), visible);
        resolve(samples, tile);
    }

private:
    /// Returns the area of the part of the bounding rectangle of `piece` in `tile`.
    double areaIn(const QRect &tile, const Piece &piece) const
    {
        const auto overlap = [this](double a, double b, int start, int length) {
            return std::min(std::max(a, b) + radius, static_cast<double>(start) + length) -
                   std::max(std::min(a, b) - radius, static_cast<double>(start));
        };
        const double width = overlap(piece.from.x(), piece.to.x(), tile.x(), tile.width());
        const double height = overlap(piece.from.y(), piece.to.y(), tile.y(), tile.height());
        return width > 0.0 && height > 0.0 ? width * height : 0.0;
    }

    /// Returns the cells of `tile`: one for lines that are too thin to cover more.
    std::vector<QRectF> cellsOf(const QRect &tile) const
    {
        const int count = radius < 8.0 ? 1 : 8;
        const QSizeF size = QSizeF(tile.size()) / count;
        std::vector<QRectF> cells;
        for (int y = 0; y < count; ++y) {
            for (int x = 0; x < count; ++x)
                cells.emplace_back(QPointF(tile.x() + x * size.width(), tile.y() + y * size.height()), size);
        }
        return cells;
    }

    /// Returns the distance of `point` from the line of `piece`.
    static double distance(const Piece &piece, const QPointF &point)
    {
        const QPointF along = piece.to - piece.from;
        const QPointF v = point - piece.from;
        const double squaredLength = QPointF::dotProduct(along, along);
        const double part =
            squaredLength > 0.0 ? std::clamp(QPointF::dotProduct(v, along) / squaredLength, 0.0, 1.0) : 0.0;
        const QPointF away = v - along * part;
        return std::sqrt(QPointF::dotProduct(away, away));
    }

    /// Draws `pieces` from the last to the first. `origin` is the position of the samples in the image.
    void fill(QImage &samples, const QPointF &origin, const Pieces &pieces) const
    {
        QPainter painter(&samples);
        painter.setPen(Qt::NoPen);
        const int half = static_cast<int>(halfCircle.size());
        std::vector<QPointF> outline(static_cast<std::size_t>(2 * half));
        for (auto each = pieces.rbegin(); each != pieces.rend(); ++each) {
            const QPointF from = ((*each)->from - origin) * scale;
            const QPointF to = ((*each)->to - origin) * scale;
            const double length = std::sqrt(QPointF::dotProduct(to - from, to - from));
            const QPointF along = length > 0.0 ? (to - from) / length : QPointF(1.0, 0.0);
            const QPointF across(-along.y(), along.x());
            auto corner = outline.begin();
            for (const QPointF &p : halfCircle)
                *corner++ = to + along * p.x() + across * p.y();
            for (const QPointF &p : halfCircle)
                *corner++ = from - along * p.x() - across * p.y();
            painter.setBrush(QColor((*each)->color));
            painter.drawConvexPolygon(outline.data(), 2 * half);
        }
    }

    /// Writes the means of `samples`, which are opaque or 0, to the pixels of `tile`.
    void resolve(const QImage &samples, const QRect &tile)
    {
        for (int y = 0; y < tile.height(); ++y) {
            const QRgb *lines[scale];
            for (int i = 0; i < scale; ++i)
                lines[i] = reinterpret_cast<const QRgb *>(samples.constScanLine(y * scale + i));
            QRgb *const pixels = reinterpret_cast<QRgb *>(image.scanLine(tile.y() + y)) + tile.x();
            for (int x = 0; x < tile.width(); ++x) {
                unsigned alphaGreen = 0; // two sums in one: 16 samples of 255 fit 16 bits
                unsigned redBlue = 0;
                for (const QRgb *line : lines) {
                    for (int i = x * scale; i < (x + 1) * scale; ++i) {
                        alphaGreen += line[i] >> 8U & 0xFF00FFU;
                        redBlue += line[i] & 0xFF00FFU;
                    }
                }
                pixels[x] = mean(alphaGreen >> 16U, redBlue >> 16U, alphaGreen & 0xFFFFU, redBlue & 0xFFFFU);
            }
        }
    }

    /// Returns the pixel of these sums: the mean colour of the covered samples, and their share as alpha.
    static QRgb mean(unsigned alpha, unsigned red, unsigned green, unsigned blue)
    {
        constexpr unsigned all = scale * scale;
        const unsigned covered = alpha / 255U;
        if (covered == 0)
            return 0;
        const auto part = [covered](unsigned sum) { return static_cast<int>((sum + covered / 2) / covered); };
        return qRgba(part(red), part(green), part(blue), static_cast<int>((alpha + all / 2) / all));
    }

    QImage &image;
    double radius;
    QRgb ground;                 ///< the background's colour, or 0
    QVector<QPointF> halfCircle; ///< corners of a polygon about the origin, in samples, from below to above
};

} // namespace

QImage imageOf(const Drawing &drawing, const Page &page)
{
    const QSize size(static_cast<int>(page.width), static_cast<int>(page.height));
    QImage image(size, page.background.isValid() ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    if (image.isNull())
        return image;
    image.fill(page.background.isValid() ? page.background : QColor(Qt::transparent));

    std::vector<Piece> pieces;
    for (int i = 0; i < drawing.segmentCount(); ++i)
        appendPieces(pieces, drawing, i, std::max(page.height / 40.0, 4.0));
    Pieces fromNearToFar;
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece)
        fromNearToFar.push_back(&*piece);
    std::stable_sort(fromNearToFar.begin(), fromNearToFar.end(),
                     [](const Piece *a, const Piece *b) { return a->nearness > b->nearness; });
    Painting(image, page.lineWidth, page.background).draw(image.rect(), fromNearToFar);
    return image;
}
