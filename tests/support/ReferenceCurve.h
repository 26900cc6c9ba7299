#pragma once

#include <QByteArray>

#include <vector>

/// The curve once more, computed point by point and in other words than the engine's: what the engine's numbers are
/// compared with, bit for bit.
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
    std::vector<unsigned int> palette;

    /// The curve that the engine stands for at this moment.
    static ReferenceCurve current();

    /// The number of points that it has.
    std::size_t size() const;

    /// Empty if the curve that the engine has computed is this one, else the first difference.
    QByteArray difference() const;
};

/// Fails the test unless the engine has computed the curve that it stands for.
#define VERIFY_CURVE()                                                                                                 \
    do {                                                                                                               \
        const QByteArray different = ReferenceCurve::current().difference();                                           \
        QVERIFY2(different.isEmpty(), different);                                                                      \
    } while (false)
