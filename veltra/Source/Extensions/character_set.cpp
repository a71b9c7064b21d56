// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/character_set.h"

#include "veltra/Source/Extensions/detail/control_characters.h"
#include "veltra/base/utf8.h"

#include <algorithm>
#include <utility>

namespace veltra {

namespace {

constexpr char32_t kLastCodePoint = 0x10FFFF;

}  // namespace

CharacterSet::CharacterSet(std::initializer_list<CharacterRange> ranges)
    : CharacterSet(std::vector<CharacterRange>(ranges)) {}

CharacterSet::CharacterSet(std::vector<CharacterRange> ranges) {
    std::sort(ranges.begin(), ranges.end(),
              [](const CharacterRange& one, const CharacterRange& other) {
                  return one.first < other.first;
              });
    for (const CharacterRange& range : ranges) {
        if (range.last < range.first) continue;
        if (!m_ranges.empty() && range.first <= m_ranges.back().last)
            m_ranges.back().last = std::max(m_ranges.back().last, range.last);
        else
            m_ranges.push_back(range);
    }
}

CharacterSet CharacterSet::withCharactersInString(std::string_view characters) {
    std::vector<CharacterRange> ranges;
    while (!characters.empty()) {
        const DecodedCharacter first = firstCharacter(characters);
        if (first.isWellFormed) ranges.push_back({first.code, first.code});
        characters.remove_prefix(first.length);
    }
    return CharacterSet(std::move(ranges));
}

CharacterSet CharacterSet::controlCharacterSet() {
    return CharacterSet(std::vector<CharacterRange>(std::begin(detail::kControlCharacters),
                                                    std::end(detail::kControlCharacters)));
}

CharacterSet CharacterSet::inverted() const {
    std::vector<CharacterRange> between;
    char32_t next = 0;
    for (const CharacterRange& range : m_ranges) {
        if (range.first > kLastCodePoint) break;
        if (range.first > next) between.push_back({next, range.first - 1});
        if (range.last >= kLastCodePoint) return CharacterSet(std::move(between));
        next = range.last + 1;
    }
    between.push_back({next, kLastCodePoint});
    return CharacterSet(std::move(between));
}

bool CharacterSet::contains(char32_t character) const noexcept {
    const auto after = std::upper_bound(
        m_ranges.begin(), m_ranges.end(), character,
        [](char32_t value, const CharacterRange& range) { return value < range.first; });
    return after != m_ranges.begin() && character <= std::prev(after)->last;
}

}  // namespace veltra
