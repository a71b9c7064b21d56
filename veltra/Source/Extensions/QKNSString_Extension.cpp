// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSString_Extension.h"

#include "veltra/Source/Extensions/detail/control_characters.h"
#include "veltra/base/ascii_case.h"
#include "veltra/base/utf16_text.h"
#include "veltra/base/utf8.h"
#include "veltra/platform/c_locale.h"
#include "veltra/platform/text_services.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace veltra {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// Blanks, a sign, digits: whether one of the digits is not 0. So no number is too large.
bool beginsWithNonZero(std::string_view text) noexcept {
    const auto skipBlanks = text.find_first_not_of(" \t\n\v\f\r");
    if (skipBlanks == std::string_view::npos) return false;
    text.remove_prefix(skipBlanks);
    if (text[0] == '+' || text[0] == '-') text.remove_prefix(1);
    const std::size_t place = text.find_first_not_of('0');
    return place != std::string_view::npos && text[place] >= '1' && text[place] <= '9';
}

std::string_view xmlEntity(char32_t character) noexcept {
    switch (character) {
        case U'&':
            return "&amp;";
        case U'<':
            return "&lt;";
        case U'>':
            return "&gt;";
        case U'\'':
            return "&apos;";
        case U'"':
            return "&quot;";
        default:
            return {};
    }
}

// The text with what `replacing(part, character)` returns in place of each character.
template <typename Replacing>
std::string replacedByCharacter(std::string_view text, Replacing replacing) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter first = firstCharacter(text);
        result += replacing(text.substr(0, first.length), first);
        text.remove_prefix(first.length);
    }
    return result;
}

}  // namespace

bool containsSubstring(std::string_view text, std::string_view substring,
                       CompareOptions options) noexcept {
    return find(text, substring, options).has_value();
}

bool boolValue(std::string_view text) noexcept {
    for (const std::string_view yes : {"YES", "TRUE", "Y"})
        if (equalButForAsciiCase(text, yes)) return true;
    return beginsWithNonZero(text);
}

std::string stringByConvertingToXML(std::string_view text) {
    return replacedByCharacter(text, [](std::string_view part, const DecodedCharacter& character) {
        if (!character.isWellFormed) return kReplacement;
        if (detail::isControlCharacter(character.code)) return std::string_view();
        const std::string_view entity = xmlEntity(character.code);
        return entity.empty() ? part : entity;
    });
}

std::optional<std::string> stringWithCStringFormat(const char* format, ...) {
    if (format == nullptr) return std::nullopt;
    const CLocale decimalPoints;
    std::array<char, 256> usual;
    std::va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start() is just above
    const int length = std::vsnprintf(usual.data(), usual.size(), format, arguments);
    va_end(arguments);
    if (length < 0) return std::nullopt;
    const auto size = static_cast<std::size_t>(length);
    if (size < usual.size()) return std::string(usual.data(), size);

    std::string result(size, '\0');
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): and again
    const int written = std::vsnprintf(result.data(), size + 1, format, arguments);
    va_end(arguments);
    if (written != length) return std::nullopt;
    return result;
}

std::optional<std::string> stringWithMacRomanString(const char* text) {
    if (text == nullptr) return std::nullopt;
    const std::optional<std::u16string> units = TextServices::current().fromLegacy(text);
    return units ? utf8From(*units) : std::nullopt;
}

std::optional<std::string> macRomanString(std::string_view text) {
    const std::optional<std::u16string> units = utf16From(text);
    if (!units) return std::nullopt;
    std::string bytes(units->size(), '\0');
    const std::optional<std::size_t> written = TextServices::current().toLegacy(*units, '?', bytes);
    if (!written) return std::nullopt;
    bytes.resize(*written);
    return bytes;
}

std::optional<std::string> stringWithFileSystemRepresentationWithPath(const char* path) {
    if (path == nullptr) return std::nullopt;
    return std::string(path);
}

std::string stringByDeletingCharactersInSet(std::string_view text, const CharacterSet& set) {
    return stringByReplacingCharactersInSet(text, set, {});
}

std::string _stringByDeletingCharactersInSet(std::string_view text, const CharacterSet& set) {
    return stringByDeletingCharactersInSet(text, set);
}

std::string stringByReplacingCharactersInSet(std::string_view text, const CharacterSet& set,
                                             std::string_view replacement) {
    return replacedByCharacter(text, [&](std::string_view part, const DecodedCharacter& character) {
        return character.isWellFormed && set.contains(character.code) ? replacement : part;
    });
}

}  // namespace veltra
