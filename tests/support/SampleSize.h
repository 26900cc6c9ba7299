#pragma once

#include <QtGlobal>

/// Returns `exhaustive` in the long test runs (CTest label `exhaustive`, which sets PENDRIX_EXHAUSTIVE), else `sample`.
inline int sampleSize(int sample, int exhaustive)
{
    return qEnvironmentVariableIsSet("PENDRIX_EXHAUSTIVE") ? exhaustive : sample;
}
