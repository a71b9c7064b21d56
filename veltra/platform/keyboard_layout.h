// SPDX-License-Identifier: MIT
// What the keys of the keyboard type, in the layout that the user has chosen.
//
// Keys are told by their virtual key codes, which name places on the keyboard and are the same for
// every layout: 0x00 is the key that types "a" on an American keyboard, 0x7A is F1.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace veltra {

// What one key types, alone, without modifiers.
struct KeyTranslation {
    // Empty for a key that types nothing; the accent by itself for a dead key (on U+25CC when
    // Unicode has the accent for letters only). Keys that act rather
    // than type have control characters: 0x1C to 0x1F the arrows left, right, up and down, 0x01
    // Home, 0x04 End, 0x05 Help, 0x0B and 0x0C Page up and Page down, 0x10 every function key,
    // 0x03 Enter, 0x1B Clear, 0x7F forward Delete; and Tab, Return, Delete, Escape as usual.
    std::u16string text;

    bool isDeadKey = false;  // waits for a second key to put its accent on
};

class KeyboardLayout;
extern template class VELTRA_EXPORT Installable<const KeyboardLayout>;

// The platform's own is the layout of the display that DISPLAY names; without one, that of the
// XKB_DEFAULT_ variables; without those, the one configured for the machine. It is read when it is
// first asked, and looked at again when it is asked a second or more later. The display is asked
// over one connection that is kept, and only when it has told of a change: a display that stops
// answering holds up the first question alone. There is none when the library was built without
// libxkbcommon.
class VELTRA_EXPORT KeyboardLayout : public Installable<const KeyboardLayout> {
public:
    virtual ~KeyboardLayout();

    // What a key types in the layout of this moment; nothing when there is no layout or memory is
    // out.
    // Thread: main. Realtime-safe: no.
    virtual std::optional<KeyTranslation> translate(std::uint16_t keyCode) const noexcept = 0;
};

}  // namespace veltra
