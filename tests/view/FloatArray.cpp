#include "tests/view/FloatArray.h"

#include "tests/support/FloatBits.h"
#include "tests/support/Sanitizer.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

ArrayCount count;

} // namespace

#ifndef PENDRIX_ADDRESS_SANITIZER

void *operator new[](std::size_t size)
{
    ++count.alive;
    count.threes += size == 3 * sizeof(float) ? 1 : 0;
    count.lastSize = size;
    if (void *memory = std::malloc(std::max<std::size_t>(size, 1)))
        return memory;
    throw std::bad_alloc();
}

void operator delete[](void *memory) noexcept
{
    count.alive -= memory ? 1 : 0;
    std::free(memory);
}

void operator delete[](void *memory, std::size_t /*size*/) noexcept
{
    operator delete[](memory);
}

#endif

ArrayCount ArrayCount::now()
{
    return count;
}

QByteArray difference(const float *values, const QVector<float> &expected)
{
    for (int k = 0; k < expected.size(); ++k) {
        if (!sameFloat(values[k], expected.at(k)))
            return "element " + QByteArray::number(k) + ": " + QByteArray::number(double(values[k]), 'g', 9) +
                   ", expected " + QByteArray::number(double(expected.at(k)), 'g', 9);
    }
    return {};
}

QByteArray differenceOfNew(float *array, const QVector<float> &expected)
{
#ifndef PENDRIX_ADDRESS_SANITIZER
    if (count.lastSize != std::size_t(expected.size()) * sizeof(float))
        return "size in bytes: " + QByteArray::number(qulonglong(count.lastSize));
#endif
    const std::unique_ptr<float[]> owned(array);
    return difference(array, expected);
}
