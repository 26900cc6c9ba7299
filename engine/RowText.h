#pragma once

#include "engine/Pendrix3D.h"

#include <QString>
#include <QStringView>
#include <QVector>

#include <array>
#include <optional>

// Parameter rows as text in the format in which spreadsheets exchange cells: a line per row, fields separated by tabs.

/// The fields of a line, as views of its text.
using RowFields = std::array<QStringView, Pendrix3D::rowLength>;

/// Returns 64 lines, each ended by a line feed, of six numbers in the C locale with six significant digits. Rows and
/// values that `rows` lacks are 0; rows after the 64th are ignored.
QString textOfRows(const QVector<QVector<float>> &rows);

/// Removes the lines of `text` up to and including the first with exactly six fields, and stores them in `fields`.
/// Returns false if there is no such line.
///
/// Lines end in a line feed, a carriage return or both; one tab or more separates fields. Builds no list of lines or
/// fields, so that a text of 100 MB needs no further memory.
bool takeRow(QStringView &text, RowFields &fields);

/// Returns the value of `field`: a number in the C locale, with optional white space around it, or `inf` or `nan`.
/// Returns nothing for other text and for numbers outside the range of a float.
std::optional<float> valueOfField(QStringView field);
