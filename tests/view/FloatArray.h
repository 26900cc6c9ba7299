#pragma once

#include <QByteArray>
#include <QVector>
#include <QtTest>

#include <cstddef>

/// Counts the calls of operator new[] and delete[] in this program. Stays zero under AddressSanitizer, which replaces
/// the operators and reports wrong sizes, leaks and mismatched deletes.
struct ArrayCount
{
    long alive = 0;           ///< arrays that are not deleted yet
    long threes = 0;          ///< arrays of three floats ever made
    std::size_t lastSize = 0; ///< of the array made last, in bytes

    /// Returns a copy of the current counts, because QCOMPARE allocates arrays, too.
    static ArrayCount now();
};

/// Returns the first element of `values` whose bits differ from those of `expected`, as text; empty if none does.
QByteArray difference(const float *values, const QVector<float> &expected);

/// Returns the difference as above for an array that a helper has just returned. Also checks its size, and deletes it.
QByteArray differenceOfNew(float *array, const QVector<float> &expected);

#define COMPARE_NEW_ARRAY(array, ...) QCOMPARE(differenceOfNew(array, QVector<float> __VA_ARGS__), QByteArray())
