#pragma once

#include "tests/support/FloatBits.h"
#include "tests/support/Sanitizer.h"

#include <QByteArray>
#include <QVector>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

/// What array new and array delete did in this program. Include in one file of a program only.
struct ArrayCount
{
    long alive = 0;           ///< arrays that are not deleted yet
    long threes = 0;          ///< arrays of three floats ever made
    std::size_t lastSize = 0; ///< of the array made last, in bytes
};

/// Copy it to compare it: QCOMPARE makes arrays, too.
inline ArrayCount arrayCount;

// AddressSanitizer checks sizes, leaks and the kind of delete with its own operators.
#ifndef PENDRIX_ADDRESS_SANITIZER

void *operator new[](std::size_t size)
{
    ++arrayCount.alive;
    arrayCount.threes += size == 3 * sizeof(float) ? 1 : 0;
    arrayCount.lastSize = size;
    if (void *memory = std::malloc(std::max<std::size_t>(size, 1)))
        return memory;
    throw std::bad_alloc();
}

void operator delete[](void *memory) noexcept
{
    arrayCount.alive -= memory ? 1 : 0;
    std::free(memory);
}

void operator delete[](void *memory, std::size_t /*size*/) noexcept
{
    operator delete[](memory);
}

#endif

/// Returns the first element of `values` whose bits differ from those of `expected`, as text; empty if none does.
inline QByteArray difference(const float *values, const QVector<float> &expected)
{
    for (int k = 0; k < expected.size(); ++k) {
        if (!sameFloat(values[k], expected.at(k)))
            return "element " + QByteArray::number(k) + ": " + QByteArray::number(double(values[k]), 'g', 9) +
                   ", expected " + QByteArray::number(double(expected.at(k)), 'g', 9);
    }
    return {};
}

/// Takes the array that a helper has just returned: also checks that it is an array new of as many floats.
inline QByteArray differenceOfNew(float *array, const QVector<float> &expected)
{
#ifndef PENDRIX_ADDRESS_SANITIZER
    if (arrayCount.lastSize != std::size_t(expected.size()) * sizeof(float))
        return "size in bytes: " + QByteArray::number(qulonglong(arrayCount.lastSize));
#endif
    const std::unique_ptr<float[]> owned(array);
    return difference(array, expected);
}

#define COMPARE_NEW_ARRAY(array, ...) QCOMPARE(differenceOfNew(array, QVector<float> __VA_ARGS__), QByteArray())
