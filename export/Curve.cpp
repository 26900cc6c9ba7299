#include "export/Curve.h"

#include "engine/Pendrix3D.h"

#include <algorithm>
#include <cmath>

void advance(QVector<float> &row, int frames)
{
    // The same arithmetic as in Pendrix3D::next.
    for (int frame = 0; frame < frames; ++frame) {
        row[0] = static_cast<float>(static_cast<double>(row.at(0)) + 0.0004);
        row[2] = static_cast<float>(static_cast<double>(row.at(2)) + 0.0004);
    }
}

Curve curveOf(const QVector<float> &row)
{
    pdx3.set(row);
    pdx3.t = 0.0F;
    pdx3.amplitude = pdx3.total;
    Curve curve;
    curve.reserve(pdx3.nPoints);
    for (int i = 0; i < pdx3.nPoints; ++i) {
        pdx3.calcSegment(i);
        curve.append({pdx3.t, pdx3.x, pdx3.y, pdx3.z, qRgb(pdx3.red, pdx3.green, pdx3.blue)});
    }
    return curve;
}

int firstNonFinite(const Curve &curve)
{
    const auto isFinite = [](const CurveVertex &v) {
        return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
    };
    const auto *const found = std::find_if_not(curve.begin(), curve.end(), isFinite);
    return found == curve.end() ? -1 : static_cast<int>(found - curve.begin());
}

QRgb vertexColor(const Curve &curve, int i)
{
    return curve.at(std::max(i - 1, 0)).color;
}
