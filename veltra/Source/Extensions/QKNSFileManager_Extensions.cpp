// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSFileManager_Extensions.h"

#include "veltra/Source/Extensions/detail/file_answer.h"
#include "veltra/Source/Extensions/detail/folder_walk.h"
#include "veltra/Source/Extensions/detail/path_extension.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/open_item.h"

#include <algorithm>

namespace veltra {

namespace {

using Access = FileSystem::Access;
using LastLink = FileSystem::LastLink;

constexpr std::uint32_t kOnTheWay = 0300;  // its owner may make folders in it
constexpr std::uint32_t kFolderPermissions = 0777;

std::optional<FileKind> kindAt(const std::string& path, LastLink lastLink) noexcept {
    FileFacts facts;
    if (FileSystem::current().facts(FileSystem::kWorkingFolder, path.c_str(), lastLink, facts))
        return std::nullopt;
    return facts.kind;
}

bool isOfKind(std::string_view path, FileKind kind, LastLink lastLink) noexcept {
    return detail::answerAboutFiles(false, [&] {
        return detail::canBePath(path) && kindAt(std::string(path), lastLink) == kind;
    });
}

// Whether `path` is a folder afterwards. One that it makes has at least the permissions `needed`.
bool makeOne(FileSystem& files, const std::string& path, std::optional<std::uint32_t> permissions,
             std::uint32_t needed) {
    constexpr FileSystem::Handle kHere = FileSystem::kWorkingFolder;
    // It must be opened before it gets permissions that may forbid that.
    constexpr std::uint32_t kOwnersOwn = 0700;
    const std::error_code error =
        files.makeFolder(kHere, path.c_str(), permissions ? kOwnersOwn : kFolderPermissions);
    if (error) {
        // Also what may not be written to, or has a link in its place, may be there already.
        return kindAt(path, LastLink::Follow) == FileKind::Folder;
    }
    if (!permissions) {
        FileFacts given;
        if (files.facts(kHere, path.c_str(), LastLink::Keep, given)) return false;
        if ((given.permissions & needed) == needed) return true;
        permissions = given.permissions;
    }
    OpenItem made(files);
    return !made.open(kHere, path.c_str(), Access::List, LastLink::Keep) &&
           !files.setPermissions(made.handle(), *permissions | needed);
}

std::optional<std::string> resolved(const std::string& path,
                                    const std::vector<std::string>& extensions) {
    if (!detail::canBePath(path)) return std::nullopt;
    if (kindAt(path, LastLink::Follow)) return path;
    for (const std::string& extension : extensions) {
        std::string candidate = path;
        candidate.append(".").append(extension);
        if (detail::canBePath(candidate) && kindAt(candidate, LastLink::Follow)) return candidate;
    }
    return std::nullopt;
}

}  // namespace

bool isSymbolicLinkAtPath(std::string_view path) noexcept {
    return isOfKind(path, FileKind::Link, LastLink::Keep);
}

bool isDirectoryAtPath(std::string_view path) noexcept {
    return isOfKind(path, FileKind::Folder, LastLink::Follow);
}

bool createDirectoriesRecursivelyAtPath(std::string_view path,
                                        const DirectoryAttributes& attributes) noexcept {
    return detail::answerAboutFiles(false, [&] {
        if (!detail::canBePath(path)) return false;
        FileSystem& files = FileSystem::current();
        std::string whole(path);
        while (whole.size() > 1 && whole.back() == '/')
            whole.pop_back();
        if (kindAt(whole, LastLink::Follow) == FileKind::Folder) return true;
        for (std::size_t slash = whole.find('/', 1); slash != std::string::npos;
             slash = whole.find('/', slash + 1)) {
            if (whole[slash - 1] == '/') continue;
            const std::string above = whole.substr(0, slash);
            if (kindAt(above, LastLink::Follow) != FileKind::Folder &&
                !makeOne(files, above, attributes.permissions, kOnTheWay))
                return false;
        }
        return makeOne(files, whole, attributes.permissions, 0);
    });
}

bool makeSureDirectoryExistsAtPath(std::string_view path) noexcept {
    return createDirectoriesRecursivelyAtPath(path);
}

std::optional<std::vector<std::string>> contentPathsAtPath(std::string_view path,
                                                           bool traverseSubpaths,
                                                           bool traverseFilePackages) noexcept {
    using Answer = std::optional<std::vector<std::string>>;
    return detail::answerAboutFiles(Answer(), [&]() -> Answer {
        std::vector<std::string> paths;
        const bool isRead =
            detail::canBePath(path) &&
            detail::walkFolder(std::string(path), [&](const std::string& item, bool isFolder) {
                paths.push_back(item);
                return isFolder && traverseSubpaths &&
                       (traverseFilePackages || !isFilePackageAtPath(item));
            });
        if (!isRead) return std::nullopt;
        std::sort(paths.begin(), paths.end());
        return paths;
    });
}

std::optional<std::vector<std::string>> directoryContentsAtPath(
    std::string_view path, std::string_view withPathExtension) noexcept {
    using Answer = std::optional<std::vector<std::string>>;
    return detail::answerAboutFiles(Answer(), [&]() -> Answer {
        std::vector<std::string> names;
        const bool isRead =
            detail::canBePath(path) &&
            detail::walkFolder(std::string(path), [&](const std::string& item, bool) {
                if (detail::isSameExtension(detail::extensionOf(item), withPathExtension))
                    names.emplace_back(detail::lastNameOf(item));
                return false;
            });
        if (!isRead) return std::nullopt;
        std::sort(names.begin(), names.end());
        return names;
    });
}

std::optional<std::string> resolveFile(std::string_view file,
                                       const std::vector<std::string>& withExtensions) noexcept {
    return detail::answerAboutFiles(std::optional<std::string>(),
                                    [&] { return resolved(std::string(file), withExtensions); });
}

std::optional<std::string> resolveFile(std::string_view file, std::string_view inDirectory,
                                       const std::vector<std::string>& withExtensions) noexcept {
    return detail::answerAboutFiles(
        std::optional<std::string>(), [&]() -> std::optional<std::string> {
            if (file.empty()) return std::nullopt;
            return resolved(detail::pathIn(inDirectory, file), withExtensions);
        });
}

}  // namespace veltra
