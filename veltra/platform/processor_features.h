// SPDX-License-Identifier: MIT
// What the processor can do, for code that has a variant for each kind of processor.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <optional>

namespace veltra {

// A feature is true only when both the processor and the operating system carry it: without
// wide registers saved by the system, `avx` and all of x86 after it but `gfni` are false.
struct VELTRA_EXPORT ProcessorFeatures {
    // What kind of processor it is: which of the features below can be true.
    enum class Family : std::uint8_t { Other, X86, PowerPc, Arm };

    // A function that finds out the features. It may be called on any thread, several at a time.
    using Query = ProcessorFeatures (*)() noexcept;

    Family family = Family::Other;  // Other: no feature is true

    // x86
    bool sse = false;
    bool sse2 = false;
    bool sse3 = false;
    bool ssse3 = false;
    bool sse41 = false;
    bool sse42 = false;
    bool pclmulqdq = false;
    bool avx = false;
    bool avx2 = false;
    bool bmi = false;
    bool bmi2 = false;
    bool gfni = false;
    bool vpclmulqdq = false;
    bool avx512f = false;
    bool avx512bw = false;
    bool avx512dq = false;
    bool avx512vl = false;
    bool avx512vbmi = false;
    bool avx512vbmi2 = false;

    // 64-bit ARM
    bool asimd = false;  // vectors of 128 bits
    bool pmull = false;  // carry-less multiplication
    bool crc32 = false;  // the instructions for checksums

    // PowerPC
    bool altivec = false;
    std::optional<std::uint32_t> processorVersion;  // upper half of the version register, if known

    // The answer of the query in force: the installed one, else the platform's own. The platform's
    // own asks the processor when the library is loaded, and returns what it learned then.
    // Thread: any. Realtime-safe: yes, unless a query is installed that is not.
    static ProcessorFeatures current() noexcept;

    // Puts `query` in force; null goes back to the platform's own. Returns the query that was
    // installed before, null for the platform's own. What was chosen by earlier answers stays
    // chosen: CDotAPI::Init and KernelFamily::useBest choose again. Install features that the real
    // processor lacks only to test the choice itself: a kernel that it cannot run crashes.
    // Thread: any. Realtime-safe: yes.
    static Query install(Query query) noexcept;
};

}  // namespace veltra
