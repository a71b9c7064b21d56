// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/x86_answers.h"
#include "veltra/platform/port.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#elif defined(__powerpc__) || defined(__aarch64__)
#include <sys/auxv.h>
#endif

namespace veltra {

namespace {

#if defined(__x86_64__) || defined(__i386__)

// The registers that the operating system saves when it switches threads.
unsigned savedState() noexcept {
    unsigned low = 0;
    unsigned high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

ProcessorFeatures query() noexcept {
    X86Answers answers;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) != 0) {
        answers.basicC = c;
        answers.basicD = d;
        constexpr unsigned kSystemSavesState = 1U << 27;
        if ((c & kSystemSavesState) != 0) answers.saved = savedState();
    }
    if (__get_cpuid_count(7, 0, &a, &b, &c, &d) != 0) {
        answers.extendedB = b;
        answers.extendedC = c;
    }
    return featuresOf(answers);
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
