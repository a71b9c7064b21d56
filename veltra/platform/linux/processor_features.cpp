// SPDX-License-Identifier: MIT
#include "veltra/platform/port.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#elif defined(__powerpc__) || defined(__aarch64__)
#include <sys/auxv.h>
#endif

namespace veltra {

namespace {

#if defined(__x86_64__) || defined(__i386__)

constexpr bool bit(unsigned word, unsigned index) noexcept {
    return (word >> index & 1U) != 0;
}

// The registers that the operating system saves when it switches threads.
unsigned savedState() noexcept {
    unsigned low = 0;
    unsigned high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

ProcessorFeatures query() noexcept {
    constexpr unsigned kYmmState = 0x06;  // SSE and AVX
    constexpr unsigned kZmmState = 0xE6;  // and masks, upper halves, upper sixteen

    ProcessorFeatures features;
    features.family = ProcessorFeatures::Family::X86;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0) return features;
    features.sse = bit(d, 25);
    features.sse2 = bit(d, 26);
    features.sse3 = bit(c, 0);
    features.pclmulqdq = bit(c, 1);
    features.ssse3 = bit(c, 9);
    features.sse41 = bit(c, 19);
    features.sse42 = bit(c, 20);

    const unsigned saved = bit(c, 27) ? savedState() : 0;
    const bool ymm = (saved & kYmmState) == kYmmState && bit(c, 28);
    const bool zmm = (saved & kZmmState) == kZmmState && ymm;
    features.avx = ymm;
    if (__get_cpuid_count(7, 0, &a, &b, &c, &d) == 0) return features;
    features.gfni = bit(c, 8);
    features.bmi = ymm && bit(b, 3);
    features.avx2 = ymm && bit(b, 5);
    features.bmi2 = ymm && bit(b, 8);
    features.vpclmulqdq = ymm && bit(c, 10);
    features.avx512f = zmm && bit(b, 16);
    features.avx512dq = features.avx512f && bit(b, 17);
    features.avx512bw = features.avx512f && bit(b, 30);
    features.avx512vl = features.avx512f && bit(b, 31);
    features.avx512vbmi = features.avx512f && bit(c, 1);
    features.avx512vbmi2 = features.avx512f && bit(c, 6);
    return features;
}

#elif defined(__powerpc__)

ProcessorFeatures query() noexcept {
    constexpr unsigned long kHasAltivec = 0x10000000;

    ProcessorFeatures features;
    features.family = ProcessorFeatures::Family::PowerPc;
    features.altivec = (::getauxval(AT_HWCAP) & kHasAltivec) != 0;
    unsigned long version = 0;
    __asm__ volatile("mfspr %0, 287" : "=r"(version));  // the kernel answers for user programs
    features.processorVersion = static_cast<std::uint32_t>(version) >> 16;
    return features;
}

#elif defined(__aarch64__)

ProcessorFeatures query() noexcept {
    const unsigned long capabilities = ::getauxval(AT_HWCAP);

    ProcessorFeatures features;
    features.family = ProcessorFeatures::Family::Arm;
    features.asimd = (capabilities & HWCAP_ASIMD) != 0;
    features.pmull = features.asimd && (capabilities & HWCAP_PMULL) != 0;
    features.crc32 = (capabilities & HWCAP_CRC32) != 0;
    return features;
}

#else

ProcessorFeatures query() noexcept {
    return {};
}

#endif

}  // namespace

ProcessorFeatures platformProcessorFeatures() noexcept {
    return query();
}

}  // namespace veltra
