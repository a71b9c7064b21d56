// SPDX-License-Identifier: MIT
#include "veltra/platform/keyboard_layout.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

KeyboardLayout::~KeyboardLayout() = default;

template <>
struct OwnImplementation<const KeyboardLayout> : OwnFrom<platformKeyboardLayout> {};
template class Installable<const KeyboardLayout>;

}  // namespace veltra
