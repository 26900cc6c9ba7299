// vectorSine, compiled once for each instruction set like the program's kernel.

#include "engine/VectorSine.h"

/// Sets sines[i] to the vector sine of angles[i] for i from 0 to `count` - 1.
void PENDRIX_KERNEL(const float *__restrict angles, double *__restrict sines, int count)
{
    for (int i = 0; i < count; ++i)
        sines[i] = vectorSine(static_cast<double>(angles[i]));
}
