#pragma once

#include "export/Drawing.h"

#include <QImage>

/// The smallest line width of an image in pixels: thinner lines would fall apart into dots.
constexpr double minLineWidth = 0.25;

/// Returns an image of `drawing` on `page`: antialiased, with round joins, and with colours interpolated between
/// vertices. Nearer lines hide farther ones. At equal nearness, the later one is visible.
///
/// The result is the same on every processor. Returns a null image if there is no memory for it.
QImage imageOf(const Drawing &drawing, const Page &page);
