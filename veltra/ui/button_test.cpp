// SPDX-License-Identifier: MIT
#include "veltra/ui/button.h"

#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

TEST(ButtonPress, CountsOnlyWhenLetGoInside) {
    const ScriptedPort port;
    Shown<Button> host(Rect{{}, {60, 24}}, "Mute", ButtonCell::Kind::Toggle);
    Receiver target;
    Application::current().setDelegate(&target);  // last in the chain
    host.view.setAction(action<&Receiver::act>());
    host.click({10, 10});
    host.press({10, 10});
    host.drag({100, 10});
    EXPECT_FALSE(host.view.cell()->isHighlighted());
    host.release({100, 10});
    host.press({10, 10});
    host.window.cancelTracking();
    host.view.setEnabled(false);
    host.click({10, 10});
    EXPECT_TRUE(host.view.isOn() && target.count == 1);
}

TEST(ButtonPress, ClaimsItsKeysAndKeepsItsState) {
    const ScriptedPort port;
    Shown<Button> host(Rect{{}, {60, 24}}, "Mute", ButtonCell::Kind::Toggle);
    host.window.makeFirstResponder(&host.view);
    const std::tuple<char16_t, ModifierFlags, bool> rows[] = {
        {u' ', {}, true},
        {kReturnCharacter, kShiftKeyMask, true},
        {u' ', kControlKeyMask, false},
        {u'm', {}, false}};
    for (const auto& [key, flags, isWanted] : rows) {
        EXPECT_EQ(host.window.wantsKey(host.keyEvent(key, flags)), isWanted) << flags.bits();
    }
    host.key(u' ');
    Event held = host.keyEvent(u' ');
    held.isRepeat = true;
    Application::current().postEvent(held);
    EXPECT_TRUE(host.view.isOn() && host.view.cell()->accessibilityIsFocused());
    EXPECT_EQ(host.view.cell()->accessibilityName(), "Mute");
    host.view.cell()->setAccessibilityName("Mute kick");
    EXPECT_EQ(host.view.cell()->accessibilityName(), "Mute kick");

    KeyedCoder coder;
    host.view.encodeWithCoder(coder);
    Button other({{}, {60, 24}}, "", ButtonCell::Kind::Toggle);
    other.decodeWithCoder(coder);
    EXPECT_TRUE(other.isOn());
    EXPECT_EQ(other.stringValue(), "Mute");
    host.view.setEnabled(false);
    EXPECT_TRUE(host.view.cell()->accessibilityActions().empty());
}

}  // namespace
}  // namespace veltra::testing
