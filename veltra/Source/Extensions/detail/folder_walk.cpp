// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/folder_walk.h"

#include "veltra/Source/Extensions/detail/file_answer.h"

#include <filesystem>
#include <vector>

namespace veltra {

bool walkFolder(const std::string& folder,
                const std::function<bool(const std::string& path, bool isFolder)>& visit) {
    std::vector<std::string> waiting{folder};
    bool isFirst = true;
    while (!waiting.empty()) {
        const std::string path = std::move(waiting.back());
        waiting.pop_back();
        std::error_code error;
        std::filesystem::directory_iterator item(path, error);
        if (error && isFirst) return false;
        isFirst = false;
        for (; !error && item != std::filesystem::directory_iterator(); item.increment(error)) {
            std::error_code unknown;
            const bool isFolder =
                item->symlink_status(unknown).type() == std::filesystem::file_type::directory;
            std::string inside = pathIn(path, item->path().filename().string());
            if (visit(inside, isFolder) && isFolder) waiting.push_back(std::move(inside));
        }
    }
    return true;
}

}  // namespace veltra
