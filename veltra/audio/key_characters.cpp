// SPDX-License-Identifier: MIT
#include "veltra/audio/key_characters.h"

#include <cstdint>

namespace veltra {

namespace {

struct KeyCharacter {
    unsigned char code;
    std::uint16_t character;
};

constexpr KeyCharacter kKeyCharacters[] = {
    {0x01, 0xF729},  // Home
    {0x04, 0xF72B},  // End
    {0x05, 0xF746},  // Help
    {0x0B, 0xF72C},  // Page up
    {0x0C, 0xF72D},  // Page down
    {0x1B, 0xF739},  // Clear
    {0x1C, 0xF702},  // Left
    {0x1D, 0xF703},  // Right
    {0x1E, 0xF700},  // Up
    {0x1F, 0xF701},  // Down
    {0x7F, 0xF728},  // forward Delete
};

constexpr std::uint16_t kF1 = 0xF704, kF35 = 0xF726;
constexpr unsigned char kFunctionKey = 16;

}  // namespace

uint16_t MacRomanCharacterCode2AppKitCode(unsigned char code) noexcept {
    for (const KeyCharacter& key : kKeyCharacters) {
        if (key.code == code) return key.character;
    }
    return code;
}

unsigned char AppKitFunctionKey2MacRomanCharCode(uint16_t character) noexcept {
    if (character >= kF1 && character <= kF35) return kFunctionKey;
    for (const KeyCharacter& key : kKeyCharacters) {
        if (key.character == character) return key.code;
    }
    return 0;
}

}  // namespace veltra
