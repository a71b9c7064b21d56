// SPDX-License-Identifier: MIT
// libxkbcommon-x11 is loaded when there is a display to ask, so that programs without one need no
// part of X.
//
// One connection is kept, and the server is asked to tell when the layout changes. So a look at a
// layout that has not changed sends nothing and waits for nothing: a server that has stopped
// answering cannot hold up a program that has read its layout before.
#include "veltra/platform/linux/xkb_keymap.h"
#include "veltra/platform/process.h"

#ifdef VELTRA_XKB_X11
#include "veltra/base/immortal.h"

#include <cstdlib>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <xkbcommon/xkbcommon-x11.h>
#endif

namespace veltra {

#ifdef VELTRA_XKB_X11

namespace {

// What libxcb-xkb has for this; its own header is not C++.
using SelectEvents = xcb_void_cookie_t(xcb_connection_t* display, std::uint16_t device,
                                       std::uint16_t which, std::uint16_t clear, std::uint16_t all,
                                       std::uint16_t affectMap, std::uint16_t map,
                                       const void* details);
constexpr std::uint16_t kNewKeyboard = 1, kMap = 2, kState = 4, kGroup = 16;

class X11Library {
public:
    X11Library() noexcept {
        // The library brings libxcb along, whose names are found through it, too.
        load("xcb_connect", connect);
        load("xcb_connection_has_error", hasError);
        load("xcb_disconnect", disconnect);
        load("xcb_flush", flush);
        load("xcb_poll_for_event", pollForEvent);
        load("xcb_xkb_select_events", selectEvents);
        load("xkb_x11_setup_xkb_extension", setUp);
        load("xkb_x11_get_core_keyboard_device_id", coreKeyboard);
        load("xkb_x11_keymap_new_from_device", newKeymap);
        load("xkb_x11_state_new_from_device", newState);
    }

    bool isComplete() const noexcept { return m_isComplete; }

    decltype(&xcb_connect) connect = nullptr;
    decltype(&xcb_connection_has_error) hasError = nullptr;
    decltype(&xcb_disconnect) disconnect = nullptr;
    decltype(&xcb_flush) flush = nullptr;
    decltype(&xcb_poll_for_event) pollForEvent = nullptr;
    SelectEvents* selectEvents = nullptr;
    decltype(&xkb_x11_setup_xkb_extension) setUp = nullptr;
    decltype(&xkb_x11_get_core_keyboard_device_id) coreKeyboard = nullptr;
    decltype(&xkb_x11_keymap_new_from_device) newKeymap = nullptr;
    decltype(&xkb_x11_state_new_from_device) newState = nullptr;

private:
    template <typename Function>
    void load(const char* name, Function*& function) noexcept {
        function = reinterpret_cast<Function*>(::dlsym(m_handle, name));
        m_isComplete &= function != nullptr;
    }

    void* const m_handle = ::dlopen("libxkbcommon-x11.so.0", RTLD_NOW | RTLD_LOCAL);
    bool m_isComplete = m_handle != nullptr;
};

class Session {
public:
    SessionLook look(xkb_context* context, LayoutInUse& layout) {
        const char* const variable = environmentVariable("DISPLAY");
        const std::string_view name = variable != nullptr ? variable : "";
        const std::int32_t process = Process::current().processId();
        if (process != m_process) {  // the connection is the parent's, who goes on using it
            m_display = nullptr;
            m_isRead = false;
        }
        m_process = process;
        if (m_display != nullptr && (name != m_name || m_library.hasError(m_display) != 0)) close();
        if (m_display == nullptr) {
            if (name.empty() || !m_library.isComplete()) return SessionLook::None;
            m_name = name;
            open();
        }
        if (m_display == nullptr) return SessionLook::None;
        const bool hasChanged = takeEvents();
        if (m_library.hasError(m_display) == 0) {
            if (!hasChanged && m_isRead) return SessionLook::Unchanged;
            m_isRead = false;
            layout = read(context);
            m_isRead = layout.keymap != nullptr;
            if (m_isRead) return SessionLook::Read;
        }
        close();
        return SessionLook::None;
    }

private:
    void open() noexcept {
        m_display = m_library.connect(nullptr, nullptr);
        const bool isReady =
            m_library.hasError(m_display) == 0 &&
            m_library.setUp(m_display, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr,
                            nullptr) != 0;
        m_device = isReady ? m_library.coreKeyboard(m_display) : -1;
        if (m_device < 0) return close();
        const std::uint16_t group[] = {kGroup, kGroup};  // of the state only this, not every key
        m_library.selectEvents(m_display, static_cast<std::uint16_t>(m_device),
                               kNewKeyboard | kMap | kState, 0, kNewKeyboard | kMap, 0, 0, group);
        m_library.flush(m_display);
    }
    void close() noexcept {
        m_library.disconnect(m_display);
        m_display = nullptr;
        m_isRead = false;
    }

    // Whether there were any: each is about the layout.
    bool takeEvents() noexcept {
        bool hasEvents = false;
        while (xcb_generic_event_t* const event = m_library.pollForEvent(m_display)) {
            std::free(event);
            hasEvents = true;
        }
        return hasEvents;
    }

    LayoutInUse read(xkb_context* context) noexcept {
        LayoutInUse layout{XkbKeymap(
            m_library.newKeymap(context, m_display, m_device, XKB_KEYMAP_COMPILE_NO_FLAGS))};
        if (layout.keymap == nullptr) return {};
        const XkbState state(m_library.newState(layout.keymap.get(), m_display, m_device));
        if (state != nullptr)
            layout.group = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
        return layout;
    }

    X11Library m_library;
    xcb_connection_t* m_display = nullptr;
    std::int32_t m_device = -1;  // the core keyboard
    std::int32_t m_process = 0;  // whose connection it is
    std::string m_name;          // of the display
    bool m_isRead = false;       // and nothing has changed since but what events tell
};

}  // namespace

SessionLook lookAtSession(xkb_context* context, LayoutInUse& layout) noexcept try {
    static const Immortal<Session> session;
    return (*session).look(context, layout);
} catch (...) {
    return SessionLook::None;
}

#else

SessionLook lookAtSession(xkb_context*, LayoutInUse&) noexcept {
    return SessionLook::None;
}

#endif

}  // namespace veltra
