// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/alias_file.h"

#include "veltra/Source/Extensions/detail/file_url.h"
#include "veltra/base/text_parts.h"
#include "veltra/platform/resources.h"

namespace veltra::detail {

namespace {

constexpr std::size_t kLargestAlias = 65536;  // bytes

}  // namespace

std::optional<std::string> targetOfAlias(const std::string& path) {
    if (!path.ends_with(".desktop")) return std::nullopt;
    const std::optional<std::string> text = textOfFile(path, kLargestAlias);
    if (!text) return std::nullopt;
    bool isInEntry = false;
    bool isLink = false;
    std::string_view url;
    for (std::string_view rest = *text; !rest.empty();) {
        const std::string_view line = trimmed(takeUpTo('\n', rest));
        const std::size_t equal = line.find('=');
        if (line.starts_with('[')) isInEntry = line == "[Desktop Entry]";
        if (!isInEntry || line.starts_with('#') || equal == std::string_view::npos) continue;
        const std::string_view key = trimmed(line.substr(0, equal));
        const std::string_view value = trimmed(line.substr(equal + 1));
        if (key == "Type") isLink = value == "Link";
        if (key == "URL") url = value;
    }
    if (!isLink) return std::nullopt;
    return pathOfFileUrl(url);
}

}  // namespace veltra::detail
