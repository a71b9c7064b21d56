// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/data_folders.h"

#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/process.h"

#include <algorithm>

namespace veltra {

namespace {

constexpr std::string_view kSystemFolders = "/usr/local/share:/usr/share";

std::string_view variable(const char* name) noexcept {
    const char* const value = environmentVariable(name);
    return value != nullptr ? value : "";
}

}  // namespace

std::string userDataFolder() {
    const std::string_view named = variable("XDG_DATA_HOME");
    if (named.starts_with('/')) return std::string(named);  // a relative one is to be ignored
    const std::string home = FileSystem::current().homeFolder({});
    return home.empty() ? std::string() : pathIn(home, ".local/share");
}

std::vector<std::string> dataFolders() {
    const bool isTrusted = !Process::current().isSetUserOrGroupId();
    std::vector<std::string> folders;
    if (isTrusted) folders.push_back(userDataFolder());
    std::string_view rest = isTrusted ? variable("XDG_DATA_DIRS") : std::string_view();
    if (rest.empty()) rest = kSystemFolders;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        std::string_view folder = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        while (folder.size() > 1 && folder.back() == '/')
            folder.remove_suffix(1);
        if (folder.starts_with('/')) folders.emplace_back(folder);
    }
    return folders;
}

}  // namespace veltra
