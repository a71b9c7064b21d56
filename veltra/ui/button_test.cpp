// SPDX-License-Identifier: MIT
#include "veltra/ui/button.h"

#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

TEST(ButtonPress, CountsOnlyWhenLetGoInside) {
    const ScriptedPort port;
    HostedView host(std::make_unique<Button>(Rect{{}, {60, 24}}, "Mute", ButtonCell::Kind::Toggle));
    auto& button = static_cast<Button&>(*host.window.contentView());
    Receiver target;
    Application::current().setDelegate(&target);  // last in the chain
    button.setAction(action<&Receiver::act>());
    host.click({10, 10});
    host.press({10, 10});
    host.drag({100, 10});
    EXPECT_FALSE(button.cell()->isHighlighted());
    host.release({100, 10});
    host.press({10, 10});
    host.window.cancelTracking();
    button.setEnabled(false);
    host.click({10, 10});
    EXPECT_TRUE(button.isOn() && target.count == 1);
}

TEST(ButtonPress, ClaimsItsKeysAndKeepsItsState) {
    const ScriptedPort port;
    HostedView host(std::make_unique<Button>(Rect{{}, {60, 24}}, "Mute", ButtonCell::Kind::Toggle));
    auto& button = static_cast<Button&>(*host.window.contentView());
    host.window.makeFirstResponder(&button);
    const std::tuple<char16_t, ModifierFlags, bool> rows[] = {
        {u' ', {}, true},
        {kReturnCharacter, kShiftKeyMask, true},
        {u' ', kControlKeyMask, false},
        {u'm', {}, false}};
    for (const auto& [key, flags, isWanted] : rows) {
        Event event;
        event.charactersIgnoringModifiers = key;
        event.modifierFlags = flags;
        EXPECT_EQ(host.window.wantsKey(event), isWanted) << flags.bits();
    }
    host.key(u' ');
    EXPECT_TRUE(button.isOn() && button.cell()->accessibilityIsFocused());
    EXPECT_EQ(button.cell()->accessibilityName(), "Mute");
    button.cell()->setAccessibilityName("Mute kick");
    EXPECT_EQ(button.cell()->accessibilityName(), "Mute kick");

    KeyedCoder coder;
    button.encodeWithCoder(coder);
    Button other({{}, {60, 24}}, "", ButtonCell::Kind::Toggle);
    other.decodeWithCoder(coder);
    EXPECT_TRUE(other.isOn());
    EXPECT_EQ(other.stringValue(), "Mute");
    button.setEnabled(false);
    EXPECT_TRUE(button.cell()->accessibilityActions().empty());
}

}  // namespace
}  // namespace veltra::testing
