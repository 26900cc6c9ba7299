#pragma once

#include "engine/DampedSine.h"

#include <QTest>

#include <array>
#include <utility>

Q_DECLARE_METATYPE(DampedSineMethod)

/// Adds a test row for each available method, in the column "method". The fastest method is the last.
inline void addDampedSineMethods()
{
    QTest::addColumn<DampedSineMethod>("method");
    const std::array<std::pair<const char *, DampedSineMethod>, 4> methods = {{
        {"library", DampedSineMethod::Library},
        {"baseline", DampedSineMethod::Baseline},
        {"avx2", DampedSineMethod::Avx2},
        {"avx512", DampedSineMethod::Avx512},
    }};
    for (const auto &[name, method] : methods) {
        if (isAvailable(method))
            QTest::newRow(name) << method;
    }
}
