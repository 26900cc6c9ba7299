#pragma once

#include "export/Curve.h"
#include "export/Options.h"

#include <QByteArray>
#include <QImage>

/// Returns an antialiased image of the finite curve on which nearer lines hide farther ones. Returns a null image if
/// there is no memory for it.
QImage imageOf(const Curve &curve, const Page &page);

// Each returns the content of a file with the finite curve, in memory, so that a full disk cannot interrupt an encoder.

/// Returns imageOf as PNG; nothing if there is no memory for the image.
QByteArray pngOf(const Curve &curve, const Page &page);

/// Returns polylines in curve order, one per run of segments of one colour, in millimetres.
QByteArray svgOf(const Curve &curve, const Page &page);

/// As svgOf. The page's width and height are rounded to whole points.
QByteArray pdfOf(const Curve &curve, const Page &page);

/// Returns the vertices and the edges between them, in scene units.
QByteArray plyOf(const Curve &curve);

/// Returns a line per vertex under a line of titles.
QByteArray csvOf(const Curve &curve);
