// SPDX-License-Identifier: MIT
// The modifier keys of a keyboard, as events report them and as shortcuts are written.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/base/flags.h"
#include "veltra/export.h"

#include <cstdint>

namespace veltra {

enum ModifierFlag : std::uint32_t {
    kShiftKeyMask = 0x20000,
    kControlKeyMask = 0x40000,
    kAlternateKeyMask = 0x80000,  // Option, here the Alt key
    kCommandKeyMask = 0x100000,   // here the Super key
    kNumericPadKeyMask = 0x200000,
    kFunctionKeyMask = 0x800000,  // arrows and other keys without text
};

// The keys join to a set by `|`.
template <>
inline constexpr bool isFlag<ModifierFlag> = true;

// The modifier keys that are held at one time, none included.
using ModifierFlags = Flags<ModifierFlag>;

}  // namespace veltra
