// SPDX-License-Identifier: MIT
// Questions about files and folders, and making them.
//
// Paths are bytes, as the system has them: UTF-8 nearly always, but a name that is not is listed
// and opened like any other. A path that is empty or has a NUL in it names nothing. Every function
// is safe on any thread and beside any others, returns its neutral value when memory is out, and
// throws nothing. Thread: any. Realtime-safe: no, all of them.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

// Whether the item itself is a symbolic link, wherever that leads.
VELTRA_EXPORT bool isSymbolicLinkAtPath(std::string_view path) noexcept;

// Whether the item is a folder, or a link to one.
VELTRA_EXPORT bool isDirectoryAtPath(std::string_view path) noexcept;

// Whether the item is a package: a folder that people see as one thing, such as a plug-in. The
// framework takes for one a folder (not a link to one) with a folder "Contents" in it, or with one
// of the extensions app, bundle, component, framework, lv2, plugin, vst, vst3, in small or capital
// letters.
VELTRA_EXPORT bool isFilePackageAtPath(std::string_view path) noexcept;

// Puts a host's own rule in place of that one, for everything here; it is asked about folders only.
// Null goes back to the framework's. Returns the rule before, null for the framework's.
using FilePackageRule = bool (*)(std::string_view path) noexcept;
VELTRA_EXPORT FilePackageRule setFilePackageRule(FilePackageRule rule) noexcept;

struct DirectoryAttributes {
    // The lower 12 bits of a POSIX mode, to be set exactly. Nothing: what the process gives (0777
    // less its umask).
    std::optional<std::uint32_t> permissions;
};

// Makes the folder and all that are missing on the way to it. Those that exist stay as they are.
// Folders on the way can always be written to by their owner. Returns true when the folder is there
// at the end, also when somebody else was faster; false when something else is in the way or the
// system refuses, as it may where the umask takes reading from the owner. Folders that were made
// until then stay.
VELTRA_EXPORT bool createDirectoriesRecursivelyAtPath(
    std::string_view path, const DirectoryAttributes& attributes = {}) noexcept;
VELTRA_EXPORT bool makeSureDirectoryExistsAtPath(std::string_view path) noexcept;

// The paths of all items in a folder, each `path` and what leads on from there, in the order of
// their bytes. With `traverseSubpaths` also of what is in folders below; packages are one item
// unless `traverseFilePackages`. Links are listed, but not followed. A folder below that may not be
// read counts as empty. Nothing when `path` itself cannot be read.
VELTRA_EXPORT std::optional<std::vector<std::string>> contentPathsAtPath(
    std::string_view path, bool traverseSubpaths, bool traverseFilePackages = false) noexcept;

// The names in a folder whose extension, behind their last point, is `withPathExtension`, in small
// or capital letters, in the order of their bytes. A name that only begins with a point has none.
// With an empty extension: those that have none. Nothing when the folder cannot be read.
VELTRA_EXPORT std::optional<std::vector<std::string>> directoryContentsAtPath(
    std::string_view path, std::string_view withPathExtension) noexcept;

// The path of what is there: `file` as it stands, else with "." and the first of `withExtensions`
// that there is. The second form looks in a folder. Nothing when there is none of them.
VELTRA_EXPORT std::optional<std::string> resolveFile(
    std::string_view file, const std::vector<std::string>& withExtensions) noexcept;
VELTRA_EXPORT std::optional<std::string> resolveFile(
    std::string_view file, std::string_view inDirectory,
    const std::vector<std::string>& withExtensions) noexcept;

// A name that nothing in the folder `path` has at the moment: "Take.wav", else "Take 2.wav", "Take
// 3.wav" and so on. A name that would be too long loses characters before the number. Only a
// suggestion: two who ask at the same time may get the same. Nothing when `withFileName` is empty
// or has a "/" or NUL in it, or the folder cannot be looked into.
VELTRA_EXPORT std::optional<std::string> uniqueFileNameAtPath(
    std::string_view path, std::string_view withFileName, std::string_view andExtension) noexcept;

// Makes an empty file of such a name and returns the name: no one else gets it. Nothing also when
// the system refuses to make files there.
VELTRA_EXPORT std::optional<std::string> createUniqueFile(std::string_view path,
                                                          std::string_view withFileName,
                                                          std::string_view andExtension) noexcept;

}  // namespace veltra
