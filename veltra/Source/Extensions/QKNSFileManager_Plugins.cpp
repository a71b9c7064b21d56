// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSFileManager_Plugins.h"

#include "veltra/Source/Extensions/QKNSFileManager_Extensions.h"
#include "veltra/Source/Extensions/QKNSString_Paths.h"
#include "veltra/Source/Extensions/detail/data_folders.h"
#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/Source/Extensions/detail/folder_walk.h"
#include "veltra/Source/Extensions/detail/path_extension.h"
#include "veltra/platform/resources.h"

#include <algorithm>

namespace veltra {

std::vector<std::string> pluginSearchPaths(std::string_view folderName) noexcept {
    return detail::answerAboutFiles(std::vector<std::string>(), [&] {
        std::vector<std::string> paths;
        const bool isRelative = !folderName.starts_with('/') &&
                                folderName.find('\0') == std::string_view::npos &&
                                !containsPathComponent(folderName, "..", CompareOption::Literal);
        if (!isRelative) return paths;
        std::vector<std::string> folders = detail::dataFolders();
        folders.push_back(executableFolder());
        for (const std::string& folder : folders) {
            std::string path = folderName.empty() ? folder : detail::pathIn(folder, folderName);
            if (!folder.empty() && std::find(paths.begin(), paths.end(), path) == paths.end())
                paths.push_back(std::move(path));
        }
        return paths;
    });
}

std::optional<std::vector<std::string>> searchForPlugins(std::string_view withExtension,
                                                         std::string_view inFolder) noexcept {
    using Answer = std::optional<std::vector<std::string>>;
    return detail::answerAboutFiles(Answer(), [&]() -> Answer {
        std::vector<std::string> found;
        const bool isRead =
            detail::canBePath(inFolder) && !withExtension.empty() &&
            detail::walkFolder(std::string(inFolder), [&](const std::string& item, bool isFolder) {
                const bool isPlugin =
                    detail::isSameExtension(detail::extensionOf(item), withExtension);
                if (isPlugin) found.push_back(item);
                return isFolder && !isPlugin && !isFilePackageAtPath(item);
            });
        if (!isRead) return std::nullopt;
        std::sort(found.begin(), found.end());
        return found;
    });
}

}  // namespace veltra
