#pragma once

#include <QImage>
#include <QRect>
#include <QVector>

// What can be told of the curve from a picture of the window.

/// How the user has turned the curve, in degrees.
struct Turn
{
    double aboutX = 0.0;
    double aboutY = 0.0;
    double aboutZ = 0.0;
};

/// The pixels of a line of a picture, which is one of RunningProgram.
inline const QRgb *lineOf(const QImage &picture, int y)
{
    Q_ASSERT(picture.format() == QImage::Format_RGB32);
    return static_cast<const QRgb *>(static_cast<const void *>(picture.constScanLine(y)));
}

/// The view in a picture of the window: its black ground. Empty if there is none.
QRect viewIn(const QImage &picture);

/// The box around the curve in a picture of the window, relative to the view. Empty without a curve.
QRect curveIn(const QImage &picture);

/// Whether the picture shows a curve and all of it is blue, the colour of modes that are none.
bool isBlue(const QImage &picture);

/// Whether the curve in the picture is that of `row`, by the box around it: at its start, or at one of the moments of
/// its first `frames` frames for a row whose box changes with the animation.
bool shows(const QImage &picture, const QVector<float> &row, const Turn &turn = {}, int frames = 0);
