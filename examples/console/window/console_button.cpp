// SPDX-License-Identifier: MIT
#include "console_button.h"

#include "veltra/audio/key_code_converter.h"

namespace veltra::console {

void ConsoleButton::setHelp(const std::string& help, char16_t key, std::uint32_t modifiers) {
    m_help = help;
    if (key != 0) {
        const auto name = QKKeyCodeConverter::humandReadableStringForKeyChar(key, modifiers);
        if (name) m_help += " (" + *name + ')';
    }
    frameDidChange();
}

void ConsoleButton::setIcons(ButtonCell::Icon atRest, ButtonCell::Icon inUse) {
    m_atRest = atRest;
    m_inUse = inUse;
    showIcon(isFirstResponder());
}

void ConsoleButton::setInUse(bool isInUse) {
    m_isInUse = isInUse;
    showIcon(isFirstResponder());
}

void ConsoleButton::showIcon(bool isFocused) {
    if (m_inUse != nullptr) buttonCell().setIcon(m_isInUse || isFocused ? m_inUse : m_atRest);
}

bool ConsoleButton::becomeFirstResponder() {
    showIcon(true);
    return Button::becomeFirstResponder();
}

bool ConsoleButton::resignFirstResponder() {
    showIcon(false);
    return Button::resignFirstResponder();
}

bool ConsoleButton::wantsKey(const Event& event) const {
    return event.plainKey() != u' ' && Button::wantsKey(event);
}

void ConsoleButton::keyDown(const Event& event) {
    if (event.plainKey() != u' ') return Button::keyDown(event);
    if (Responder* const next = nextResponder()) next->keyDown(event);
}

void ConsoleButton::frameDidChange() {
    Button::frameDidChange();
    toolTips().removeAllToolTips();
    if (!m_help.empty()) toolTips().addToolTipRect(bounds(), m_help);
}

}  // namespace veltra::console
