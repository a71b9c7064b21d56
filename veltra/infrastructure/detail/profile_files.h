// SPDX-License-Identifier: MIT
// Where profiles lie that are not part of the library.
#pragma once

#include <optional>
#include <string>

namespace veltra {

// The profile file of this name, which has no "/" in it; nothing when there is none or it has more
// than 1 MiB. Throws std::bad_alloc. Thread: any. Realtime-safe: no.
std::optional<std::string> profileFile(const std::string& name);

bool isSnowLeopardOrNewer() noexcept;
void setResourceFolder(std::string path);

}  // namespace veltra
