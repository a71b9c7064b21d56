// SPDX-License-Identifier: MIT
// The path in a URL of a file on this machine.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veltra::detail {

// "/a b" for "file:///a%20b", "file://localhost/a%20b" and "file:/a%20b". Nothing for another
// scheme or host, for a relative path, and for a "%" without two hexadecimal digits or with the
// code 0. A query or fragment is not part of the path. Raises std::bad_alloc.
std::optional<std::string> pathOfFileUrl(std::string_view url);

}  // namespace veltra::detail
