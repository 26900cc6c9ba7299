#pragma once

// Declarations only: DampedSineKernel.cpp is compiled once for each instruction set and includes this file. An inline
// function here could end up in the program with instructions that the processor lacks.

/// Sets displacements[i] to the damped sine of angles[i] and amplitudes[i], for i from 0 to `count` - 1. Sets
/// undecided[i] to 1 where the rounding test fails or the angle is out of range, else to 0. Returns whether any
/// displacement is undecided. The arrays must not overlap.
using DampedSineKernel = int(const float *angles, const float *amplitudes, float *displacements, int *undecided,
                             int count);

// The build defines PENDRIX_HAS_KERNEL_... for each kernel that it contains.
DampedSineKernel dampedSineKernelBaseline;
DampedSineKernel dampedSineKernelAvx2;
DampedSineKernel dampedSineKernelAvx512;
