// SPDX-License-Identifier: MIT
// Paths as texts, and what stands behind them.
//
// The components of a path are what stands between its slashes; the slash that begins an absolute
// path is a component "/" of its own, empty ones do not count. Paths are bytes, UTF-8 nearly
// always. Every function returns its neutral value when memory is out, and throws nothing. Thread:
// any. Realtime-safe: no, all of them.
#pragma once

#include "veltra/Source/Extensions/string_compare.h"
#include "veltra/export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

// Whether one of the path's components equals `component`, as equals() has it. False for an empty
// `component`.
VELTRA_EXPORT bool containsPathComponent(std::string_view path, std::string_view component,
                                         CompareOptions options = {}) noexcept;

// Whether the path ends in these components, compared as bytes: "/a/b/c" ends in "b/c", but not in
// "/c". False when there are none.
VELTRA_EXPORT bool containsLastPathComponents(std::string_view path,
                                              std::string_view components) noexcept;

// Orders two paths by the bytes of their last components: -1, 0 or 1.
VELTRA_EXPORT std::int32_t lastPathComponentCompare(std::string_view path,
                                                    std::string_view other) noexcept;

// "/" for "/a/b", "a" for "a/b", empty for the empty path.
VELTRA_EXPORT std::string firstPathComponent(std::string_view path) noexcept;

// The path without its last `count` components: "/a" for "/a/b/c" and 2. Nothing is taken away from
// "/", and nothing for a count of 0 or below.
VELTRA_EXPORT std::string stringByDeletingNumberOfLastPathComponents(std::string_view path,
                                                                     std::int32_t count) noexcept;

// Where the path leads: a "~" or "~user" at its start becomes the home folder, symbolic links are
// resolved, and so is an alias, which is a file *.desktop that links to another item (Type=Link and
// a URL "file:"), up to 16 of them in a row. An alias that leads nowhere, or in a circle, is its
// own answer. Where the path has no item, the part that has one is resolved and the rest appended.
// Nothing for the empty path and one with a NUL in it.
VELTRA_EXPORT std::optional<std::string> pathByResolvingSymlinksAndAliasesInPath(
    std::string_view path) noexcept;

// Whether people see the item in its folder: it exists, its resolved name does not begin with ".",
// and no line of the file ".hidden" beside it (the first 64 KiB count) has that name. "/" is
// visible.
VELTRA_EXPORT bool isFileVisible(std::string_view path) noexcept;

// Whether the item lies on a CD or DVD: its volume (Volumes) is removable, not writable, and can be
// unmounted.
VELTRA_EXPORT bool isPathOnCDDVD(std::string_view path) noexcept;

}  // namespace veltra
