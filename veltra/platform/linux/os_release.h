// SPDX-License-Identifier: MIT
// What /etc/os-release says of the distribution.
#pragma once

#include "veltra/platform/port.h"

#include <optional>
#include <string>
#include <string_view>

namespace veltra {

// Product, version and build from the text of the file and, where it has no build, from the release
// of the kernel. Nothing when one of them is missing. Throws std::bad_alloc.
//
// A line is KEY=value, the value written as for a shell: bare, in single quotes, or in double ones,
// where a backslash stands before $, ", \ and the back quote. Later lines win over earlier ones;
// lines that are none are passed over.
std::optional<SystemVersion> systemVersionFrom(std::string_view osRelease,
                                               const std::string& kernelRelease);

}  // namespace veltra
