#pragma once

#include <QRgb>
#include <QVector>

/// A point of the curve as the engine computes it: its time, coordinates and colour.
struct CurveVertex
{
    float t;
    float x;
    float y;
    float z;
    QRgb color;
};

using Curve = QVector<CurveVertex>;

/// Advances the frequencies of the parameter row `row` by `frames` frames of the animation, without computing curves.
void advance(QVector<float> &row, int frames);

/// Returns the curve of the parameter row `row`: 16666 vertices. Replaces the current curve of the global engine.
Curve curveOf(const QVector<float> &row);

/// Returns the index of the first vertex with an infinite or NaN coordinate, or -1 if the curve is finite.
int firstNonFinite(const Curve &curve);

/// Returns the colour in which a view draws vertex `i`. Because of the one-vertex colour lag, this is the colour of
/// point `i` - 1; for vertex 0 the colour of point 0.
QRgb vertexColor(const Curve &curve, int i);
