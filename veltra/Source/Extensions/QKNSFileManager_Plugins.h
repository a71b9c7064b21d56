// SPDX-License-Identifier: MIT
// Where plug-ins are, and which.
#pragma once

#include "veltra/export.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

// The folders in which plug-ins may be, nearest to the user first: `folderName` in the user's data
// folder (XDG_DATA_HOME, else ~/.local/share), in each of the system's (XDG_DATA_DIRS, else
// /usr/local/share and /usr/share), and beside the program. `folderName` is a relative path such as
// "Kit Studio/Plug-ins"; it may be empty. Each folder once; whether it exists is not asked.
//
// A program that runs with more rights than its user does not look at the environment, nor in the
// user's folder: code from there would get those rights.
//
// Empty when memory is out, when `folderName` is absolute, has a ".." among its components or has a
// NUL in it. Thread: any. Realtime-safe: no.
VELTRA_EXPORT std::vector<std::string> pluginSearchPaths(std::string_view folderName) noexcept;

// The paths of all items with the extension `withExtension` (without its point, in small or capital
// letters) in the folder and the folders below, in the order of their bytes. What has the extension
// is not looked into, nor is any other package; links count by their names, and are not followed.
// Nothing when the folder cannot be read, or the extension is empty.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT std::optional<std::vector<std::string>> searchForPlugins(
    std::string_view withExtension, std::string_view inFolder) noexcept;

}  // namespace veltra
