// SPDX-License-Identifier: MIT
#include "veltra/platform/keyboard_layout.h"

#include "veltra/base/replaceable.h"
#include "veltra/platform/detail/platform_keyboard_layout.h"

namespace veltra {

namespace {

constinit Replaceable<const KeyboardLayout, &platformKeyboardLayout> replaceableKeyboardLayout;

}  // namespace

KeyboardLayout::~KeyboardLayout() = default;

const KeyboardLayout& KeyboardLayout::current() noexcept {
    return replaceableKeyboardLayout.current();
}

const KeyboardLayout* KeyboardLayout::install(const KeyboardLayout* layout) noexcept {
    return replaceableKeyboardLayout.install(layout);
}

}  // namespace veltra
