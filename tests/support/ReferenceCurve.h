#pragma once

#include <QByteArray>

#include <array>
#include <vector>

/// One point of a ReferenceCurve.
struct ReferencePoint
{
    float time = 0.0F;
    float amplitude = 0.0F;
    std::array<float, 3> at = {};
    unsigned int color = 0;
};

/// The curve, computed point by point and independently of the engine: the reference for the engine's results.
struct ReferenceCurve
{
    float freqX = 0.0F;
    float freqY = 0.0F;
    float freqZ = 0.0F;
    float phaseY = 0.0F;
    float phaseZ = 0.0F;
    int mode = 0;
    float total = 1.0F;
    float step = 6e-5F;
    float radiusScale = 1.0F;
    float turn = 6.28318530717958647692F;
    std::vector<unsigned int> palette;

    /// Returns the curve of the engine's current parameters.
    static ReferenceCurve current();

    /// Returns the number of points.
    std::size_t size() const;

    /// Computes all points.
    std::vector<ReferencePoint> points() const;

    /// Compares the engine's lists and fields after a pass, bit for bit. Returns the first difference, or an empty
    /// text.
    QByteArray difference() const;

    /// Computes each point with calcSegment and compares the engine's fields, bit for bit. Returns the first
    /// difference, or an empty text.
    QByteArray segmentDifference() const;
};

/// Fails the test unless the engine has computed the curve of its current parameters.
#define VERIFY_CURVE()                                                                                                 \
    do {                                                                                                               \
        const QByteArray different = ReferenceCurve::current().difference();                                           \
        QVERIFY2(different.isEmpty(), different);                                                                      \
    } while (false)
