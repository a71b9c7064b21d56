// SPDX-License-Identifier: MIT
#include "veltra/platform/resources.h"

#include "veltra/base/immortal.h"
#include "veltra/platform/fork_safe_lock.h"
#include "veltra/platform/port.h"
#include "veltra/platform/start_of_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <utility>

namespace veltra {

namespace {

namespace fs = std::filesystem;

struct HostFolder {
    HostFolder() { lock.holdAcrossForks(); }

    ForkSafeLock lock;  // nothing is allocated or freed under it
    std::shared_ptr<const std::string> path;
};

HostFolder& hostFolder() {
    static const Immortal<HostFolder> folder;
    return *folder;
}

// Below the folder from which a name is looked up.
bool staysInside(const fs::path& name) {
    return !name.empty() && name.is_relative() &&
           std::none_of(name.begin(), name.end(),
                        [](const fs::path& step) { return step == ".."; });
}

}  // namespace

std::string executableFolder() {
    return fs::path(platformExecutablePath()).parent_path();
}

std::string hostDataFolder() {
    const fs::path program = platformExecutablePath();
    if (program.empty()) return {};
    return (program.parent_path() / ".." / "share" / program.filename()).lexically_normal();
}

void setResourceFolder(std::string folder) {
    auto path = std::make_shared<const std::string>(std::move(folder));
    const std::lock_guard lock(hostFolder().lock);
    hostFolder().path.swap(path);
}

std::vector<std::string> resourceFolders() {
    std::shared_ptr<const std::string> first;
    {
        const std::lock_guard lock(hostFolder().lock);
        first = hostFolder().path;
    }
    std::vector<std::string> folders;
    if (first != nullptr) folders.push_back(*first);
    folders.push_back(hostDataFolder());
    if (const fs::path library = platformLibraryPath(); !library.empty()) {
        for (const char* way : {"../share/veltra", "../../share/veltra"})
            folders.push_back((library.parent_path() / way).lexically_normal());
    }
    std::erase(folders, std::string());
    return folders;
}

std::string pathOfResourceIn(const std::string& folder, std::string_view name,
                             std::string_view extension) {
    std::string file(name);
    if (!extension.empty()) file.append(1, '.').append(extension);
    if (folder.empty() || file.find('\0') != std::string::npos || !staysInside(name) ||
        !staysInside(file))
        return {};
    std::string path = fs::path(folder) / file;
    std::error_code error;
    return fs::is_regular_file(path, error) ? path : std::string();
}

std::string pathOfResource(std::string_view name, std::string_view extension) {
    for (const std::string& folder : resourceFolders()) {
        std::string path = pathOfResourceIn(folder, name, extension);
        if (!path.empty()) return path;
    }
    return {};
}

std::vector<std::string> pathsOfImageResource(std::string_view name) {
    std::vector<std::string> paths;
    if (name.empty()) return paths;
    for (const char* ending : {"_pro", ""}) {
        for (const char* extension : {"tiff", "png"}) {
            std::string path = pathOfResource(std::string(name) + ending, extension);
            if (!path.empty()) paths.push_back(std::move(path));
        }
    }
    return paths;
}

std::optional<std::string> textOfFile(const std::string& path, std::size_t limit) {
    std::optional<std::string> text = startOfFile(path, std::min(limit, SIZE_MAX - 1) + 1);
    return text && text->size() <= limit ? std::move(text) : std::nullopt;
}

}  // namespace veltra
