// SPDX-License-Identifier: MIT
// What the functions about files have in common: they throw nothing, and are not cancelled while
// something is open.
#pragma once

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/no_cancellation.h"

#include <string>
#include <string_view>
#include <utility>

namespace veltra {

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

}  // namespace veltra
