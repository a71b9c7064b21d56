// SPDX-License-Identifier: MIT
#include "veltra/platform/start_of_file.h"

#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/open_item.h"

#include <algorithm>
#include <span>

namespace veltra {

std::optional<std::string> startOfFile(const std::string& path, std::size_t limit) {
    constexpr std::size_t kPiece = 16'384;  // bytes
    const NoCancellation whileFilesAreRead;
    FileSystem& files = FileSystem::current();
    OpenItem file(files);
    FileFacts facts;
    if (file.open(FileSystem::kWorkingFolder, path.c_str(), OpenItem::Access::Read,
                  OpenItem::LastLink::Follow) ||
        files.facts(file.handle(), "", OpenItem::LastLink::Follow, facts) ||
        facts.kind != FileKind::File)
        return std::nullopt;
    std::string text;
    while (text.size() < limit) {
        const std::size_t size = text.size();
        text.resize(size + std::min(limit - size, kPiece));
        std::size_t count = 0;
        if (files.read(file.handle(), std::as_writable_bytes(std::span(text).subspan(size)), count))
            return std::nullopt;
        text.resize(size + count);
        if (count == 0) break;
    }
    return text;
}

}  // namespace veltra
