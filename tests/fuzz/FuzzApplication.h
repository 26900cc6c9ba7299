#pragma once

#include <QString>
#include <QVector>

/// Makes the application that a fuzzer runs in, which stays until the process ends. It needs no display, and it has a
/// home and a settings folder of its own, so that the user's stay untouched.
///
/// From then on a message of the toolkit ends the process, as does everything else that must not happen.
void startFuzzApplication();

/// A folder that is removed when the process ends.
QString fuzzFolder();

/// Ends the process with a word on what should hold, unless it does.
void expect(bool holds, const char *what);

/// Whether two lists of rows are the same; a NaN is unequal to itself.
bool haveSameBits(const QVector<QVector<float>> &a, const QVector<QVector<float>> &b);
