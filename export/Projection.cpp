#include "export/Projection.h"

#include "view/Camera.h"

#include <QtMath>

#include <cmath>

namespace {

using Rotation = Projection::Rotation;

// The last bit of libm's double results may differ between processors. Rounding to float hides the difference: no
// multiple of 1/16 degree has a sine or cosine that close to the midpoint of two floats.

/// Returns the sine of an angle in degrees, rounded to float.
double sine(double degrees)
{
    return static_cast<double>(static_cast<float>(std::sin(qDegreesToRadians(degrees))));
}

/// Returns the cosine of an angle in degrees, rounded to float.
double cosine(double degrees)
{
    return static_cast<double>(static_cast<float>(std::cos(qDegreesToRadians(degrees))));
}

Rotation matrix(const double (&rows)[9])
{
    return Rotation(rows);
}

} // namespace

Rotation rotationAboutX(double degrees)
{
    const double s = sine(degrees);
    const double c = cosine(degrees);
    return matrix({1.0, 0.0, 0.0, 0.0, c, -s, 0.0, s, c});
}

Rotation rotationAboutY(double degrees)
{
    const double s = sine(degrees);
    const double c = cosine(degrees);
    return matrix({c, 0.0, s, 0.0, 1.0, 0.0, -s, 0.0, c});
}

Rotation rotationAboutZ(double degrees)
{
    const double s = sine(degrees);
    const double c = cosine(degrees);
    return matrix({c, -s, 0.0, s, c, 0.0, 0.0, 0.0, 1.0});
}

Projection::Projection(const Page &page)
    : rotation(rotationAboutX(static_cast<double>(Camera::degreesAboutX(page.turn.x))) *
               rotationAboutY(static_cast<double>(Camera::degrees(page.turn.y))) *
               rotationAboutZ(static_cast<double>(Camera::degrees(page.turn.z)))),
      centerX(page.width / 2.0 + page.fit.dx), centerY(page.height / 2.0 + page.fit.dy),
      scale(page.height / 2.0 / Camera::nearHalfHeight * page.fit.scale)
{
}

PagePoint Projection::operator()(double x, double y, double z) const
{
    const auto along = [this, x, y, z](int row) {
        return rotation(row, 0) * x + rotation(row, 1) * y + rotation(row, 2) * z;
    };
    const double nearness = -1.0 / (along(2) + static_cast<double>(Camera::curveDistance));
    return {centerX + along(0) * nearness * scale, centerY - along(1) * nearness * scale, nearness};
}

QPointF Projection::velocity(double x, double y, double z, double dx, double dy, double dz) const
{
    const PagePoint point = (*this)(x, y, z);
    const auto along = [this, dx, dy, dz](int row) {
        return rotation(row, 0) * dx + rotation(row, 1) * dy + rotation(row, 2) * dz;
    };
    // The derivative of the nearness n is along(2) n^2, so a projected coordinate c n has (c' + c n along(2)) n.
    const double approach = along(2) * point.nearness;
    return {along(0) * point.nearness * scale + (point.x - centerX) * approach,
            -along(1) * point.nearness * scale + (point.y - centerY) * approach};
}
