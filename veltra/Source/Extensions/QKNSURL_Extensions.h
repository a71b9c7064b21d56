// SPDX-License-Identifier: MIT
// Questions about URLs.
#pragma once

#include "veltra/export.h"

#include <string_view>

namespace veltra {

// Whether the URL is of a file in the user's trash, on the volume of the home folder or on any
// other, or of something in a folder there. The item itself need not exist. False for anything but
// a URL "file:" of this machine, for the trash itself, and when memory is out.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT bool isInTrash(std::string_view url) noexcept;

}  // namespace veltra
