#pragma once

#include <QRgb>
#include <QVector>

/// A vertex of the curve with the engine's values for the point of the same index.
struct CurveVertex
{
    float t;
    float x;
    float y;
    float z;
    QRgb color;
};

using Curve = QVector<CurveVertex>;

/// Moves the frequencies of the parameter row `row` by `frames` frames of the application, without computing the curves
/// in between.
void advance(QVector<float> &row, int frames);

/// Returns the curve of the parameter row `row`: 16666 vertices. Computes with the global engine, whose current curve
/// it replaces.
Curve curveOf(const QVector<float> &row);

/// Returns the index of the first vertex with an infinite or NaN coordinate, or -1 if the curve is finite.
int firstNonFinite(const Curve &curve);

/// Returns the colour of vertex `i` as a view draws it: the colour of the point before, because of the one-vertex
/// colour lag. Vertex 0 has the colour of point 0.
QRgb vertexColor(const Curve &curve, int i);
