// SPDX-License-Identifier: MIT
// libxkbcommon-x11 is loaded when there is a display to ask, so that programs without one need no
// part of X.
#include "veltra/platform/linux/xkb_keymap.h"
#include "veltra/platform/process.h"

#ifdef VELTRA_XKB_X11
#include <dlfcn.h>
#include <xkbcommon/xkbcommon-x11.h>
#endif

namespace veltra {

#ifdef VELTRA_XKB_X11

namespace {

class X11Library {
public:
    X11Library() noexcept : m_handle(::dlopen("libxkbcommon-x11.so.0", RTLD_NOW | RTLD_LOCAL)) {
        // The library brings libxcb along, whose names are found through it, too.
        m_isComplete = m_handle != nullptr && load("xcb_connect", connect) &&
                       load("xcb_connection_has_error", hasError) &&
                       load("xcb_disconnect", disconnect) &&
                       load("xkb_x11_setup_xkb_extension", setUp) &&
                       load("xkb_x11_get_core_keyboard_device_id", coreKeyboard) &&
                       load("xkb_x11_keymap_new_from_device", newKeymap) &&
                       load("xkb_x11_state_new_from_device", newState);
    }

    bool isComplete() const noexcept { return m_isComplete; }

    decltype(&xcb_connect) connect = nullptr;
    decltype(&xcb_connection_has_error) hasError = nullptr;
    decltype(&xcb_disconnect) disconnect = nullptr;
    decltype(&xkb_x11_setup_xkb_extension) setUp = nullptr;
    decltype(&xkb_x11_get_core_keyboard_device_id) coreKeyboard = nullptr;
    decltype(&xkb_x11_keymap_new_from_device) newKeymap = nullptr;
    decltype(&xkb_x11_state_new_from_device) newState = nullptr;

private:
    template <typename Function>
    bool load(const char* name, Function*& function) noexcept {
        function = reinterpret_cast<Function*>(::dlsym(m_handle, name));
        return function != nullptr;
    }

    void* m_handle;
    bool m_isComplete;
};

LayoutInUse layoutOf(xcb_connection_t* display, xkb_context* context,
                     const X11Library& library) noexcept {
    const bool isReady =
        library.setUp(display, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                      XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr,
                      nullptr) != 0;
    const std::int32_t device = isReady ? library.coreKeyboard(display) : -1;
    if (device < 0) return {};
    LayoutInUse layout{
        XkbKeymap(library.newKeymap(context, display, device, XKB_KEYMAP_COMPILE_NO_FLAGS))};
    if (layout.keymap == nullptr) return {};
    const XkbState state(library.newState(layout.keymap.get(), display, device));
    if (state != nullptr)
        layout.group = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
    return layout;
}

}  // namespace

LayoutInUse sessionLayout(xkb_context* context) noexcept {
    const char* const name = environmentVariable("DISPLAY");
    if (name == nullptr || *name == '\0') return {};
    static const X11Library library;
    if (!library.isComplete()) return {};
    xcb_connection_t* const display = library.connect(nullptr, nullptr);
    LayoutInUse layout;
    if (library.hasError(display) == 0) layout = layoutOf(display, context, library);
    library.disconnect(display);
    return layout;
}

#else

LayoutInUse sessionLayout(xkb_context*) noexcept {
    return {};
}

#endif

}  // namespace veltra
