// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/file_url.h"

#include "veltra/Source/Extensions/detail/path_extension.h"

#include <charconv>

namespace veltra::detail {

namespace {

// Takes `prefix` off the front of `text` if it is there, in small or capital letters.
bool take(std::string_view prefix, std::string_view& text) noexcept {
    if (!isSameExtension(text.substr(0, prefix.size()), prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

}  // namespace

std::optional<std::string> pathOfFileUrl(std::string_view url) {
    if (!take("file:", url)) return std::nullopt;
    if (take("//", url)) take("localhost", url);
    if (!url.starts_with('/')) return std::nullopt;
    url = url.substr(0, url.find_first_of("?#"));

    std::string path;
    for (std::size_t index = 0; index < url.size(); ++index) {
        if (url[index] == '\0') return std::nullopt;
        if (url[index] != '%') {
            path += url[index];
            continue;
        }
        unsigned code = 0;
        if (url.size() - index < 3) return std::nullopt;
        const char* const digits = url.data() + index + 1;
        if (std::from_chars(digits, digits + 2, code, 16).ptr != digits + 2 || code == 0)
            return std::nullopt;
        path += static_cast<char>(static_cast<unsigned char>(code));
        index += 2;
    }
    return path;
}

}  // namespace veltra::detail
