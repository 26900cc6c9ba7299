#include "tests/e2e/CurveOnScreen.h"

#include "engine/Pendrix3D.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int tolerance = 5; // pixels: the last pixels of lines, and what moves between the frames we look at
constexpr int stride = 20;   // frames

bool isLit(QRgb pixel)
{
    return std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)}) > 40;
}

/// The first and last of `counts` that reach half of their maximum.
QPair<int, int> rangeOfMany(const QVector<int> &counts)
{
    if (counts.isEmpty())
        return {0, -1};
    const int enough = std::max(1, *std::max_element(counts.cbegin(), counts.cend()) / 2);
    const auto isMany = [enough](int count) { return count >= enough; };
    const auto *const first = std::find_if(counts.cbegin(), counts.cend(), isMany);
    if (first == counts.cend())
        return {0, -1};
    const auto last = std::find_if(counts.crbegin(), counts.crend(), isMany);
    return {static_cast<int>(first - counts.cbegin()), static_cast<int>(counts.crend() - last) - 1};
}

/// Where the eye at distance 5 with its field of view of 45 degrees sees `point` in a view of `size`.
QPointF seen(const CurvePoint &point, const Turn &turn, QSize size)
{
    const double z = qDegreesToRadians(turn.aboutZ);
    const double x1 = point.x * std::cos(z) - point.y * std::sin(z);
    const double y1 = point.x * std::sin(z) + point.y * std::cos(z);
    const double y = qDegreesToRadians(turn.aboutY);
    const double x2 = x1 * std::cos(y) + point.z * std::sin(y);
    const double z2 = -x1 * std::sin(y) + point.z * std::cos(y);
    const double x = qDegreesToRadians(180.0 - turn.aboutX);
    const double y3 = y1 * std::cos(x) - z2 * std::sin(x);
    const double z3 = y1 * std::sin(x) + z2 * std::cos(x);
    const double scale = size.height() / 2.0 / ((5.0 - z3) * std::tan(M_PI / 8.0));
    return {size.width() / 2.0 + x2 * scale, size.height() / 2.0 - y3 * scale};
}

/// The box around the engine's curve in a view of `size`.
QRect boxOf(const Pendrix3D &engine, const Turn &turn, QSize size)
{
    double left = size.width();
    double top = size.height();
    double right = 0.0;
    double bottom = 0.0;
    for (const CurvePoint &point : engine.points) {
        const QPointF pixel = seen(point, turn, size);
        left = std::min(left, pixel.x());
        right = std::max(right, pixel.x());
        top = std::min(top, pixel.y());
        bottom = std::max(bottom, pixel.y());
    }
    const QRect box(QPoint(static_cast<int>(left), static_cast<int>(top)),
                    QPoint(static_cast<int>(right), static_cast<int>(bottom)));
    return box & QRect(QPoint(0, 0), size);
}

} // namespace

QRect viewIn(const QImage &picture)
{
    const auto isBlack = [](QRgb pixel) { return (pixel & 0xFFFFFFU) == 0; };
    QVector<int> columns(picture.width());
    for (int y = 0; y < picture.height(); ++y) {
        const QRgb *line = lineOf(picture, y);
        for (int x = 0; x < picture.width(); ++x)
            columns[x] += isBlack(line[x]) ? 1 : 0;
    }
    const auto across = rangeOfMany(columns);
    QVector<int> rows(picture.height());
    for (int y = 0; y < picture.height(); ++y) {
        const QRgb *line = lineOf(picture, y);
        for (int x = across.first; x <= across.second; ++x)
            rows[y] += isBlack(line[x]) ? 1 : 0;
    }
    const auto down = rangeOfMany(rows);
    return {QPoint(across.first, down.first), QPoint(across.second, down.second)};
}

QRect curveIn(const QImage &picture)
{
    const QRect view = viewIn(picture);
    QRect box;
    for (int y = view.top(); y <= view.bottom(); ++y) {
        const QRgb *line = lineOf(picture, y);
        for (int x = view.left(); x <= view.right(); ++x) {
            if (isLit(line[x]))
                box |= QRect(x - view.left(), y - view.top(), 1, 1);
        }
    }
    return box;
}

bool isBlue(const QImage &picture)
{
    const QRect view = viewIn(picture);
    bool any = false;
    for (int y = view.top(); y <= view.bottom(); ++y) {
        const QRgb *line = lineOf(picture, y);
        for (int x = view.left(); x <= view.right(); ++x) {
            const QRgb pixel = line[x] & 0xFFFFFFU;
            if (pixel != 0 && pixel != 0x0000FF)
                return false;
            any = any || pixel != 0;
        }
    }
    return any;
}

bool shows(const QImage &picture, const QVector<float> &row, const Turn &turn, int frames)
{
    static Pendrix3D engine;
    const QSize size = viewIn(picture).size();
    const QRect measured = curveIn(picture);
    if (measured.isEmpty())
        return false;
    engine.set(row);
    for (int frame = 0; frame <= frames; frame += stride) {
        const QRect box = boxOf(engine, turn, size);
        if (std::abs(box.left() - measured.left()) <= tolerance && std::abs(box.top() - measured.top()) <= tolerance &&
            std::abs(box.right() - measured.right()) <= tolerance &&
            std::abs(box.bottom() - measured.bottom()) <= tolerance)
            return true;
        engine.next(0.0004 * stride, 0.0004 * stride);
    }
    return false;
}
