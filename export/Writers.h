#pragma once

#include "export/Curve.h"
#include "export/Options.h"

#include <QByteArray>
#include <QImage>

/// Returns an antialiased image of the curve, which must be finite. Nearer lines hide farther ones. Returns a null
/// image if there is no memory for it.
QImage imageOf(const Curve &curve, const Page &page);

// Encoders. They return the content of a file in memory, so that a full disk cannot interrupt them. The curve must be
// finite.

/// Returns the image of imageOf as PNG; an empty array if there is no memory for it.
QByteArray pngOf(const Curve &curve, const Page &page);

/// Returns the curve as SVG: a path per run of segments of one colour, in curve order, in millimetres.
QByteArray svgOf(const Curve &curve, const Page &page);

/// Returns the polylines of svgOf as PDF. Rounds the page's width and height to whole points (1/72 inch).
QByteArray pdfOf(const Curve &curve, const Page &page);

/// Returns the curve as PLY: the vertices in scene units and the edges between them.
QByteArray plyOf(const Curve &curve);

/// Returns the curve as CSV: a line of titles and a line per vertex, in scene units.
QByteArray csvOf(const Curve &curve);
