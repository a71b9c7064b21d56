// The keymap that translations start from, and where it comes from.
#pragma once

#include <memory>

#include <xkbcommon/xkbcommon.h>

namespace veltra {

template <typename T, void (*unref)(T*)>
struct XkbUnref {
    void operator()(T* object) const noexcept { unref(object); }
};

using XkbContext = std::unique_ptr<xkb_context, XkbUnref<xkb_context, xkb_context_unref>>;
using XkbKeymap = std::unique_ptr<xkb_keymap, XkbUnref<xkb_keymap, xkb_keymap_unref>>;
using XkbState = std::unique_ptr<xkb_state, XkbUnref<xkb_state, xkb_state_unref>>;

struct LayoutInUse {
    XkbKeymap keymap;              // null when there is none
    xkb_layout_index_t group = 0;  // the one of its layouts that is active
};

// The layout of the display that DISPLAY names.
LayoutInUse sessionLayout(xkb_context* context) noexcept;

// The layout of the XKB_DEFAULT_ variables, else the one configured for the machine.
LayoutInUse configuredLayout(xkb_context* context) noexcept;

}  // namespace veltra
