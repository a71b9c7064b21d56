// SPDX-License-Identifier: MIT
#include "veltra/base/utf16_text.h"

#include "veltra/base/utf8.h"

namespace veltra {

std::optional<std::u16string> utf16From(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter first = firstCharacter(text);
        if (!first.isWellFormed) return std::nullopt;
        char16_t units[2];
        putUtf16(units, first.code);
        result.append(units, utf16Length(first.code));
        text.remove_prefix(first.length);
    }
    return result;
}

std::optional<std::string> utf8From(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter first = firstCharacter(text);
        if (!first.isWellFormed) return std::nullopt;
        char bytes[4];
        putUtf8(bytes, first.code);
        result.append(bytes, utf8Length(first.code));
        text.remove_prefix(first.length);
    }
    return result;
}

}  // namespace veltra
