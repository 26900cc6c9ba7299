#include "export/LineImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

// Supersampling with a z-buffer: every pixel has 16 samples, each with a colour and a nearness. A pixel row is divided
// into 16 subrows with one sample per pixel. The horizontal position of the sample in its pixel differs from subrow to
// subrow, so that nearly horizontal and nearly vertical edges both have 16 levels of coverage.
//
// The image is rendered in bands of a few pixel rows. Each band draws all segments that touch it and then resolves its
// samples to pixels.

namespace {

constexpr int samples = 16;

/// Positions of the subrows' samples in a pixel, in 1/16 of its width.
constexpr std::array<int, samples> sampleOrder = {0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15};

/// Pixel rows per band: few enough for the samples of an image of usual width to stay in the cache.
constexpr int bandHeight = 8;

/// An interval of x; empty unless `left` <= `right`.
struct Span
{
    double left = std::numeric_limits<double>::infinity();
    double right = -std::numeric_limits<double>::infinity();

    void add(double from, double to)
    {
        left = std::min(left, from);
        right = std::max(right, to);
    }
};

/// A segment of the line with round ends, which form the joins.
class Segment
{
public:
    Segment(const ImageVertex &from, const ImageVertex &to, double lineWidth)
        : a(from), b(to), radius(lineWidth / 2.0), dx(b.x - a.x), dy(b.y - a.y), squaredLength(dx * dx + dy * dy),
          isPoint(squaredLength < 1e-12)
    {
    }

    double top() const { return std::min(a.y, b.y) - radius; }
    double bottom() const { return std::max(a.y, b.y) + radius; }

    /// Returns the interval of x that the segment covers at `y`.
    Span at(double y) const
    {
        Span span;
        for (const ImageVertex *end : {&a, &b}) {
            const double distance = y - end->y;
            if (std::abs(distance) <= radius) {
                const double half = std::sqrt(radius * radius - distance * distance);
                span.add(end->x - half, end->x + half);
            }
        }
        if (isPoint || dy == 0.0)
            return span;
        // Intersections with the two long sides, which are the segment moved by `side` times (-dy, dx). The short sides
        // are inside the round ends.
        const double perUnit = radius / std::sqrt(squaredLength);
        for (const double side : {perUnit, -perUnit}) {
            const double along = (y - (a.y + dx * side)) / dy;
            if (along >= 0.0 && along <= 1.0) {
                const double x = a.x - dy * side + dx * along;
                span.add(x, x);
            }
        }
        return span;
    }

    const ImageVertex &a;
    const ImageVertex &b;
    double radius;
    double dx;
    double dy;
    double squaredLength;
    bool isPoint;
};

/// Returns the colour `part` / 256 of the way from `a` to `b`. Interpolates red and blue in one multiplication.
QRgb mixed(QRgb a, QRgb b, unsigned part)
{
    const unsigned redBlue = ((a & 0xFF00FFU) * (256U - part) + (b & 0xFF00FFU) * part) >> 8U;
    const unsigned green = ((a & 0xFF00U) * (256U - part) + (b & 0xFF00U) * part) >> 8U;
    return (redBlue & 0xFF00FFU) | (green & 0xFF00U);
}

/// The samples of a band.
class Band
{
public:
    explicit Band(int imageWidth)
        : width(imageWidth), nearness(static_cast<std::size_t>(width) * bandHeight * samples), colors(nearness.size()),
          sums(static_cast<std::size_t>(width))
    {
    }

    /// Moves the band to the pixel rows from `firstRow` on. The samples must be empty.
    void moveTo(int firstRow)
    {
        top = firstRow;
        touched.fill({width, 0});
    }

    /// Draws the part of `segment` in the band into the samples.
    void draw(const Segment &segment)
    {
        const int first = std::max(subrowAfter(segment.top()), top * samples);
        const int last = std::min(subrowAfter(segment.bottom()), (top + bandHeight) * samples) - 1;
        for (int subrow = first; subrow <= last; ++subrow)
            drawSubrow(segment, subrow);
    }

    /// Resolves the samples of pixel row `row`: writes the covered pixels to `line` and clears the samples.
    void resolve(int row, QRgb *line, const QColor &background)
    {
        const auto [begin, end] = touched.at(static_cast<std::size_t>(row - top));
        if (begin >= end)
            return;
        std::fill(sums.begin() + begin, sums.begin() + end, Sum());
        for (int sample = 0; sample < samples; ++sample) {
            float *const near = nearness.data() + indexOf((row - top) * samples + sample);
            const QRgb *const color = colors.data() + indexOf((row - top) * samples + sample);
            for (int x = begin; x < end; ++x) {
                if (near[x] > 0.0F)
                    sums[static_cast<std::size_t>(x)].add(color[x]);
            }
            std::fill(near + begin, near + end, 0.0F);
        }
        for (int x = begin; x < end; ++x)
            line[x] = sums[static_cast<std::size_t>(x)].pixel(background);
    }

private:
    /// The covered samples of a pixel.
    struct Sum
    {
        int count = 0;
        int red = 0;
        int green = 0;
        int blue = 0;

