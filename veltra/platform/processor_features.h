// SPDX-License-Identifier: MIT
// What the processor can do, for code that has a variant for each kind of processor.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <optional>

namespace veltra {

// A feature is true only when both the processor and the operating system carry it: without
// wide registers saved by the system, everything from `avx` on is false.
struct VELTRA_EXPORT ProcessorFeatures {
    enum class Family : std::uint8_t { Other, X86, PowerPc };
    using Query = ProcessorFeatures (*)() noexcept;

    Family family = Family::Other;

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

    // PowerPC
    bool altivec = false;
    std::optional<std::uint32_t> processorVersion;  // upper half of the version register, if known

    // The features that the query in force returns: the installed one, else the platform's own,
    // which asks the processor once in the life of the process. Thread: any. Realtime-safe: yes,
    // with the platform's own and after its first call.
    static ProcessorFeatures current() noexcept;

    // Puts `query` in force; null goes back to the platform's own. Returns what was installed
    // before, null for the platform's own. What was chosen before stays chosen until
    // CDotAPI::Init and KernelFamily::useBest choose again. Kernels that the real processor
    // cannot run crash, so claim features that it lacks only to test what is chosen.
    // Thread: any. Realtime-safe: yes.
    static Query install(Query query) noexcept;
};

}  // namespace veltra
