#pragma once

#include <cstdint>

/// The camera of every view, without OpenGL or widgets, so that other programs can project as a view does.
///
/// A point of the scene is rotated about z, then about y, then about x, and translated by the distance along z. The eye
/// is at the origin, looks along the negative z axis and has y upwards:
///
///     translate(0, 0, distance) rotate(degreesAboutX(xRot), x) rotate(degrees(yRot), y) rotate(degrees(zRot), z) point
///
/// Angles are ints in 1/16 degree.
namespace Camera {

/// The near and far planes, in scene units from the eye.
constexpr double nearPlane = 1.0;
constexpr double farPlane = 1000.0;

/// Half the height of the near plane, tan 22.5 degrees: a vertical field of view of 45 degrees.
constexpr double nearHalfHeight = 0.4142135623730951;

/// Translation of the scene along z, in scene units: the default of a view, and the value of the curve's view.
constexpr float defaultDistance = -6.0F;
constexpr float curveDistance = -5.0F;

/// A full turn in units of 1/16 degree, and the unit in degrees.
constexpr int fullTurn = 5760;
constexpr float degreesPerUnit = 0.0625F;

/// Returns the width of `w` by `h` pixels as a multiple of their height; not finite for an `h` of 0.
inline double aspectRatio(int w, int h)
{
    return static_cast<double>(static_cast<float>(w) / static_cast<float>(h));
}

/// Returns `angle` in degrees.
inline float degrees(int angle)
{
    return static_cast<float>(angle) * degreesPerUnit;
}

/// Returns the rotation about x in degrees for the angle `xRot`: half a turn at 0, so that y points down on the screen,
/// as on a drawing table seen from above.
inline float degreesAboutX(int xRot)
{
    return 180.0F - degrees(xRot);
}

/// Returns `angle` moved into 0 to 5760 by as few full turns as possible: 5760 stays, 5761 becomes 1, -5760 becomes 0.
inline int normalisedAngle(std::int64_t angle)
{
    if (angle < 0)
        return static_cast<int>((angle % fullTurn + fullTurn) % fullTurn);
    if (angle > fullTurn)
        return static_cast<int>((angle - 1) % fullTurn + 1);
    return static_cast<int>(angle);
}

} // namespace Camera
