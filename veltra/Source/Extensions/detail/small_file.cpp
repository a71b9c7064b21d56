// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/small_file.h"

#include "veltra/Source/Extensions/detail/file_url.h"
#include "veltra/Source/Extensions/detail/open_item.h"
#include "veltra/base/text_parts.h"

namespace veltra {

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

std::optional<std::string> targetOfAlias(const std::string& path) {
    if (!path.ends_with(".desktop")) return std::nullopt;
    const std::optional<std::string> text = startOfFile(path);
    if (!text || text->size() > kSmallFile) return std::nullopt;
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

}  // namespace veltra
