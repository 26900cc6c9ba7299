#pragma once

#include "export/Curve.h"
#include "export/Drawing.h"

#include <QByteArray>

// Encoders. They return the content of a file in memory, so that a full disk cannot interrupt them.

/// Returns the image of imageOf as PNG; an empty array if there is no memory for it.
QByteArray pngOf(const Drawing &drawing, const Page &page);

/// Returns the drawing as SVG, in millimetres: a path for each part of forEachPart, in relative coordinates of at most
/// three decimals from the centre of the page. Parts beyond the page are clipped.
QByteArray svgOf(const Drawing &drawing, const Page &page);

/// Returns the paths of svgOf as PDF. Rounds the page's width and height to whole points (1/72 inch).
QByteArray pdfOf(const Drawing &drawing, const Page &page);

/// Returns the curve as PLY: the vertices in scene units and the edges between them.
QByteArray plyOf(const Curve &curve);

/// Returns the curve as CSV: a line of titles and a line per vertex, in scene units.
QByteArray csvOf(const Curve &curve);

/// Returns the curve as binary glTF 2.0: a line strip of the vertices of plyOf with their colours.
QByteArray glbOf(const Curve &curve);
