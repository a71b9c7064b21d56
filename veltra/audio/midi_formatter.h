// SPDX-License-Identifier: MIT
// MIDI data values as text: note numbers, controller values, offsets. For C: midi_formatter_c.h.
//
//     QKMIDIFormatter formatter;
//     formatter.setNoteStyle(QKMIDIFormatter::kNoteName);
//     formatter.stringForObjectValue(60);    // "C3"
#pragma once

#include "veltra/base/property_value.h"
#include "veltra/export.h"

#include <cstdint>
#include <string>

namespace veltra {

// Thread: main. Realtime-safe: no.
class VELTRA_EXPORT QKMIDIFormatter {
public:
    enum : std::int32_t {
        kDecimal = 0,      // "-5", "0", "5"
        kSigned = 1,       // "-5", "± 0", "+5"
        kHexadecimal = 2,  // "0x0E", "0x F", "0x7F"
        kNoteName = 3,     // "C-2" for 0, "C3" for 60, "G8" for 127; sharps, never flats
    };

    // kDecimal after construction. Any other value than the four formats everything as "".
    std::int32_t noteStyle() const noexcept { return m_noteStyle; }
    void setNoteStyle(std::int32_t style) noexcept;

    // The text of a number, of which the lowest 32 bits count, a fraction lost and reals beyond 32
    // bits held at their limits; "" for what is neither a number nor a truth value.
    //
    // Deliberate: in hexadecimal, 15 is "0x F", with a blank; users know the column by it. Negative
    // values have eight digits after "0x0". Notes below 0 go on downwards: -1 is "B-3".
    // Throws std::bad_alloc.
    std::string stringForObjectValue(const PropertyValue& value) const;

private:
    std::int32_t m_noteStyle = kDecimal;
};

}  // namespace veltra
