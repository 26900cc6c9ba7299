#pragma once

#include "engine/Pendrix3D.h"

#include <QRgb>
#include <QVector>

/// The curve of a parameter row.
struct Curve
{
    QVector<float> row;
    QVector<CurvePoint> points;
    QVector<QRgb> colors; ///< of each point
};

/// Advances the frequencies of the parameter row `row` by `frames` frames of the animation, without computing curves.
void advance(QVector<float> &row, int frames);

/// Returns the curve of the parameter row `row`: 16666 points. Replaces the current curve of the global engine.
Curve curveOf(const QVector<float> &row);

/// Returns the curve time of each of the first `count` points of a curve.
QVector<float> timesOf(int count);

/// Returns the amplitude of each of the first `count` points of a curve.
QVector<float> amplitudesOf(int count);

/// Returns the index of the first vertex with an infinite or NaN coordinate, or -1 if the curve is finite.
int firstNonFinite(const Curve &curve);

/// Returns the colour in which a view draws vertex `i` of points with `colors`. Because of the one-vertex colour lag,
/// this is the colour of point `i` - 1; for vertex 0 the colour of point 0.
QRgb vertexColor(const QVector<QRgb> &colors, int i);
