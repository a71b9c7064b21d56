// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/peak_readout.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

using testing::Shown;

TEST(PeakReadoutTest, WritesSignsAndOneDecimal) {
    const std::pair<double, const char*> kRows[] = {
        {1.84, "+1.8"}, {-2.06, "−2.1"},   {0.04, "0.0"}, {-0.04, "0.0"},  {-69.9, "−69.9"},
        {-70.0, "−∞"},  {-INFINITY, "−∞"}, {NAN, "−∞"},   {12.0, "+12.0"}, {INFINITY, "+∞"}};
    for (const auto& [decibels, text] : kRows)
        EXPECT_EQ(PeakReadout::text(decibels), text);
}

class PeakReadoutViewTest : public ::testing::Test {
protected:
    testing::ScriptedPort port;
    std::unique_ptr<Shown<PeakReadout>> host =
        std::make_unique<Shown<PeakReadout>>(Rect{{}, {54, 20}});
    PeakReadout* const readout = &host->view;
};

TEST_F(PeakReadoutViewTest, HoldsTheHighestLevelAndThatItHasClipped) {
    const struct {
        float amplitude;
        bool isDrawn, isClipped;
        double decibels;
    } kRows[] = {{0.5F, true, false, -6.02},  {0.1F, false, false, -6.02},
                 {-1.0F, true, false, 0.0},   {NAN, false, false, 0.0},
                 {1.0001F, true, true, 0.0},  // the number is the same
                 {1.0002F, false, true, 0.0}, {2.0F, true, true, 6.02}};
    for (const auto& row : kRows) {
        readout->raise(row.amplitude);
        EXPECT_EQ(!host->port.invalid.empty(), row.isDrawn) << row.amplitude;
        EXPECT_NEAR(readout->decibels(), row.decibels, 0.01);
        EXPECT_EQ(readout->isClipped(), row.isClipped) << row.amplitude;
        host->port.invalid.clear();
    }
    readout->setDecibels(-80.0);  // shown as it is; the light stays
    EXPECT_TRUE(readout->isClipped());
    EXPECT_EQ(readout->accessibilityValueText(), "silence, clipped");
    readout->setDecibels(INFINITY);
    EXPECT_EQ(readout->accessibilityValueText(), "\u221E dB, clipped");
    readout->reset();
    readout->setClipDecibels(-15.0);
    readout->setDecibels(-15.0);
    EXPECT_FALSE(readout->isClipped());
}

TEST_F(PeakReadoutViewTest, AClickAKeyOrAPressBeginsAgainAndSendsTheAction) {
    testing::Receiver target;
    target.react = [&] { EXPECT_EQ(readout->decibels(), -INFINITY); };
    readout->setTarget(&target);
    readout->setAction(action<&testing::Receiver::act>());
    host->window.makeFirstResponder(readout);
    const auto& told = port.notifications[AccessibilityNotification::ValueChanged];
    int expected = 0;
    constexpr Point kInside{5, 5};
    const std::function<void()> kWays[] = {
        [&] { host->click(kInside); }, [&] { host->key(u'\r'); }, [&] { host->key(u' '); },
        [&] { readout->performAccessibilityAction(AccessibilityAction::Press); }};
    for (const auto& way : kWays) {
        readout->setDecibels(1.25);
        EXPECT_EQ(readout->accessibilityValueText(), "1.2 dB, clipped");
        EXPECT_EQ(told.size(), static_cast<std::size_t>(2 * expected + 1));
        way();
        EXPECT_EQ(target.count, ++expected);
        EXPECT_FALSE(readout->isClipped());
        EXPECT_EQ(readout->accessibilityValueText(), "silence");
    }
    host->key(u'x');
    Event held = host->keyEvent(u' ');
    held.isRepeat = true;
    Application::current().postEvent(held);
    const auto isWanted = [&](char16_t key) { return host->window.wantsKey(host->keyEvent(key)); };
    EXPECT_TRUE(isWanted(u' ') && isWanted(u'\r') && !isWanted(u'x'));
    readout->setEnabled(false);
    readout->setDecibels(-3.0);
    readout->setAccessibilityUnit("LUFS");
    host->click({5, 5});
    host->key(u' ');
    EXPECT_FALSE(isWanted(u' '));
    EXPECT_FALSE(readout->performAccessibilityAction(AccessibilityAction::Press));
    EXPECT_TRUE(readout->accessibilityActions().empty());
    EXPECT_EQ(target.count, expected);
    EXPECT_EQ(readout->accessibilityValueText(), "\u22123.0 LUFS");
    EXPECT_EQ(readout->accessibilityName(), "peak");
    readout->setEnabled(true);
    target.react = [&] { host.reset(); };  // the action deletes the read-out and its window
    host->press({5, 5});
    EXPECT_EQ(target.count, expected + 1);
}

}  // namespace
}  // namespace veltra
