// SPDX-License-Identifier: MIT
// The walks over UTF-8 bytes of one variant, and the variants, each in a file of its own.
#pragma once

#include <cstddef>

namespace veltra::kernels {

struct Utf8Kernels {
    // Length of the leading run of ASCII bytes: stops at a NUL or a byte at or above 0x80.
    std::size_t (*asciiLength)(const char* text) noexcept;

    // The same, stopping after `limit` bytes too. What lies behind the byte that stops it need
    // not exist, whatever the limit.
    std::size_t (*asciiLengthWithin)(const char* text, std::size_t limit) noexcept;

    // What utf8_check returns; `text` is not null.
    bool (*check)(const char* text) noexcept;
};

extern const Utf8Kernels kUtf8Plain;
extern const Utf8Kernels kUtf8Neon;
extern const Utf8Kernels kUtf8Sse2;
extern const Utf8Kernels kUtf8Avx2;    // needs AVX2, BMI1 and BMI2
extern const Utf8Kernels kUtf8Avx512;  // needs AVX-512 F and BW, BMI1 and BMI2

// The plain check, which the vector ones leave rare input to.
bool checkUtf8Plainly(const char* text) noexcept;

}  // namespace veltra::kernels
