#include "export/Drawing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

/// Returns the control points of all segments, from the projected derivative of the curve at the vertices:
///
///     d/dt (sin(phase + frequency t) a) = frequency cos(phase + frequency t) a + sin(phase + frequency t) da/dt
QVector<QPointF> controlsOf(const Curve &curve, const Projection &projection, const QVector<PagePoint> &points)
{
    const int count = static_cast<int>(curve.points.size());
    const QVector<float> times = timesOf(count);
    const QVector<float> amplitudes = amplitudesOf(count);
    const double amplitudeChange = static_cast<double>(-pdx3.step) / Pendrix3D::timeStep;
    const auto velocity = [&](int i, float phase, float frequency) {
        const double angle =
            static_cast<double>(phase * pdx3.twoPi) + static_cast<double>(frequency) * static_cast<double>(times.at(i));
        return static_cast<double>(frequency) * std::cos(angle) * static_cast<double>(amplitudes.at(i)) +
               std::sin(angle) * amplitudeChange;
    };
    QVector<QPointF> controls;
    controls.reserve(2 * count);
    for (int i = 0; i < count; ++i) {
        const CurvePoint &p = curve.points.at(i);
        const QPointF third =
            projection.velocity(static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z),
                                velocity(i, 0.0F, curve.row.at(1)), velocity(i, curve.row.at(3), curve.row.at(0)),
                                velocity(i, curve.row.at(4), curve.row.at(2))) *
            (Pendrix3D::timeStep / 3.0);
        const QPointF position(points.at(i).x, points.at(i).y);
        if (i > 0)
            controls.append(position - third);
        if (i + 1 < count)
            controls.append(position + third);
    }
    return controls;
}

} // namespace

QPainterPath Drawing::path(int first, int last) const
{
    QPainterPath path(position(first));
    for (int i = first; i < last; ++i) {
        if (controls.isEmpty())
            path.lineTo(position(i + 1));
        else
            path.cubicTo(controls.at(2 * i), controls.at(2 * i + 1), position(i + 1));
    }
    return path;
}

Drawing drawingOf(const Curve &curve, const Page &page)
{
    const Projection projection(page);
    Drawing drawing{{}, {}, curve.colors};
    drawing.points.reserve(curve.points.size());
    for (const CurvePoint &p : curve.points)
        drawing.points.append(projection(static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)));
    if (page.isSmooth)
        drawing.controls = controlsOf(curve, projection, drawing.points);
    return drawing;
}

QVector<int> segmentsByDepth(const Drawing &drawing)
{
    QVector<int> order(drawing.segmentCount());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&drawing](int a, int b) { return drawing.nearness(a) < drawing.nearness(b); });
    return order;
}

bool leavesPage(const Drawing &drawing, const Page &page)
{
    const double radius = page.lineWidth / 2.0 - 1e-9 * page.height; // less rounding errors
    const QRectF bounds = drawing.bounds();
    return bounds.left() < radius || bounds.top() < radius || bounds.right() > page.width - radius ||
           bounds.bottom() > page.height - radius;
}

Page::Fit fitOf(const QRectF &bounds, const Page &page, double margin)
{
    // A line along the viewing direction is a point but for rounding errors.
    const double smallest = 1e-9 * page.height;
    const auto scale = [&](double length, double side) {
        return length > smallest ? (side - 2.0 * margin - page.lineWidth) / length
                                 : std::numeric_limits<double>::infinity();
    };
    const double minScale = std::min(scale(bounds.width(), page.width), scale(bounds.height(), page.height));
    const double factor = std::isfinite(minScale) ? minScale : 1.0;
    return {factor, (page.width / 2.0 - bounds.center().x()) * factor,
            (page.height / 2.0 - bounds.center().y()) * factor};
}
