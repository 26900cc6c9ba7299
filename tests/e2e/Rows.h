#pragma once

#include "tests/e2e/RunningProgram.h"

// Rows of the table: as text, and as curves on the screen.

using Row = QVector<float>;
using Rows = QVector<Row>;

/// Returns the rows in the clipboard's format.
QByteArray textOf(const Rows &rows);

/// Returns the table of the first start as text.
QByteArray presetText();

/// Returns the table of the first start as text, with `rows` in place of its first rows.
QByteArray presetsBelow(const Rows &rows);

/// Returns a row that draws blue cones about the x axis, wound so tightly that the animation does not change their
/// outline. Only freq2 determines how far and to which side they reach.
inline Row cone(float freq2)
{
    return {20.0F, freq2, 20.0F, 0.25F, 0.0F, -1.0F};
}

/// Returns eight rows with clearly different curves.
Rows distinctRows();

/// Returns the index of the distinct row that the program shows; -1 if it shows none of them.
int shownBy(RunningProgram &program);

/// Rotation of the curve by the user, in degrees.
struct Rotation
{
    float aboutX = 0.0F;
    float aboutY = 0.0F;
    float aboutZ = 0.0F;
};

/// Returns whether a picture of the view shows the curve of `row`, by its bounding rectangle. For a row whose outline
/// changes with the animation, accepts the outline of any of the first `frames` frames.
bool shows(const QImage &view, const Row &row, const Rotation &rotation = {}, int frames = 0);

/// Returns whether a picture of the view shows a curve in blue only, the colour of invalid colour modes.
bool isBlue(const QImage &view);
