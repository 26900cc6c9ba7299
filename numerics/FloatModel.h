#pragma once

/// Compile-time checks of the floating-point model. Include in every source file whose results are fixed to the bit.
///
/// The results require IEEE 754 binary32 and binary64, with each operation rounded once to the type that is written.
/// Only the bits of NaNs are unspecified. Code cannot check for contraction into fused multiply-add. The build disables
/// it for every target (-ffp-contract=off), except for the kernels for AVX2 and AVX-512 in DampedSineKernel.cpp, whose
/// error bound includes it.

#include <cfloat>
#include <limits>

#if defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__) ||                               \
    defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || defined(__NO_SIGNED_ZEROS__)
#error "The results are fixed to the bit: build without -ffast-math and its parts."
#endif

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<float>::digits == 24,
              "float must be IEEE 754 binary32");
static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53,
              "double must be IEEE 754 binary64");
static_assert(FLT_EVAL_METHOD == 0, "intermediate results must have the type that is written (no x87 arithmetic)");
