// SPDX-License-Identifier: MIT
// Sets of flags, typed: a Flags<RunLoopMode> holds modes of a run loop and nothing else. Flags are
// the enumerators of an enumeration, each with a bit of its own; the header that declares the
// enumeration says so in one line and names the set:
//
//   enum class RunLoopMode : std::uint8_t { Default = 1, EventTracking = 2, ModalPanel = 4 };
//   template <>
//   inline constexpr bool isFlag<RunLoopMode> = true;
//   using RunLoopModes = Flags<RunLoopMode>;
//
//   RunLoopModes modes = RunLoopMode::Default | RunLoopMode::ModalPanel;
//   if (modes.contains(RunLoopMode::ModalPanel)) modes &= ~RunLoopModes(RunLoopMode::Default);
//
// Thread: any. Realtime-safe: yes, all of it.
#pragma once

#include "veltra/export.h"

#include <type_traits>

namespace veltra {

// Whether two values of the enumeration `Flag` join to a set by `|`. False until the enumeration's
// own header says otherwise, as above.
template <typename Flag>
inline constexpr bool isFlag = false;

template <typename Flag>
class Flags {
    static_assert(std::is_enum_v<Flag>);

public:
    // The unsigned integer of the enumeration's size, one bit a flag.
    using Bits = std::make_unsigned_t<std::underlying_type_t<Flag>>;

    constexpr Flags() noexcept = default;  // the empty set

    // The set of one flag.
    constexpr Flags(Flag flag) noexcept : m_bits(static_cast<Bits>(flag)) {}

    // The same set as a number, for files and other languages. Bits that belong to no flag stay as
    // they are.
    static constexpr Flags fromBits(Bits bits) noexcept {
        Flags flags;
        flags.m_bits = bits;
        return flags;
    }
    constexpr Bits bits() const noexcept { return m_bits; }

    // Whether no bit is set, neither a flag's nor one that belongs to no flag.
    constexpr bool isEmpty() const noexcept { return m_bits == 0; }
    // Whether all of `flags` are in the set; true for the empty set.
    constexpr bool contains(Flags flags) const noexcept { return (*this & flags) == flags; }

    // Whether both have the same bits.
    friend constexpr bool operator==(Flags left, Flags right) noexcept = default;

    // What is in either set.
    friend constexpr Flags operator|(Flags left, Flags right) noexcept {
        return fromBits(static_cast<Bits>(left.m_bits | right.m_bits));
    }

    // What is in both sets.
    friend constexpr Flags operator&(Flags left, Flags right) noexcept {
        return fromBits(static_cast<Bits>(left.m_bits & right.m_bits));
    }

    // All bits that are not set here, also those that belong to no flag.
    constexpr Flags operator~() const noexcept { return fromBits(static_cast<Bits>(~m_bits)); }

    // Adds the flags of the other set.
    constexpr Flags& operator|=(Flags other) noexcept { return *this = *this | other; }

    // Keeps only the flags that are in the other set, too.
    constexpr Flags& operator&=(Flags other) noexcept { return *this = *this & other; }

private:
    Bits m_bits = 0;
};

// Two flags make a set.
template <typename Flag>
requires isFlag<Flag>
constexpr Flags<Flag> operator|(Flag left, Flag right) noexcept {
    return Flags<Flag>(left) | right;
}

}  // namespace veltra
