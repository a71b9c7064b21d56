// SPDX-License-Identifier: MIT
// What the system says about the machine and the process, question by question: the raw answers
// under QKHardwareUtilities and the version functions. A host or a test that wants other answers
// installs its own.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace veltra {

// The questions. An answer is a number unless a line says otherwise: 4 or 8 bytes, without a sign,
// in the host's byte order. The comments name the key that each question has in kernels that are
// asked by number or name.
enum class SystemKey : std::uint8_t {
    ProcessorCount,       // {6, 3}; those that the process may run on
    MemorySize,           // {6, 5}; bytes
    HasFloatingPoint,     // {6, 11}; 0 or 1
    HasVectorUnit,        // {6, 13}; 0 or 1
    ProcessorFrequency,   // {6, 15}; hertz
    ProcessorType,        // "hw.cputype": 7 x86, 18 PowerPC, each with 0x01000000 for 64 bits
    ProcessorSubtype,     // "hw.cpusubtype"
    ProcessorFamily,      // "hw.cpufamily"
    KernelRelease,        // {1, 2}; text, as "6.1.0-18-amd64"
    BootTime,             // {1, 21}; two 32-bit words with sign: seconds since 1970, microseconds
    BootSeconds,          // seconds since 1970, in 8 bytes with sign
    NativeProcessorType,  // 'cpu ': kinds of PowerPC; 313 is the first with 64 bits
    PowerPcFeatures,      // 'ppcf': 0x10 for vector instructions
    TaskSizes,            // two numbers of 8 bytes: resident and virtual size of the process, bytes
};

class SystemQueries;
extern template class VELTRA_EXPORT Installable<const SystemQueries>;

class VELTRA_EXPORT SystemQueries : public Installable<const SystemQueries> {
public:
    virtual ~SystemQueries();

    // Writes the answer into `answer`, as much of it as fits, and returns how many bytes the whole
    // answer has. Nothing when the system does not say.
    // Thread: any. Realtime-safe: no.
    virtual std::optional<std::size_t> bytes(SystemKey key,
                                             std::span<std::byte> answer) const noexcept = 0;

    // An answer of 4 or 8 bytes as a number; nothing for answers of any other length.
    // Thread: any. Realtime-safe: no.
    std::optional<std::uint64_t> number(SystemKey key) const noexcept;

    // An answer as text, up to its first NUL and 255 bytes; empty without an answer. Throws
    // std::bad_alloc.
    // Thread: any. Realtime-safe: no.
    std::string text(SystemKey key) const;
};

}  // namespace veltra
