#pragma once

#include "export/Writers.h"

#include <QString>

// The formats. To add one, see "Where to add things" in docs/ARCHITECTURE.md.

/// What a format offers; bits. An option concerns the formats with one of its features.
enum Feature : unsigned {
    Picture = 1, ///< the curve on a page
    Paths = 2,   ///< a picture of paths, which hide each other only in depth order
    Pixels = 4,  ///< a picture of pixels
};

/// A file format. One of the two writers is null.
struct Format
{
    const char *name; ///< in lower case; also the extension
    unsigned features;
    QByteArray (*draw)(const Drawing &, const Page &);
    QByteArray (*list)(const Curve &);
};

constexpr Format formats[] = {
    {"png", Picture | Pixels, pngOf, nullptr},
    {"svg", Picture | Paths, svgOf, nullptr},
    {"pdf", Picture | Paths, pdfOf, nullptr},
    {"ply", 0, nullptr, plyOf},
    {"csv", 0, nullptr, csvOf},
    {"glb", 0, nullptr, glbOf},
};

/// Returns the format named `name` in any case, null for an unknown name.
const Format *formatOf(const QString &name);

/// Returns the names of the formats with one of `features`, or of all formats for 0: `svg or pdf`. Each name starts
/// with `prefix`.
QString formatNames(unsigned features, const QString &prefix = QString());
