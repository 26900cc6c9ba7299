#pragma once

#include <QString>
#include <QVector>

/// Constructs the application of a fuzzer, which requires no display and is never deleted. Its home and settings
/// folders are in fuzzFolder, not the user's. Afterwards, a message of Qt ends the process.
void startFuzzApplication();

/// Returns a folder that is removed when the process ends.
QString fuzzFolder();

/// Prints `what` and aborts unless the condition is true.
void expect(bool holds, const char *what);

/// Returns whether two lists of rows have the same bits; unlike ==, a NaN equals itself.
bool haveSameBits(const QVector<QVector<float>> &a, const QVector<QVector<float>> &b);
