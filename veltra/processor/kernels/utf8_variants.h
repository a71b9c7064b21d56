// SPDX-License-Identifier: MIT
// The variants; which of them are built is for the build to find out, which may run for
// utf8_kernels.cpp.
#pragma once

#include "veltra/processor/detail/utf8_kernels.h"

namespace veltra {

extern const Utf8Kernels kUtf8Plain;
extern const Utf8Kernels kUtf8Avx2;    // needs AVX2, BMI1 and BMI2
extern const Utf8Kernels kUtf8Avx512;  // needs AVX-512 F and BW, BMI1 and BMI2

// The plain check, which the vector ones leave rare input to.
bool checkUtf8Plainly(const char* text) noexcept;

}  // namespace veltra
