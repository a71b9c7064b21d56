// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/base/utf8.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/linux/xkb_keymap.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <iterator>

#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

namespace veltra {

namespace {

// The kernel's key for each virtual key code, by the place of the key; 0 where keyboards have none.
// clang-format off
constexpr std::uint16_t kKernelKeys[] = {
    KEY_A, KEY_S, KEY_D, KEY_F,  // 0x00
    KEY_H, KEY_G, KEY_Z, KEY_X,  // 0x04
    KEY_C, KEY_V, KEY_102ND, KEY_B,  // 0x08
    KEY_Q, KEY_W, KEY_E, KEY_R,  // 0x0c
    KEY_Y, KEY_T, KEY_1, KEY_2,  // 0x10
    KEY_3, KEY_4, KEY_6, KEY_5,  // 0x14
    KEY_EQUAL, KEY_9, KEY_7, KEY_MINUS,  // 0x18
    KEY_8, KEY_0, KEY_RIGHTBRACE, KEY_O,  // 0x1c
    KEY_U, KEY_LEFTBRACE, KEY_I, KEY_P,  // 0x20
    KEY_ENTER, KEY_L, KEY_J, KEY_APOSTROPHE,  // 0x24
    KEY_K, KEY_SEMICOLON, KEY_BACKSLASH, KEY_COMMA,  // 0x28
    KEY_SLASH, KEY_N, KEY_M, KEY_DOT,  // 0x2c
    KEY_TAB, KEY_SPACE, KEY_GRAVE, KEY_BACKSPACE,  // 0x30
    0, KEY_ESC, KEY_RIGHTMETA, KEY_LEFTMETA,  // 0x34
    KEY_LEFTSHIFT, KEY_CAPSLOCK, KEY_LEFTALT, KEY_LEFTCTRL,  // 0x38
    KEY_RIGHTSHIFT, KEY_RIGHTALT, KEY_RIGHTCTRL, KEY_FN,  // 0x3c
    KEY_F17, KEY_KPDOT, 0, KEY_KPASTERISK,  // 0x40
    0, KEY_KPPLUS, 0, KEY_NUMLOCK,  // 0x44
    KEY_VOLUMEUP, KEY_VOLUMEDOWN, KEY_MUTE, KEY_KPSLASH,  // 0x48
    KEY_KPENTER, 0, KEY_KPMINUS, KEY_F18,  // 0x4c
    KEY_F19, KEY_KPEQUAL, KEY_KP0, KEY_KP1,  // 0x50
    KEY_KP2, KEY_KP3, KEY_KP4, KEY_KP5,  // 0x54
    KEY_KP6, KEY_KP7, KEY_F20, KEY_KP8,  // 0x58
    KEY_KP9, KEY_YEN, KEY_RO, KEY_KPJPCOMMA,  // 0x5c
    KEY_F5, KEY_F6, KEY_F7, KEY_F3,  // 0x60
    KEY_F8, KEY_F9, KEY_HANJA, KEY_F11,  // 0x64
    KEY_HANGEUL, KEY_F13, KEY_F16, KEY_F14,  // 0x68
    0, KEY_F10, KEY_COMPOSE, KEY_F12,  // 0x6c
    0, KEY_F15, KEY_INSERT, KEY_HOME,  // 0x70
    KEY_PAGEUP, KEY_DELETE, KEY_F4, KEY_END,  // 0x74
    KEY_F2, KEY_PAGEDOWN, KEY_F1, KEY_LEFT,  // 0x78
    KEY_RIGHT, KEY_DOWN, KEY_UP, 0,  // 0x7c
};
// clang-format on
static_assert(std::size(kKernelKeys) == 128);
constexpr xkb_keycode_t kXkbOffset = 8;  // from the kernel's numbers to XKB's

struct KeysymText {
    xkb_keysym_t first, last;
    char16_t text;
};

// Keys whose character is not what XKB has for them: see KeyTranslation.
constexpr KeysymText kActions[] = {
    {XKB_KEY_KP_Enter, XKB_KEY_KP_Enter, 0x03},
    {XKB_KEY_Home, XKB_KEY_Home, 0x01},
    {XKB_KEY_End, XKB_KEY_End, 0x04},
    {XKB_KEY_Insert, XKB_KEY_Insert, 0x05},
    {XKB_KEY_Help, XKB_KEY_Help, 0x05},
    {XKB_KEY_Page_Up, XKB_KEY_Page_Up, 0x0B},
    {XKB_KEY_Page_Down, XKB_KEY_Page_Down, 0x0C},
    {XKB_KEY_Num_Lock, XKB_KEY_Num_Lock, 0x1B},
    {XKB_KEY_Left, XKB_KEY_Left, 0x1C},
    {XKB_KEY_Right, XKB_KEY_Right, 0x1D},
    {XKB_KEY_Up, XKB_KEY_Up, 0x1E},
    {XKB_KEY_Down, XKB_KEY_Down, 0x1F},
    {XKB_KEY_F1, XKB_KEY_F20, 0x10},
};

// Dead keys and their accents; a dead key that is not here types nothing by itself. Accents that
// Unicode has only for putting on letters are put on its circle for showing them.
constexpr KeysymText kAccents[] = {
    {XKB_KEY_dead_grave, XKB_KEY_dead_grave, u'`'},
    {XKB_KEY_dead_acute, XKB_KEY_dead_acute, 0x00B4},
    {XKB_KEY_dead_circumflex, XKB_KEY_dead_circumflex, u'^'},
    {XKB_KEY_dead_tilde, XKB_KEY_dead_tilde, u'~'},
    {XKB_KEY_dead_macron, XKB_KEY_dead_macron, 0x00AF},
    {XKB_KEY_dead_breve, XKB_KEY_dead_breve, 0x02D8},
    {XKB_KEY_dead_abovedot, XKB_KEY_dead_abovedot, 0x02D9},
    {XKB_KEY_dead_diaeresis, XKB_KEY_dead_diaeresis, 0x00A8},
    {XKB_KEY_dead_abovering, XKB_KEY_dead_abovering, 0x02DA},
    {XKB_KEY_dead_doubleacute, XKB_KEY_dead_doubleacute, 0x02DD},
    {XKB_KEY_dead_caron, XKB_KEY_dead_caron, 0x02C7},
    {XKB_KEY_dead_cedilla, XKB_KEY_dead_cedilla, 0x00B8},
    {XKB_KEY_dead_ogonek, XKB_KEY_dead_ogonek, 0x02DB},
    {XKB_KEY_dead_iota, XKB_KEY_dead_iota, 0x037A},
    {XKB_KEY_dead_belowdot, XKB_KEY_dead_belowdot, 0x0323},
    {XKB_KEY_dead_hook, XKB_KEY_dead_hook, 0x0309},
    {XKB_KEY_dead_horn, XKB_KEY_dead_horn, 0x031B},
    {XKB_KEY_dead_stroke, XKB_KEY_dead_stroke, u'/'},
};
constexpr char16_t kCircle = 0x25CC, kFirstCombining = 0x0300, kLastCombining = 0x036F;

// Between the two ranges lie keys that switch features of the keyboard.
constexpr bool isDead(xkb_keysym_t keysym) noexcept {
    return (keysym >= XKB_KEY_dead_grave && keysym <= XKB_KEY_dead_currency) ||
           (keysym >= XKB_KEY_dead_a && keysym <= 0xFE93);
}

template <std::size_t size>
char16_t textIn(const KeysymText (&table)[size], xkb_keysym_t keysym) noexcept {
    for (const auto& [first, last, text] : table) {
        if (keysym >= first && keysym <= last) return text;
    }
    return 0;
}

std::u16string utf16Of(char32_t character) {
    if (character == 0) return {};
    std::array<char16_t, 2> units{};
    putUtf16(units.data(), character);
    return {units.data(), utf16Length(character)};
}

std::u16string accentOf(xkb_keysym_t keysym) {
    const char16_t accent = textIn(kAccents, keysym);
    if (accent >= kFirstCombining && accent <= kLastCombining) return {kCircle, accent};
    return utf16Of(accent);
}

class XkbKeyboardLayout final : public KeyboardLayout {
public:
    std::optional<KeyTranslation> translate(std::uint16_t keyCode) const noexcept override {
        const NoCancellation whileFilesAreRead;
        return unlessOutOfMemory(std::nullopt, [&] { return translated(keyCode); });
    }

private:
    std::optional<KeyTranslation> translated(std::uint16_t keyCode) const {
        readAgain();
        if (m_layout.keymap == nullptr) return std::nullopt;
        const std::uint16_t key = keyCode < std::size(kKernelKeys) ? kKernelKeys[keyCode] : 0;
        if (key == 0) return KeyTranslation{};

        const xkb_keysym_t keysym = keysymOf(key);
        if (isDead(keysym)) return KeyTranslation{accentOf(keysym), true};
        const char16_t action = textIn(kActions, keysym);
        return KeyTranslation{utf16Of(action != 0 ? action : xkb_keysym_to_utf32(keysym)), false};
    }

