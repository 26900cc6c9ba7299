#pragma once

#include <QVector>

#include <random>

/// The number of points of a curve with the settings that the program uses.
constexpr int usualPointCount = 16666;

/// A row of random bits, the `number`th of a series. But for mode 0, hardly any float names a mode that has a
/// colouring: every second row names one, or one next to them.
QVector<float> randomRow(std::mt19937 &random, int number);

/// Gives the engine other values of `total`, `step` and `radiusScale`, so that the next pass has up to 600 points. For
/// every 25th `number` the first two are as usual.
void setRandomSettings(std::mt19937 &random, int number);

/// Gives the engine the usual values of these again.
void setUsualSettings();
