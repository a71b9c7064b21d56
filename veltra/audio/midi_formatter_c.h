// SPDX-License-Identifier: MIT
// For C and every language that can call it: the QKMIDIFormatter of midi_formatter.h, MIDI data
// values as text.
//
//     char name[8];
//     VLMIDIText(60, kVLMIDINoteName, name, sizeof name);     // "C3"
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

enum VLMIDIStyle {
    kVLMIDIDecimal = 0,      // "-5", "0", "5"
    kVLMIDISigned = 1,       // "-5", "± 0", "+5", as UTF-8
    kVLMIDIHexadecimal = 2,  // "0x0E", "0x F", "0x7F"
    kVLMIDINoteName = 3      // "C-2" for 0, "C3" for 60, "G8" for 127; sharps, never flats
};

// The text of a value in a VLMIDIStyle: writes whole characters only, at most `capacity` - 1 bytes,
// then a NUL, and returns the length of the whole text without the NUL; 16 bytes hold every one.
// With `capacity` 0 or a null `destination` nothing is written. Empty for any other style, and when
// memory is out.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT size_t VLMIDIText(int32_t value, int32_t style, char* destination,
                                size_t capacity) VELTRA_NOEXCEPT;

VELTRA_C_END
