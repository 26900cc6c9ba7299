#pragma once

#include <QVector>

#include <random>

/// Returns row `number` of a series of rows with random bits. Hardly any random float selects a colour mode other than
/// 0, so every second row has a mode from -1 to 5.
QVector<float> randomRow(std::mt19937 &random, int number);

/// Sets the engine's `total`, `step` and `radiusScale` to random values with up to 600 points. For every 100th
/// `number`, the first two have their default values.
void setRandomSettings(std::mt19937 &random, int number);

/// Sets the engine's `total`, `step` and `radiusScale` to their default values.
void setDefaultSettings();
