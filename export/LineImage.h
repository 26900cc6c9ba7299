#pragma once

#include <QColor>
#include <QImage>
#include <QRgb>
#include <QVector>

/// A vertex of a line on an image: its position in pixels from the upper left corner, its nearness to the eye, which is
/// positive, and its colour.
struct ImageVertex
{
    double x;
    double y;
    double nearness;
    QRgb color;
};

/// Returns an image of `width` by `height` pixels with the line strip through `vertices`: antialiased, with round
/// joins, `lineWidth` pixels wide, with colours interpolated between vertices. Nearer segments hide farther ones. At
/// equal nearness, the later segment is visible. An invalid `background` is transparent.
///
/// The result is the same on every processor. Returns a null image if there is no memory for it.
QImage imageOfLine(const QVector<ImageVertex> &vertices, int width, int height, double lineWidth,
                   const QColor &background);
