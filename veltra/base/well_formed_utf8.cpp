// SPDX-License-Identifier: MIT
#include "veltra/base/well_formed_utf8.h"

#include "veltra/base/utf8.h"

namespace veltra {

bool isWellFormedUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const DecodedCharacter first = firstCharacter(text);
        if (!first.isWellFormed) return false;
        text.remove_prefix(first.length);
    }
    return true;
}

std::string wellFormedUtf8(std::string text) {
    if (isWellFormedUtf8(text)) return text;
    std::string result;
    for (std::string_view rest = text; !rest.empty();) {
        const DecodedCharacter first = firstCharacter(rest);
        result +=
            first.isWellFormed ? rest.substr(0, first.length) : std::string_view("\xEF\xBF\xBD");
        rest.remove_prefix(first.length);
    }
    return result;
}

}  // namespace veltra
