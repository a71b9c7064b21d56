// SPDX-License-Identifier: MIT
// Shortcuts and MIDI values as a user reads them, in the layout of the user's keyboard.
#include "veltra/audio/key_code_converter.h"
#include "veltra/audio/midi_formatter.h"

#include <cstdio>

int main() {
    using Keys = veltra::QKKeyCodeConverter;

    const std::uint16_t pageUp = 0x74, upperLeftLetter = 0x0C;
    const auto scroll = Keys::stringForKeycode(pageUp, Keys::kShift | Keys::kCommand);
    const auto quit = Keys::stringForKeycode(upperLeftLetter, Keys::kCommand);
    std::printf("scroll with %s, quit with %s\n", scroll->c_str(), quit->c_str());

    bool isDeadKey = false;
    for (std::uint16_t keyCode = 0; keyCode < 0x33; ++keyCode) {
        const auto typed = Keys::translateKeyCode(keyCode, isDeadKey, false);
        if (typed.has_value()) std::printf(isDeadKey ? "(%s) " : "%s ", typed->c_str());
    }

    veltra::QKMIDIFormatter note;
    note.setNoteStyle(veltra::QKMIDIFormatter::kNoteName);
    std::printf("\nmiddle C is %s\n", note.stringForObjectValue(60).c_str());
    return scroll == "\u21E7\u2318\u21DE" && note.stringForObjectValue(60) == "C3" ? 0 : 1;
}
