// SPDX-License-Identifier: MIT
#include "veltra/audio/key_code_converter.h"

#include "veltra/base/immortal.h"
#include "veltra/base/utf16_text.h"
#include "veltra/platform/keyboard_layout.h"
#include "veltra/platform/text_services.h"

#include <array>
#include <iterator>
#include <map>
#include <string_view>

namespace veltra {

namespace {

using Converter = QKKeyCodeConverter;
using Text = std::optional<std::string>;
using Utf16 = std::optional<std::u16string>;

struct NamedKey {
    const char* name;
    std::uint16_t keyCode;
    std::uint16_t charCode;   // Mac Roman
    std::uint16_t glyph;      // 0 for none
    std::uint16_t menuGlyph;  // 0 for none
    std::uint16_t keyChar;
    std::uint32_t flags;  // that the key implies
};

constexpr std::uint32_t kFn = Converter::kFunction;
constexpr std::uint32_t kPad = Converter::kFunction | Converter::kNumericPad;

// The first match wins: the second Tab, with the sign for tabbing back, is never found, and Escape
// comes before Clear, which has the same character. Deliberate: Enter's character is 0x03, and
// Space's sign is U+02FD.
// clang-format off
constexpr NamedKey kNamedKeys[] = {
    {"Tab",       0x30, 0x09, 0x21E5,   2, 0x0009, 0},
    {"Tab",       0x30, 0x09, 0x21E4,   3, 0x0009, 0},
    {"Enter",     0x4C, 0x03, 0x2305,   4, 0x0003, 0},
    {"Space",     0x31, 0x20, 0x02FD,   9, 0x0020, 0},
    {"Delete",    0x75, 0x7F, 0x2326,  10, 0xF728, kFn},
    {"Delete",    0x33, 0x08, 0x232B,  23, 0x007F, 0},
    {"Return",    0x24, 0x0D, 0x21A9,  11, 0x000D, 0},
    {"Escape",    0x35, 0x1B, 0x238B,  27, 0x001B, 0},
    {"Clear",     0x47, 0x1B, 0x2327,  28, 0xF739, kFn},
    {"Page up",   0x74, 0x0B, 0x21DE,  98, 0xF72C, kFn},
    {"Page down", 0x79, 0x0C, 0x21DF, 107, 0xF72D, kFn},
    {"Left",      0x7B, 0x1C, 0x2190, 100, 0xF702, kPad},
    {"Right",     0x7C, 0x1D, 0x2192, 101, 0xF703, kPad},
    {"Up",        0x7E, 0x1E, 0x2191, 104, 0xF700, kPad},
    {"Down",      0x7D, 0x1F, 0x2193, 106, 0xF701, kPad},
    {"Home",      0x73, 0x01, 0x2196, 102, 0xF729, kFn},
    {"End",       0x77, 0x04, 0x2198, 105, 0xF72B, kFn},
    {"Help",      0x72, 0x05, 0,      103, 0xF746, kFn},
    {"F1",        0x7A, 0,    0,      111, 0xF704, 0},
    {"F2",        0x78, 0,    0,      112, 0xF705, 0},
    {"F3",        0x63, 0,    0,      113, 0xF706, 0},
    {"F4",        0x76, 0,    0,      114, 0xF707, 0},
    {"F5",        0x60, 0,    0,      115, 0xF708, 0},
    {"F6",        0x61, 0,    0,      116, 0xF709, 0},
    {"F7",        0x62, 0,    0,      117, 0xF70A, 0},
    {"F8",        0x64, 0,    0,      118, 0xF70B, 0},
    {"F9",        0x65, 0,    0,      119, 0xF70C, 0},
    {"F10",       0x6D, 0,    0,      120, 0xF70D, 0},
    {"F11",       0x67, 0,    0,      121, 0xF70E, 0},
    {"F12",       0x6F, 0,    0,      122, 0xF70F, 0},
    {"F13",       0x69, 0,    0,      135, 0xF710, 0},
    {"F14",       0x6B, 0,    0,      136, 0xF711, 0},
    {"F15",       0x71, 0,    0,      137, 0xF712, 0},
    {"F16",       0x6A, 0,    0,        0, 0xF713, 0},
    {"F17",       0x40, 0,    0,        0, 0xF714, 0},
    {"F18",       0x4F, 0,    0,        0, 0xF715, 0},
    {"F19",       0x50, 0,    0,        0, 0xF716, 0},
};
// clang-format on
static_assert(std::size(kNamedKeys) == 37);

const NamedKey* find(std::uint16_t NamedKey::*column, std::uint16_t value) noexcept {
    if (value == 0) return nullptr;
    for (const NamedKey& key : kNamedKeys) {
        if (key.*column == value) return &key;
    }
    return nullptr;
}

Text utf8FromAny(const Utf16& text) {
    return text.has_value() ? utf8From(*text) : std::nullopt;
}

Text textOfUnit(std::uint16_t unit) {
    const auto character = static_cast<char16_t>(unit);
    return utf8From(std::u16string_view(&character, 1));
}

Text displayText(const NamedKey* key) {
    if (key == nullptr) return std::nullopt;
    return key->glyph != 0 ? textOfUnit(key->glyph) : Text(key->name);
}

std::u16string capitals(std::u16string text) {
    Utf16 upper = TextServices::current().toUpper(text);
    if (!upper.has_value()) {
        for (char16_t& unit : text)
            unit = unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
        return text;
    }
    return *upper == u"SS" ? text : std::move(*upper);
}

Utf16 translate(std::uint16_t keyCode, bool& isDeadKey, bool toUpperCase) {
    std::optional<KeyTranslation> translation = KeyboardLayout::current().translate(keyCode);
    isDeadKey = translation.has_value() && translation->isDeadKey;
    if (!translation.has_value()) return std::nullopt;
    return toUpperCase ? capitals(std::move(translation->text)) : std::move(translation->text);
}

Utf16 translate(std::uint16_t keyCode) {
    bool isDeadKey = false;
    return translate(keyCode, isDeadKey, false);
}

// ASCII needs no converter.
Utf16 fromMacRoman(std::uint8_t code) {
    if (code < 0x80) return std::u16string(1, static_cast<char16_t>(code));
    const char byte = static_cast<char>(code);
    return TextServices::current().fromLegacy({&byte, 1});
}

std::uint8_t firstMacRoman(std::u16string_view text) {
    if (text.empty()) return 0;
    if (text[0] < 0x80) return static_cast<std::uint8_t>(text[0]);
    std::array<char, 1> byte{};
    const auto written = TextServices::current().toLegacy(text, '?', byte);
    return written == 1U ? static_cast<std::uint8_t>(byte[0]) : std::uint8_t{'?'};
}

using KeyCodes = std::vector<std::uint16_t>;
using KeyCodesByText = std::map<std::u16string, KeyCodes, std::less<>>;

KeyCodesByText readLayout() {
    constexpr std::uint16_t kLastKeyCode = 128;
    KeyCodesByText codes;
    for (std::uint16_t keyCode = 0; keyCode <= kLastKeyCode; ++keyCode) {
        Utf16 text = translate(keyCode);
        if (text.has_value()) codes[std::move(*text)].push_back(keyCode);
    }
    return codes;
}

const KeyCodesByText& keyCodesByText() {
    static const Immortal<KeyCodesByText> codes(readLayout());
    return *codes;
}

Text withModifiers(Text name, std::uint32_t modifierFlags) {
    const Text modifiers = Converter::modifierString(modifierFlags);
    if (name.has_value() && modifiers.has_value()) return *modifiers + *name;
    return name;
}

}  // namespace

Text Converter::modifierString(std::uint32_t modifierFlags) {
    constexpr std::pair<std::uint32_t, const char*> kSigns[] = {
        {kControl, "\u2303"}, {kOption, "\u2325"}, {kShift, "\u21E7"}, {kCommand, "\u2318"}};
    std::string signs;
    for (const auto& [flag, sign] : kSigns) {
        if ((modifierFlags & flag) != 0) signs += sign;
    }
    if (signs.empty()) return std::nullopt;
    return signs;
}

Text Converter::stringForKeyCharFromTable(std::uint16_t keyChar) {
    const NamedKey* const key = find(&NamedKey::keyChar, keyChar);
    return key != nullptr ? Text(key->name) : std::nullopt;
}

Text Converter::stringForKeyCodeFromTable(std::uint16_t keyCode) {
    return displayText(find(&NamedKey::keyCode, keyCode));
}

Text Converter::stringForCharCodeFromTable(std::uint16_t charCode) {
    return displayText(find(&NamedKey::charCode, charCode));
}

Text Converter::translateKeyCode(std::uint16_t keyCode, bool& deadKeyState, bool toUpperCase) {
    return utf8FromAny(translate(keyCode, deadKeyState, toUpperCase));
}

Text Converter::translateKeyCode(std::uint16_t keyCode) {
    bool isDeadKey = false;
    return translateKeyCode(keyCode, isDeadKey, true);
}

void Converter::generateKeyCharToKeyCodeLUT() {
    static_cast<void>(keyCodesByText());
}

std::uint8_t Converter::keyCharForKeyCode(std::uint16_t keyCode) {
    const NamedKey* const key = find(&NamedKey::keyCode, keyCode);
    if (key != nullptr) return static_cast<std::uint8_t>(key->charCode);
    return firstMacRoman(translate(keyCode).value_or(std::u16string()));
}

std::uint16_t Converter::keyCodeForKeyChar(std::uint8_t keyChar, bool& foundMoreThanOneKeycode) {
    const KeyCodes* const codes = keyCodesForKeyChar(keyChar);
    foundMoreThanOneKeycode = codes != nullptr && codes->size() > 1;
    return codes != nullptr ? codes->front() : std::uint16_t{0};
}

const KeyCodes* Converter::keyCodesForKeyChar(std::uint8_t keyChar) {
    const KeyCodesByText& all = keyCodesByText();
    const Utf16 text = fromMacRoman(keyChar);
    const auto found = text.has_value() ? all.find(*text) : all.end();
    return found != all.end() ? &found->second : nullptr;
}

std::int32_t Converter::glyphForKeycode(std::uint16_t keyCode) noexcept {
    const NamedKey* const key = find(&NamedKey::keyCode, keyCode);
    return key != nullptr ? key->menuGlyph : 0;
}

Text Converter::appKitStringForKeycode(std::uint16_t keyCode, std::int32_t& modifierFlags) {
    const NamedKey* const key = find(&NamedKey::keyCode, keyCode);
    if (key == nullptr) return utf8FromAny(translate(keyCode));
    modifierFlags |= static_cast<std::int32_t>(key->flags);
    return textOfUnit(key->keyChar);
}

Text Converter::stringForKeycode(std::uint16_t keyCode, std::uint32_t modifierFlags) {
    Text name = stringForKeyCodeFromTable(keyCode);
    if (!name.has_value()) name = translateKeyCode(keyCode);
    return name.has_value() ? withModifiers(std::move(name), modifierFlags)
                            : modifierString(modifierFlags);
}

Text Converter::stringForMacRomanCharCode(std::uint8_t charCode, std::uint32_t modifierFlags) {
    Text name = stringForCharCodeFromTable(charCode);
    if (!name.has_value()) name = utf8FromAny(fromMacRoman(charCode));
    return withModifiers(std::move(name), modifierFlags);
}

Text Converter::humandReadableStringForKeyChar(std::uint16_t keyChar, std::uint32_t modifierFlags) {
    Text name = stringForKeyCharFromTable(keyChar);
    if (!name.has_value())
        name = utf8From(capitals(std::u16string(1, static_cast<char16_t>(keyChar))));
    return withModifiers(std::move(name), modifierFlags);
}

}  // namespace veltra
