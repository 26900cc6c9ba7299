#pragma once

#include "export/Curve.h"
#include "export/Page.h"
#include "export/Projection.h"

#include <QPainterPath>
#include <QRectF>

/// A curve on a page. Segment i runs from vertex i to vertex i + 1 and has the colour of point i.
struct Drawing
{
    QVector<PagePoint> points;
    QVector<QPointF> controls; ///< two control points for each segment, or none if the segments are straight
    QVector<QRgb> colors;      ///< of each point

    int segmentCount() const { return static_cast<int>(points.size()) - 1; }
    QPointF position(int vertex) const { return {points.at(vertex).x, points.at(vertex).y}; }

    /// Returns the nearness of segment `i`: the mean of its ends.
    double nearness(int i) const { return (points.at(i).nearness + points.at(i + 1).nearness) / 2.0; }

    /// Returns the path of the segments from vertex `first` to vertex `last`.
    QPainterPath path(int first, int last) const;

    /// Returns the smallest rectangle around the curve, without the width of the line.
    QRectF bounds() const { return path(0, segmentCount()).boundingRect(); }
};

/// Returns `curve`, which must be finite, on `page`. A smooth drawing has the curve's derivative at every vertex.
Drawing drawingOf(const Curve &curve, const Page &page);

/// Returns whether a part of the line of `drawing` is beyond `page`.
bool leavesPage(const Drawing &drawing, const Page &page);

/// Returns the scale and the displacement at which a drawing with `bounds`, without the width of its line, fills
/// `page` up to `margin`, centred. The line must fit between the margins. A point is only centred.
Page::Fit fitOf(const QRectF &bounds, const Page &page, double margin);

/// Calls `draw(first, last, color)` for the parts of `drawing` in the order of `page`, with the indices of their first
/// and last vertex: along the curve for each run of segments of one colour, or for each segment from far to near.
template <typename Draw>
void forEachPart(const Drawing &drawing, const Page &page, Draw draw);

/// The highest frequency of a smooth drawing: a quarter turn of the oscillator from point to point.
constexpr double maxSmoothFrequency = 1.5707963267948966 / Pendrix3D::timeStep;

/// Returns the segments of `drawing` from far to near. At equal nearness, the later segment is last.
QVector<int> segmentsByDepth(const Drawing &drawing);

template <typename Draw>
void forEachPart(const Drawing &drawing, const Page &page, Draw draw)
{
    if (page.isInDepthOrder) {
        const QVector<int> order = segmentsByDepth(drawing);
        for (const int i : order)
            draw(i, i + 1, drawing.colors.at(i));
        return;
    }
    const int segments = drawing.segmentCount();
    for (int first = 0, last = 0; first < segments; first = last) {
        const QRgb color = drawing.colors.at(first);
        while (last < segments && drawing.colors.at(last) == color)
            ++last;
        draw(first, last, color);
    }
}
