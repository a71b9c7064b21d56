// SPDX-License-Identifier: MIT
// What a back end supplies for text_services.h: icu/text_services.cpp, or none/text_services.cpp.
#pragma once

#include "veltra/platform/text_services.h"

namespace veltra {

// Lives until the process ends, also for those who ask while it ends.
const TextServices& platformTextServices() noexcept;

}  // namespace veltra
