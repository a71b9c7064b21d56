// SPDX-License-Identifier: MIT
// Files that come with a program: where they lie, and how one is found by its name.
//
//   setResourceFolder("/opt/mixer/resources");               // what a host brings itself
//   std::string path = pathOfResource("knob", "png");        // ".../resources/knob.png"
//
// The folders, in this order:
//   1. the one that the host has set,
//   2. the host's data folder, ../share/PROGRAM from the executable's folder,
//   3. the framework's, ../share/veltra (or ../../share/veltra) from the library's folder.
//
// All functions throw std::bad_alloc. Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/export.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

// The folder of the running program's file, absolute; empty where the system does not say.
VELTRA_EXPORT std::string executableFolder();

// ../share/PROGRAM from there, with the name of the program's file. Need not exist.
VELTRA_EXPORT std::string hostDataFolder();

// Sets the first folder to look in; empty, as at first, for none.
VELTRA_EXPORT void setResourceFolder(std::string folder);

// The folders, first to last. They need not exist.
VELTRA_EXPORT std::vector<std::string> resourceFolders();

// The path of the first file "NAME.EXTENSION" in the folders; "NAME" for an empty extension. A name
// may lead into folders below ("knobs/large") but not out of them. Empty when there is no such
// file.
VELTRA_EXPORT std::string pathOfResource(std::string_view name, std::string_view extension);

// The same in one folder.
VELTRA_EXPORT std::string pathOfResourceIn(const std::string& folder, std::string_view name,
                                           std::string_view extension);

// What the file holds; nothing when it cannot be read or has more than `limit` bytes.
VELTRA_EXPORT std::optional<std::string> textOfFile(const std::string& path, std::size_t limit);

}  // namespace veltra
