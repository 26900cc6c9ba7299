#pragma once

#include <QColor>

/// The rotation of the option --turn: about x, y and z in 1/16 degree, 0 to 5759; see Camera.h.
struct Turn
{
    int x = 0;
    int y = 0;
    int z = 0;
};

constexpr double millimetresPerInch = 25.4;

/// The page that a curve is drawn on. Lengths are in pixels for images, in millimetres for other pictures.
struct Page
{
    double width = 0.0;
    double height = 0.0;
    double lineWidth = 0.0;
    QColor background; ///< invalid for a transparent page
    Turn turn;
    bool isSmooth = false;        ///< Bézier curves instead of straight segments
    bool isInDepthOrder = false;  ///< from far to near instead of along the curve
    double dotsPerMillimetre = 0; ///< resolution to write into an image; 0 for none

    /// Enlargement about the page's centre and displacement of the projected curve.
    struct Fit
    {
        double scale = 1.0;
        double dx = 0.0;
        double dy = 0.0;
    };
    Fit fit = {};
};
