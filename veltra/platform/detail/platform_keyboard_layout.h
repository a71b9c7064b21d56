// SPDX-License-Identifier: MIT
// What a back end supplies for keyboard_layout.h: linux/xkb_keyboard_layout.cpp, or
// none/keyboard_layout.cpp.
#pragma once

#include "veltra/platform/keyboard_layout.h"

namespace veltra {

// Lives until the process ends, also for those who ask while it ends.
const KeyboardLayout& platformKeyboardLayout() noexcept;

}  // namespace veltra
