// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/data_folders.h"

#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/process.h"

#include <algorithm>

namespace veltra::detail {

namespace {

constexpr std::string_view kSystemFolders = "/usr/local/share:/usr/share";

std::string_view variable(const char* name) noexcept {
    const char* const value = environmentVariable(name);
    return value != nullptr ? value : "";
}

std::string withoutLastSlashes(std::string_view folder) {
    while (folder.size() > 1 && folder.back() == '/')
        folder.remove_suffix(1);
    return std::string(folder);
}

}  // namespace

std::string userDataFolder() {
    const std::string_view named = variable("XDG_DATA_HOME");
    if (named.starts_with('/')) return withoutLastSlashes(named);  // others are to be ignored
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
        const std::string_view folder = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (folder.starts_with('/')) folders.push_back(withoutLastSlashes(folder));
    }
    return folders;
}

}  // namespace veltra::detail
