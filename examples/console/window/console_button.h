// SPDX-License-Identifier: MIT
// A button that leaves the space bar to the transport: Return presses it.
#pragma once

#include "veltra/ui/button.h"

namespace veltra::console {

// Thread: main.
class ConsoleButton final : public Button {
public:
    using Button::Button;

    // With the key that does the same, where there is one.
    void setHelp(const std::string& help, char16_t key = 0, std::uint32_t modifiers = 0);

    // A symbol that gives way to another while the button is in use: when it has the keyboard, and
    // as long as setInUse() says so. Null: nothing is seen at rest.
    void setIcons(ButtonCell::Icon atRest, ButtonCell::Icon inUse);
    void setInUse(bool isInUse);

    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    bool wantsKey(const Event& event) const override;
    void keyDown(const Event& event) override;

protected:
    void frameDidChange() override;

private:
    void showIcon(bool isFocused);

    std::string m_help;
    ButtonCell::Icon m_atRest = nullptr;
    ButtonCell::Icon m_inUse = nullptr;
    bool m_isInUse = false;
};

}  // namespace veltra::console
