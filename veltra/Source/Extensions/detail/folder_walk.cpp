// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/folder_walk.h"

#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/platform/open_item.h"

#include <new>
#include <vector>

namespace veltra::detail {

namespace {

using Access = FileSystem::Access;
using LastLink = FileSystem::LastLink;

// The names in the folder that `opened` becomes.
std::error_code namesIn(const std::string& path, LastLink lastLink, OpenItem& opened,
                        std::vector<std::string>& names) {
    std::error_code error =
        opened.open(FileSystem::kWorkingFolder, path.c_str(), Access::List, lastLink);
    if (!error) error = FileSystem::current().list(opened.handle(), names);
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    return error;
}

}  // namespace

bool walkFolder(const std::string& folder,
                const std::function<bool(const std::string& path, bool isFolder)>& visit) {
    FileSystem& files = FileSystem::current();
    std::vector<std::string> waiting{folder};
    for (bool isFirst = true; !waiting.empty(); isFirst = false) {
        const std::string path = std::move(waiting.back());
        waiting.pop_back();
        OpenItem opened(files);
        std::vector<std::string> names;
        if (namesIn(path, isFirst ? LastLink::Follow : LastLink::Keep, opened, names)) {
            if (isFirst) return false;
            continue;
        }
        for (const std::string& name : names) {
            FileFacts facts;
            const bool isFolder =
                !files.facts(opened.handle(), name.c_str(), LastLink::Keep, facts) &&
                facts.kind == FileKind::Folder;
            std::string inside = pathIn(path, name);
            if (visit(inside, isFolder) && isFolder) waiting.push_back(std::move(inside));
        }
    }
    return true;
}

}  // namespace veltra::detail
