// SPDX-License-Identifier: MIT
// The numbers by which kinds of processors are known to programs, from what a processor says about
// itself.
#pragma once

#include <cstdint>
#include <optional>

namespace veltra {

struct ProcessorIdentity {
    enum class Kind : std::uint8_t { Other, X86, PowerPc };

    Kind kind = Kind::Other;
    bool isFromIntel = false;  // x86; others count their families and models by themselves
    std::uint32_t family = 0;
    std::uint32_t model = 0;             // with its extension
    std::uint64_t baseFrequency = 0;     // hertz; 0: not said
    std::uint32_t processorVersion = 0;  // PowerPC: the upper half of the version register

    // The processor that runs this. Thread: any. Realtime-safe: no.
    static ProcessorIdentity current() noexcept;
};

// Nothing for processors that have no number. Thread: any. Realtime-safe: yes.
std::optional<std::uint32_t> processorType(const ProcessorIdentity& identity) noexcept;
std::optional<std::uint32_t> processorSubtype(const ProcessorIdentity& identity) noexcept;
std::optional<std::uint32_t> processorFamily(const ProcessorIdentity& identity) noexcept;
std::optional<std::uint32_t> nativeProcessorType(const ProcessorIdentity& identity) noexcept;

}  // namespace veltra
