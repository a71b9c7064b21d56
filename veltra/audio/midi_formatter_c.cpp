// SPDX-License-Identifier: MIT
#include "veltra/audio/midi_formatter_c.h"

#include "veltra/audio/midi_formatter.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/base/text_copy.h"

#include <string>

namespace veltra {

static_assert(int{kVLMIDIDecimal} == QKMIDIFormatter::kDecimal &&
              int{kVLMIDISigned} == QKMIDIFormatter::kSigned &&
              int{kVLMIDIHexadecimal} == QKMIDIFormatter::kHexadecimal &&
              int{kVLMIDINoteName} == QKMIDIFormatter::kNoteName);

size_t VLMIDIText(int32_t value, int32_t style, char* destination, size_t capacity) noexcept {
    const std::string text = unlessOutOfMemory(std::string(), [value, style] {
        QKMIDIFormatter formatter;
        formatter.setNoteStyle(style);
        return formatter.stringForObjectValue(value);
    });
    return copyText(text, destination, capacity);
}

}  // namespace veltra
