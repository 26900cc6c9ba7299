#pragma once

#include "export/Page.h"

#include <QGenericMatrix>
#include <QPointF>

/// A point on a page, in the page's unit from its upper left corner, and its nearness: the reciprocal of its distance
/// from the eye along the viewing direction, in 1 per scene unit. Nearness is linear along projected lines.
struct PagePoint
{
    double x;
    double y;
    double nearness;
};

/// The projection of the scene onto a page by the camera of the curve's view; see Camera.h.
struct Projection
{
    using Rotation = QGenericMatrix<3, 3, double>;

    explicit Projection(const Page &page);

    /// Returns the projection of the point `x`, `y`, `z` of the scene. The point must be less than 5 scene units from
    /// the origin, and is thus in front of the eye.
    PagePoint operator()(double x, double y, double z) const;

    /// Returns the velocity on the page of the point `x`, `y`, `z` of the scene with the velocity `dx`, `dy`, `dz`.
    QPointF velocity(double x, double y, double z, double dx, double dy, double dz) const;

    Rotation rotation;
    double centerX; ///< of the view on the page
    double centerY;
    double scale; ///< page units per scene unit at depth 1
};

/// Returns the rotation by `degrees` about the x, y or z axis.
Projection::Rotation rotationAboutX(double degrees);
Projection::Rotation rotationAboutY(double degrees);
Projection::Rotation rotationAboutZ(double degrees);