        void add(QRgb color)
        {
            ++count;
            red += qRed(color);
            green += qGreen(color);
            blue += qBlue(color);
        }

        QRgb pixel(const QColor &background) const
        {
            if (background.isValid()) {
                const int rest = samples - count;
                const auto mean = [rest](int sum, int ground) { return (sum + rest * ground + samples / 2) / samples; };
                return qRgb(mean(red, background.red()), mean(green, background.green()),
                            mean(blue, background.blue()));
            }
            if (count == 0)
                return 0;
            const auto mean = [this](int sum) { return (sum + count / 2) / count; };
            return qRgba(mean(red), mean(green), mean(blue), (count * 255 + samples / 2) / samples);
        }
    };

    struct Range
    {
        int begin;
        int end;
    };

    /// Returns the first subrow of the image at or below `y`, clamped to the band and one subrow on either side.
    int subrowAfter(double y) const
    {
        const double subrow = std::ceil(y * samples - 0.5);
        return static_cast<int>(std::clamp(subrow, top * double(samples) - 1.0, (top + bandHeight) * double(samples)));
    }

    std::ptrdiff_t indexOf(int subrowOfBand) const { return static_cast<std::ptrdiff_t>(subrowOfBand) * width; }

    void drawSubrow(const Segment &segment, int subrow)
    {
        const double y = (subrow + 0.5) / samples;
        const double offset = (sampleOrder.at(static_cast<std::size_t>(subrow % samples)) + 0.5) / samples;
        const Span span = segment.at(y);
        const double left = std::max(std::ceil(span.left - offset), 0.0);
        const double right = std::min(std::floor(span.right - offset), width - 1.0);
        if (!(left <= right))
            return;
        const int begin = static_cast<int>(left);
        const int end = static_cast<int>(right) + 1;
        Range &range = touched.at(static_cast<std::size_t>(subrow / samples - top));
        range = {std::min(range.begin, begin), std::max(range.end, end)};

        // The position along the segment, 0 at a and 1 at b: at the first sample, and its change per pixel.
        const double scale = segment.isPoint ? 0.0 : 1.0 / segment.squaredLength;
        const double start = ((begin + offset - segment.a.x) * segment.dx + (y - segment.a.y) * segment.dy) * scale;
        const double step = segment.dx * scale;
        const double deltaNearness = segment.b.nearness - segment.a.nearness;
        float *const near = nearness.data() + indexOf(subrow - top * samples);
        QRgb *const color = colors.data() + indexOf(subrow - top * samples);
        for (int x = begin; x < end; ++x) {
            const double along = std::clamp(start + (x - begin) * step, 0.0, 1.0);
            const auto depth = static_cast<float>(segment.a.nearness + along * deltaNearness);
            if (depth >= near[x]) {
                near[x] = depth;
                color[x] = mixed(segment.a.color, segment.b.color, static_cast<unsigned>(along * 256.0));
            }
        }
    }

    int width;
    int top = 0;
    std::vector<float> nearness; ///< of each sample; 0 if it is not covered
    std::vector<QRgb> colors;
    std::vector<Sum> sums;                   ///< scratch space of resolve
    std::array<Range, bandHeight> touched{}; ///< the pixels of each row that may have samples
};

} // namespace

QImage imageOfLine(const QVector<ImageVertex> &vertices, int width, int height, double lineWidth,
                   const QColor &background)
{
    QImage image(width, height, background.isValid() ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    if (image.isNull())
        return image;
    image.fill(background.isValid() ? background : QColor(Qt::transparent));

    std::vector<Segment> segments;
    for (int i = 1; i < vertices.size(); ++i)
        segments.emplace_back(vertices.at(i - 1), vertices.at(i), lineWidth);
    Band band(width);
    for (int top = 0; top < height; top += bandHeight) {
        band.moveTo(top);
        for (const Segment &segment : segments) {
            if (segment.bottom() >= top && segment.top() <= top + bandHeight)
                band.draw(segment);
        }
        for (int row = top; row < std::min(top + bandHeight, height); ++row)
            band.resolve(row, reinterpret_cast<QRgb *>(image.scanLine(row)), background);
    }
    return image;
}