    // The keypad's keys type: where they would move the cursor, with Num Lock on. It must be off
    // for all others, for there are layouts in which it changes every key, and for the keypad of
    // those.
    xkb_keysym_t keysymOf(std::uint16_t key) const noexcept {
        const xkb_keysym_t plain = keysymOf(key, 0);
        if (key < KEY_KP7 || key > KEY_KPDOT || xkb_keysym_to_utf32(plain) != 0) return plain;
        const xkb_mod_index_t numLock =
            xkb_keymap_mod_get_index(m_layout.keymap.get(), XKB_MOD_NAME_NUM);
        return numLock < 32 ? keysymOf(key, xkb_mod_mask_t{1} << numLock) : plain;
    }

    xkb_keysym_t keysymOf(std::uint16_t key, xkb_mod_mask_t locked) const noexcept {
        const XkbState state(xkb_state_new(m_layout.keymap.get()));
        if (state == nullptr) return XKB_KEY_NoSymbol;
        xkb_state_update_mask(state.get(), 0, 0, locked, 0, 0, m_layout.group);
        return xkb_state_key_get_one_sym(state.get(), key + kXkbOffset);
    }

    void readAgain() const {
        const Moment now = Clocks::current().monotonic().moment();
        // A clock that was installed meanwhile may be behind.
        if (m_wasRead && now >= m_readAt && now - m_readAt < seconds(1.0)) return;
        m_wasRead = true;
        m_readAt = now;
        const XkbContext context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
        if (context == nullptr) return;
        xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
        if (lookAtSession(context.get(), m_layout) == SessionLook::None)
            m_layout = configuredLayout(context.get());
    }

    mutable LayoutInUse m_layout;
    mutable Moment m_readAt;
    mutable bool m_wasRead = false;
};

}  // namespace

void XkbUnref::operator()(xkb_context* context) const noexcept {
    xkb_context_unref(context);
}
void XkbUnref::operator()(xkb_keymap* keymap) const noexcept {
    xkb_keymap_unref(keymap);
}
void XkbUnref::operator()(xkb_state* state) const noexcept {
    xkb_state_unref(state);
}

const KeyboardLayout& platformKeyboardLayout() noexcept {
    static const Immortal<XkbKeyboardLayout> layout;
    return *layout;
}

}  // namespace veltra
