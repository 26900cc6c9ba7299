#pragma once

#include "export/Curve.h"
#include "export/Options.h"

class QIODevice;

// Each writes a finite curve to an open device and returns false if it could not. The device keeps its own errors, too.

/// Writes the curve as an antialiased image on which nearer lines hide farther ones.
bool writePng(const Curve &curve, const Page &page, QIODevice &device);

/// Writes the curve as polylines in curve order, one per run of segments of one colour, in millimetres.
bool writeSvg(const Curve &curve, const Page &page, QIODevice &device);

/// As writeSvg. The page's width and height are rounded to whole points.
bool writePdf(const Curve &curve, const Page &page, QIODevice &device);

/// Writes the vertices and the edges between them, in scene units.
bool writePly(const Curve &curve, QIODevice &device);

/// Writes a line per vertex under a line of titles.
bool writeCsv(const Curve &curve, QIODevice &device);
