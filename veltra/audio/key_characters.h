// SPDX-License-Identifier: MIT
// The two ways to number the keys that act rather than type: control characters of the Mac Roman
// encoding (0x1E is the arrow up), and characters of a private range of Unicode (U+F700 is).
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/c_linkage.h"

#include <stdint.h>

VELTRA_C_BEGIN

// The private character of a Mac Roman control character; any other code unchanged. Deliberate:
// 0x1B, Escape, becomes Clear (U+F739), which has the same code.
VELTRA_EXPORT uint16_t MacRomanCharacterCode2AppKitCode(unsigned char code) VELTRA_NOEXCEPT;

// The Mac Roman control character of a private character; 16 for F1 to F35 (U+F704 to U+F726).
// Deliberate: 0 for anything else, while the other direction returns what it was given. So a caller
// can tell typing keys.
VELTRA_EXPORT unsigned char AppKitFunctionKey2MacRomanCharCode(uint16_t character) VELTRA_NOEXCEPT;

VELTRA_C_END
