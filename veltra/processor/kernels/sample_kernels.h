// SPDX-License-Identifier: MIT
// The sample converters of one variant, and the variants, each in a file of its own.
#pragma once

#include "veltra/processor/sample_conversion.h"

namespace veltra::kernels {

struct SampleConverters {
    ConvertNToFloatProc toFloat;
    ConvertFloatToNProc fromFloat;
};

struct SampleKernels {
    SampleConverters integers[4][2];  // bytes of a sample less one, swapped
    SampleConverters float32;
};

extern const SampleKernels kSamplesPlain;
extern const SampleKernels kSamplesNeon;
extern const SampleKernels kSamplesSse41;
extern const SampleKernels kSamplesAvx2;
extern const SampleKernels kSamplesAvx512;  // needs AVX-512 F, BW, DQ, VL and VBMI, and BMI2

// 64-bit floats are a family of their own: on x86 SSE2 is all that they need.
extern const SampleConverters kFloat64Plain;
extern const SampleConverters kFloat64Neon;
extern const SampleConverters kFloat64Sse2;

}  // namespace veltra::kernels
