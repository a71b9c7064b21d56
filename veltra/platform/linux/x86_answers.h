// SPDX-License-Identifier: MIT
// What an x86 processor answers when it is asked what it can do, and what that means.
#pragma once

#include "veltra/platform/processor_features.h"

namespace veltra {

// The words that the processor puts into registers of these letters; 0 for a question that it does
// not know.
struct X86Answers {
    unsigned basicC = 0, basicD = 0;        // question 1
    unsigned extendedB = 0, extendedC = 0;  // question 7
    unsigned saved = 0;                     // registers that the system saves; 0: none
};

// Wide registers count only where the system saves them whole when it switches threads.
constexpr ProcessorFeatures featuresOf(const X86Answers& answers) noexcept {
    constexpr unsigned kYmmState = 0x06;  // SSE and AVX
    constexpr unsigned kZmmState = 0xE6;  // and masks, upper halves, upper sixteen
    const auto bit = [](unsigned word, unsigned index) { return (word >> index & 1U) != 0; };
    const auto [c, d, b7, c7, saved] = answers;

    ProcessorFeatures features;
    features.family = ProcessorFeatures::Family::X86;
    features.sse = bit(d, 25);
    features.sse2 = bit(d, 26);
    features.sse3 = bit(c, 0);
    features.pclmulqdq = bit(c, 1);
    features.ssse3 = bit(c, 9);
    features.sse41 = bit(c, 19);
    features.sse42 = bit(c, 20);
    features.gfni = bit(c7, 8);

    const bool ymm = (saved & kYmmState) == kYmmState && bit(c, 28);
    features.avx = ymm;
    features.bmi = ymm && bit(b7, 3);
    features.avx2 = ymm && bit(b7, 5);
    features.bmi2 = ymm && bit(b7, 8);
    features.vpclmulqdq = ymm && bit(c7, 10);

    const bool zmm = (saved & kZmmState) == kZmmState && ymm && bit(b7, 16);
    features.avx512f = zmm;
    features.avx512dq = zmm && bit(b7, 17);
    features.avx512bw = zmm && bit(b7, 30);
    features.avx512vl = zmm && bit(b7, 31);
    features.avx512vbmi = zmm && bit(c7, 1);
    features.avx512vbmi2 = zmm && bit(c7, 6);
    return features;
}

}  // namespace veltra
