// SPDX-License-Identifier: MIT
// The keymap that translations start from, and where it comes from.
#pragma once

#include <cstdint>
#include <memory>

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace veltra {

struct XkbUnref {
    void operator()(xkb_context* context) const noexcept;
    void operator()(xkb_keymap* keymap) const noexcept;
    void operator()(xkb_state* state) const noexcept;
};

using XkbContext = std::unique_ptr<xkb_context, XkbUnref>;
using XkbKeymap = std::unique_ptr<xkb_keymap, XkbUnref>;
using XkbState = std::unique_ptr<xkb_state, XkbUnref>;

struct LayoutInUse {
    XkbKeymap keymap;         // null when there is none
    std::uint32_t group = 0;  // the one of its layouts that is active
};

enum class SessionLook { None, Unchanged, Read };

// The layout of the display that DISPLAY names, put into `layout` when it is another than at the
// look before (Read). None, when there is no such display or it cannot tell.
SessionLook lookAtSession(xkb_context* context, LayoutInUse& layout) noexcept;

// The layout of the XKB_DEFAULT_ variables, else the one configured for the machine.
LayoutInUse configuredLayout(xkb_context* context);  // throws std::bad_alloc

}  // namespace veltra
