// SPDX-License-Identifier: MIT
// The white keys of a keyboard and the notes that they play. DfOctavePickerView and KeyboardView
// count white keys from 0; the host says which note key 0 plays:
//
//   int32_t lowest = VLNoteForWhiteKey(10, 0);           // 17, the F of the second octave
//   int32_t highest = VLNoteForWhiteKey(10 + 10 - 1, 0); // 33
//
// Notes are numbers from 0 to 127; 60 is middle C. `firstNote` is the note of white key 0: 0 on a
// keyboard of all notes, 21 on a piano. Where a black key plays it, the white key above that one is
// key 0.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// The note of a white key. -1 when there is none: the key is below 0 or above note 127, or
// `firstNote` is no note.
VELTRA_EXPORT int32_t VLNoteForWhiteKey(int32_t whiteKey, int32_t firstNote) VELTRA_NOEXCEPT;

// The white key that plays a note; for the note of a black key, the white key on its left. -1 when
// that is below key 0, or one of the two is no note.
VELTRA_EXPORT int32_t VLWhiteKeyForNote(int32_t note, int32_t firstNote) VELTRA_NOEXCEPT;

// How many white keys there are from `firstNote` to note 127: 75 from 0. 0 when `firstNote` is no
// note.
VELTRA_EXPORT int32_t VLWhiteKeyCount(int32_t firstNote) VELTRA_NOEXCEPT;

// Whether a black key plays the note; false when it is no note.
VELTRA_EXPORT bool VLIsBlackKey(int32_t note) VELTRA_NOEXCEPT;

VELTRA_C_END
