// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/group_text.h"

#include <algorithm>
#include <limits>

namespace veltra {

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kMinus = "\xE2\x88\x92";

std::int32_t numberOf(std::string_view digits, bool isNegative) noexcept {
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    std::int64_t number = 0;
    for (const char digit : digits)
        number = std::min<std::int64_t>(number * 10 + (digit - '0'), kMost + 1);
    return static_cast<std::int32_t>(isNegative ? -number : std::min(number, kMost));
}

}  // namespace

std::optional<std::vector<std::int32_t>> groupsInText(std::string_view text, std::size_t count) {
    std::vector<std::int32_t> groups;
    for (std::size_t at = text.find_first_of(kDigits); at != std::string_view::npos;
         at = text.find_first_of(kDigits)) {
        if (groups.size() == count) return std::nullopt;
        const std::string_view before = text.substr(0, at);
        const bool isNegative =
            groups.empty() && (before.ends_with('-') || before.ends_with(kMinus));
        text.remove_prefix(at);
        const std::size_t length = std::min(text.find_first_not_of(kDigits), text.size());
        groups.push_back(numberOf(text.substr(0, length), isNegative));
        text.remove_prefix(length);
    }
    if (groups.empty()) return std::nullopt;
    groups.resize(count);
    return groups;
}

}  // namespace veltra
