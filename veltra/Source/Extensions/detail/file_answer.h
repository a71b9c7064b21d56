// SPDX-License-Identifier: MIT
// What the functions about files have in common: they throw nothing, and are not cancelled while
// something is open.
#pragma once

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/no_cancellation.h"

#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace veltra::detail {

constexpr std::size_t kLongestPath = 4096;  // bytes; the system takes none that is longer

// What `work` returns, or `neutral` when memory was out.
template <typename Neutral, typename Work>
auto answerAboutFiles(Neutral&& neutral, Work work) noexcept {
    const NoCancellation whileFilesAreOpen;
    return unlessOutOfMemory(std::forward<Neutral>(neutral), work);
}

// The system would take a path only up to its first NUL, which names something else.
inline bool canBePath(std::string_view text) noexcept {
    return !text.empty() && text.find('\0') == std::string_view::npos;
}

inline std::string pathIn(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && path.back() != '/') path += '/';
    return path.append(name);
}

// As FileSystem::resolve(), but lack of memory throws std::bad_alloc.
inline std::error_code canonicalPath(const std::string& path, std::string& resolved) {
    const std::error_code error = FileSystem::current().resolve(path.c_str(), resolved);
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    return error;
}

}  // namespace veltra::detail
