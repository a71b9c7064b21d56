// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/small_file.h"

#include "veltra/Source/Extensions/detail/file_url.h"
#include "veltra/Source/Extensions/detail/open_item.h"

#include <algorithm>

namespace veltra {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

}  // namespace

std::optional<std::string> startOfFile(const std::string& path) {
    FileSystem& files = FileSystem::current();
    OpenItem file(files);
    FileFacts facts;
    if (file.open(FileSystem::kWorkingFolder, path.c_str(), OpenItem::Access::Read,
                  OpenItem::LastLink::Follow) ||
        files.facts(file.handle(), "", OpenItem::LastLink::Follow, facts) ||
        facts.kind != FileKind::File)
        return std::nullopt;
    std::string text(kSmallFile + 1, '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        std::size_t count = 0;
        if (files.read(file.handle(), std::as_writable_bytes(std::span(text).subspan(size)), count))
            return std::nullopt;
        if (count == 0) break;
        size += count;
    }
    text.resize(size);
    return text;
}

std::string_view takeLine(std::string_view& text) noexcept {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

std::optional<std::string> targetOfAlias(const std::string& path) {
    if (!path.ends_with(".desktop")) return std::nullopt;
    const std::optional<std::string> text = startOfFile(path);
    if (!text || text->size() > kSmallFile) return std::nullopt;
    bool isInEntry = false;
    bool isLink = false;
    std::string_view url;
    for (std::string_view rest = *text; !rest.empty();) {
        const std::string_view line = trimmed(takeLine(rest));
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

}  // namespace veltra
