// SPDX-License-Identifier: MIT
// Keyboard shortcuts as text, and keys told by their place, by the character they type or by their
// names.
//
//     QKKeyCodeConverter::stringForKeycode(0x30, QKKeyCodeConverter::kCommand);    // "⌘⇥"
//
// A key code names a place on the keyboard (platform/keyboard_layout.h). A Mac Roman code names a
// character of that encoding, or, when it is a control character, a key that acts rather than
// types. A key character does the same in Unicode, with its private range U+F700 to U+F8FF. Texts
// are UTF-8. A function that returns nothing says that there is no text. Functions that return text
// throw std::bad_alloc.
//
// The bytes of Mac Roman above 0x7F, and capitals of letters above it, need a library built with
// ICU; key codes of typing keys need one built with libxkbcommon, or a layout of the host's own.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/audio/key_characters.h"
#include "veltra/base/modifier_flags.h"
#include "veltra/export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace veltra {

class VELTRA_EXPORT QKKeyCodeConverter {
public:
    enum : std::uint32_t {  // modifier flags, the same numbers as those of events
        kShift = kShiftKeyMask,
        kControl = kControlKeyMask,
        kOption = kAlternateKeyMask,
        kCommand = kCommandKeyMask,
        kNumericPad = kNumericPadKeyMask,
        kFunction = kFunctionKeyMask,
    };

    // The signs of the modifiers held, always in the order ⌃⌥⇧⌘.
    static std::optional<std::string> modifierString(std::uint32_t modifierFlags);

    // The names of keys that act, from a table that is searched from its top: by key character the
    // name ("Page up"), by key code and by Mac Roman code the sign ("⇞") or, when there is none,
    // the name. Nothing for other keys and, deliberately, for 0, though 0 is the code of a key:
    // rows without a character have 0 there. F1 to F19 have no Mac Roman code.
    static std::optional<std::string> stringForKeyCharFromTable(std::uint16_t keyChar);
    static std::optional<std::string> stringForKeyCodeFromTable(std::uint16_t keyCode);
    static std::optional<std::string> stringForCharCodeFromTable(std::uint16_t charCode);

    // What a key types in the current layout, as KeyboardLayout says, in capitals if asked for (but
    // ß stays, whose capital is two letters). Nothing without a layout.
    static std::optional<std::string> translateKeyCode(std::uint16_t keyCode, bool& deadKeyState,
                                                       bool toUpperCase);
    static std::optional<std::string> translateKeyCode(std::uint16_t keyCode);  // in capitals

    // Makes the table that keyCodeForKeyChar() and keyCodesForKeyChar() read, if there is none yet;
    // they do so themselves. Deliberate: it is made once, and a later change of the layout does not
    // change it, so that shortcuts stay where they are while a program runs.
    static void generateKeyCharToKeyCodeLUT();

    // The Mac Roman code of what a key types, '?' for a character that the encoding lacks; 0 for a
    // key that types nothing.
    static std::uint8_t keyCharForKeyCode(std::uint16_t keyCode);

    // The lowest of the key codes 0 to 128 that type a character, 0 when there is none, and whether
    // there are several.
    static std::uint16_t keyCodeForKeyChar(std::uint8_t keyChar, bool& foundMoreThanOneKeycode);

    // All of them, ascending; null when there is none. Lives as long as the program.
    static const std::vector<std::uint16_t>* keyCodesForKeyChar(std::uint8_t keyChar);

    // The number of the sign that menus draw for a key; 0 for none.
    static std::int32_t glyphForKeycode(std::uint16_t keyCode) noexcept;

    // The key character of a key that acts, with the flags that such a key implies added to
    // `modifierFlags`; otherwise what the key types, with the flags left alone.
    static std::optional<std::string> appKitStringForKeycode(std::uint16_t keyCode,
                                                             std::int32_t& modifierFlags);

    // Text to show: the signs of the modifiers, then the key by its sign, its name or what it types
    // in capitals. When the key has no text, the first returns the modifiers alone, the others
    // nothing.
    static std::optional<std::string> stringForKeycode(std::uint16_t keyCode,
                                                       std::uint32_t modifierFlags);
    static std::optional<std::string> stringForMacRomanCharCode(std::uint8_t charCode,
                                                                std::uint32_t modifierFlags);
    // By name ("Page up"), never by sign.
    static std::optional<std::string> humandReadableStringForKeyChar(std::uint16_t keyChar,
                                                                     std::uint32_t modifierFlags);

    QKKeyCodeConverter() = delete;
};

}  // namespace veltra
