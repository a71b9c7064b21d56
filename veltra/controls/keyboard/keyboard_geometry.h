// SPDX-License-Identifier: MIT
// Where the keys of an on-screen keyboard lie: the geometry of KeyboardView without the view.
//
// Points are counted from the upper left corner, y pointing down. White keys share the width; black
// ones lie on them at the far end, somewhat off the middle between two as on a real keyboard.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/controls/keyboard/octave_range.h"
#include "veltra/export.h"
#include "veltra/ui/geometry.h"

#include <cstdint>

namespace veltra {

// `range` are the white keys that are shown, counted from that of `firstNote` (see white_keys.h);
// it should end at the last note at the latest.
struct VELTRA_EXPORT KeyboardGeometry {
    Size size;                   // of the whole keyboard, in points
    KeyRange range;              // of white keys
    std::int32_t firstNote = 0;  // the MIDI note of white key 0

    // The lowest and the highest note that is shown. -1 when there is none.
    std::int32_t lowestNote() const noexcept;
    std::int32_t highestNote() const noexcept;

    // In points, 0 when no key is shown. That of black keys is whole.
    float whiteKeyWidth() const noexcept;
    float blackKeyWidth() const noexcept;

    // Empty when the key is not shown. Black keys that would be cut in halves are not.
    Rect rectOfNote(std::int32_t note) const noexcept;

    // The note under a point, black keys before white ones; -1 when there is none.
    std::int32_t noteAt(Point point) const noexcept;

    // How hard a key is struck there: from 1 at its far end to 127 at its foot; 1 outside of it.
    std::int32_t velocityAt(std::int32_t note, Point point) const noexcept;

    // Whether every key of the two lies in the same place.
    friend bool operator==(const KeyboardGeometry&, const KeyboardGeometry&) = default;
};

}  // namespace veltra
