#include "export/Curve.h"

#include "engine/Advance.h"

#include <algorithm>
#include <cmath>
#include <utility>

void advance(QVector<float> &row, int frames)
{
    for (int frame = 0; frame < frames; ++frame) {
        row[0] = advanced(row.at(0), Pendrix3D::driftPerFrame);
        row[2] = advanced(row.at(2), Pendrix3D::driftPerFrame);
    }
}

Curve curveOf(const QVector<float> &row)
{
    pdx3.set(row);
    Curve curve{row, pdx3.points, {}};
    curve.colors.reserve(pdx3.colors.size());
    for (const QColor &color : std::as_const(pdx3.colors))
        curve.colors.append(color.rgb());
    return curve;
}

QVector<float> timesOf(int count)
{
    QVector<float> times(count);
    float t = 0.0F;
    for (float &time : times)
        time = t = advanced(t, Pendrix3D::timeStep);
    return times;
}

QVector<float> amplitudesOf(int count)
{
    QVector<float> amplitudes(count);
    float a = pdx3.total;
    for (float &amplitude : amplitudes)
        amplitude = a = a - pdx3.step;
    return amplitudes;
}

int firstNonFinite(const Curve &curve)
{
    const auto isFinite = [](const CurvePoint &p) {
        return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
    };
    // The iterator is a pointer with Qt 5 only.
    const auto finite = std::find_if_not(curve.points.begin(), curve.points.end(), isFinite) - curve.points.begin();
    return finite == curve.points.size() ? -1 : static_cast<int>(finite);
}

QRgb vertexColor(const QVector<QRgb> &colors, int i)
{
    return colors.at(std::max(i - 1, 0));
}
