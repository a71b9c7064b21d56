// SPDX-License-Identifier: MIT
// What stands behind the last point of a name.
// Thread: any. Realtime-safe: yes, all of it.
#pragma once

#include "veltra/base/ascii_case.h"

#include <string_view>

namespace veltra::detail {

inline std::string_view lastNameOf(std::string_view path) noexcept {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// Empty for none; a name that only begins with a point has none.
inline std::string_view extensionOf(std::string_view path) noexcept {
    const std::string_view name = lastNameOf(path);
    const std::size_t point = name.rfind('.');
    return point == std::string_view::npos || point == 0 ? std::string_view()
                                                         : name.substr(point + 1);
}

// A to Z are a to z. Extensions of other systems' files are often in capitals.
inline bool isSameExtension(std::string_view one, std::string_view other) noexcept {
    return equalButForAsciiCase(one, other);
}

}  // namespace veltra::detail
