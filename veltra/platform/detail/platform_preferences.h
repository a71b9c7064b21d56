// SPDX-License-Identifier: MIT
// What a port supplies for preferences.h.
#pragma once

#include "veltra/platform/preferences.h"

namespace veltra {

// Lives until the process ends, also for those who ask while it ends.
Preferences& platformPreferences() noexcept;

bool setPlatformApplicationName(std::string_view name) noexcept;

}  // namespace veltra
