// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/octave_picker_view.h"

#include "veltra/ui/image_registry.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

using ::testing::ElementsAre;
using testing::HostedView;
using testing::RecordingCanvas;

struct Host : Anchored {
    void rangeChanged(DfOctavePickerView& sender) {
        ranges.push_back(sender.keyRange().location);
        redrawn = window != nullptr ? window->port.invalid.size() : 0;
        if (victim != nullptr) victim->reset();
    }
    std::vector<std::uint32_t> ranges;
    std::size_t redrawn = 0;  // requests before the last action
    HostedView* window = nullptr;
    std::unique_ptr<HostedView>* victim = nullptr;
};

class OctavePicker : public ::testing::Test {
protected:
    testing::ScriptedPort port;
    Host host;
    DfOctavePickerView* picker = nullptr;
    std::unique_ptr<HostedView> window = hosted(true);

    std::unique_ptr<HostedView> hosted(bool isLarge) {
        auto made = std::make_unique<DfOctavePickerView>(
            Rect{{}, DfOctavePickerView::naturalSize(isLarge)}, isLarge);
        picker = made.get();
        picker->setTarget(&host);
        picker->setAction(action<&Host::rangeChanged>());
        auto shown = std::make_unique<HostedView>(std::move(made));
        host.window = shown.get();
        return shown;
    }
    void press(float x) { window->press({x, 20}); }
    void drag(float x) { window->drag({x, 20}); }
    void click(float x) { window->click({x, 20}); }
    std::vector<std::uint32_t> takeRanges() { return std::exchange(host.ranges, {}); }
};

TEST_F(OctavePicker, BeginsAtTenKeysFromTheTenthInBothSizes) {
    EXPECT_EQ(picker->bounds().size, (Size{462, 40}));
    EXPECT_EQ(picker->rangeRect(), (Rect{{66, 0}, {59, 40}}));
    EXPECT_EQ(picker->clickRaster(), 7);
    EXPECT_EQ(picker->dragRaster(), 1);
    const DfOctavePickerView small({{}, {382, 26}}, false);
    EXPECT_EQ(small.totalNumWhiteKeys(), 74U);
    EXPECT_EQ(small.rangeRect(), (Rect{{56, 0}, {49, 26}}));
}

TEST_F(OctavePicker, AClickBesideTheRangeJumpsByOctavesAndADragGoesKeyByKey) {
    click(458.0F);
    EXPECT_EQ(picker->keyRange(), (KeyRange{65, 10})) << "not 70";
    click(2.0F);
    EXPECT_THAT(takeRanges(), ElementsAre(65, 0));
    press(80.0F);  // lands at 7, the pointer on it
    drag(85.9F);
    drag(86.0F);
    drag(1000.0F);
    drag(80.0F);
    EXPECT_THAT(takeRanges(), ElementsAre(7, 7, 8, 65, 7));
    window->release({80, 20});
    press(50.0F);  // grabbed where it is: no action
    EXPECT_TRUE(host.ranges.empty());
    drag(56.0F);
    EXPECT_THAT(takeRanges(), ElementsAre(8));
    window->release({56, 20});

    picker->setKeyRange({20, 3});
    press(82.0F);  // lands at 7 to 9, short of the pointer
    drag(200.0F);
    EXPECT_THAT(takeRanges(), ElementsAre(7));
    window->release({200, 20});
    picker->setClickRaster(1);
    picker->setDragRaster(5);
    press(150.0F);
    drag(170.0F);
    EXPECT_THAT(takeRanges(), ElementsAre(24, 25));
}

TEST_F(OctavePicker, RedrawsTheOldAndTheNewRangeBeforeItSends) {
    window->window.makeFirstResponder(picker);
    window->display();
    click(300.0F);
    EXPECT_EQ(host.redrawn, 2U);
    const auto onSurface = [&](KeyRange range) {
        DfOctavePickerView other({{}, {462, 40}});
        other.setKeyRange(range);
        return other.rangeRect();
    };
    const auto& asked = window->port.invalid;
    EXPECT_EQ(asked[0].intersection(onSurface({10, 10})), onSurface({10, 10}));
    EXPECT_EQ(asked[1].intersection(onSurface({49, 10})), onSurface({49, 10}));
    EXPECT_LT(asked[1].size.width, 80.0F) << "and not the rest";
    picker->setTarget(nullptr);
    Application::current().setDelegate(&host);  // no other receiver is looked for
    click(30.0F);
    Application::current().setDelegate(nullptr);
    EXPECT_EQ(host.ranges.size(), 1U);
    EXPECT_EQ(picker->keyRange().location, 0U);
}

TEST_F(OctavePicker, SidesCanBeDraggedWhereTheHostAllowsIt) {
    press(67.0F);
    drag(55.0F);
    EXPECT_EQ(picker->keyRange(), (KeyRange{8, 10}));
    window->release({55, 20});
    picker->setAllowsResizing(true);
    EXPECT_EQ(picker->cursorAt({52, 20}), Cursor::ResizeLeftRight);
    EXPECT_EQ(picker->cursorAt({80, 20}), Cursor::Arrow);
    press(52.0F);
    drag(40.0F);
    EXPECT_EQ(picker->keyRange(), (KeyRange{6, 12}));
    window->release({40, 20});
    press(115.0F);
    drag(121.0F);
    EXPECT_EQ(picker->keyRange(), (KeyRange{6, 13}));
    drag(-50.0F);
    EXPECT_EQ(picker->keyRange(), (KeyRange{6, 1}));
    window->release({0, 20});
    EXPECT_THAT(takeRanges(), ElementsAre(8, 6, 6, 6));
}

TEST_F(OctavePicker, KeysMoveItAndEscapePutsADragBack) {
    const auto key = [&](char16_t character) {
        window->key(character);
        return picker->keyRange().location;
    };
    press(70.0F);
    EXPECT_EQ(port.toolTip, "F\u22121 \u2013 A0");
    drag(100.0F);
    EXPECT_EQ(port.toolTip, "D0 \u2013 F1");
    EXPECT_EQ(key(kEscapeCharacter), 10U);
    EXPECT_EQ(port.toolTip, "");
    drag(200.0F);
    EXPECT_EQ(picker->keyRange().location, 10U) << "the drag is over";
    EXPECT_EQ(key(kLeftArrowCharacter), 9U);
    EXPECT_EQ(key(kPageDownCharacter), 2U);
    EXPECT_EQ(key(kPageDownCharacter), 0U);
    EXPECT_EQ(key(kRightArrowCharacter), 1U);
    EXPECT_EQ(key(kPageUpCharacter), 8U);
    EXPECT_EQ(key(kEndCharacter), 65U);
    EXPECT_EQ(key(kHomeCharacter), 0U);
    EXPECT_EQ(host.ranges.size(), 9U);
    Event shifted = window->eventAt(EventType::KeyDown, {});
    shifted.charactersIgnoringModifiers = std::u16string(1, kRightArrowCharacter);
    shifted.modifierFlags = kShiftKeyMask;
    picker->setAllowsResizing(true);
    picker->keyDown(shifted);
    EXPECT_EQ(picker->keyRange(), (KeyRange{0, 11}));
    EXPECT_TRUE(picker->wantsKey(shifted));
    shifted.charactersIgnoringModifiers = u"x";
    EXPECT_FALSE(picker->wantsKey(shifted));
}

TEST_F(OctavePicker, ADragEndsWithItsWindowAndWhenDisabled) {
    press(70.0F);
    window->window.visibilityDidChange(false);
    EXPECT_EQ(port.toolTip, "");
    drag(200.0F);
    EXPECT_TRUE(host.ranges.empty());
    press(70.0F);
    picker->setEnabled(false);
    drag(200.0F);
    click(300.0F);
    window->key(kRightArrowCharacter);
    EXPECT_FALSE(picker->setAccessibilityNumber(3.0));
    EXPECT_FALSE(picker->performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_EQ(picker->keyRange().location, 10U);
    picker->setEnabled(true);
    press(70.0F);
    drag(76.0F);
    host.ranges.clear();
    const auto taken = picker->takeFromSuperview();
    picker->mouseDragged(window->eventAt(EventType::LeftMouseDragged, {200, 20}));
    EXPECT_TRUE(host.ranges.empty());
}

TEST_F(OctavePicker, SurvivesItsDeletionInEachAction) {
    const std::function<void()> acts[] = {
        [&] { press(300.0F); },
        [&] { press(70.0F), drag(100.0F); },
        [&] { window->key(kLeftArrowCharacter); },
        [&] { picker->setAllowsResizing(true), press(66.0F), drag(30.0F); },
        [&] { picker->performAccessibilityAction(AccessibilityAction::Decrement); },
        [&] { picker->setAccessibilityNumber(20.0); },
    };
    for (const auto& act : acts) {
        host.victim = nullptr;
        window = hosted(true);
        window->window.makeFirstResponder(picker);
        host.victim = &window;
        act();
        EXPECT_EQ(window, nullptr);
        EXPECT_EQ(port.toolTip, "");
    }
}

TEST_F(OctavePicker, SpeaksInNamesOfNotes) {
    EXPECT_EQ(picker->accessibilityName(), "key range");
    EXPECT_EQ(picker->accessibilityValueText(), "F\u22121 to A0");
    picker->setFirstNote(21);
    picker->setOctaveOfMiddleC(4);
    EXPECT_EQ(picker->accessibilityValueText(), "D2 to F3");
    picker->setKeyRange({60, 15});
    EXPECT_EQ(picker->accessibilityValueText(), "E9 to G9") << "there are no notes beyond";
    picker->setFirstNote(-1);
    EXPECT_EQ(picker->firstNote(), 0);
    picker->setKeyRange({10, 10});
    port.notifications.clear();
    EXPECT_TRUE(picker->performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_TRUE(picker->setAccessibilityNumber(1e9));
    EXPECT_FALSE(picker->setAccessibilityNumber(std::nan("")));
    EXPECT_THAT(host.ranges, ElementsAre(11, 65));
    EXPECT_EQ(picker->accessibilityNumber()->maximum, 65.0);
    EXPECT_EQ(port.notifications[AccessibilityNotification::ValueChanged].size(), 2U);
}

TEST_F(OctavePicker, DrawsTheImagesOfTheHostAndTheRestItself) {
    const auto texts = [&] {
        picker->setNeedsDisplay();
        return RecordingCanvas::only(RecordingCanvas::What::Text, window->display());
    };
    ASSERT_EQ(texts().size(), 11U);
    EXPECT_EQ(texts().back().text, "C8");
    const auto keys = std::make_shared<testing::RecordedImage>(904, 60, 2.0F);
    const auto part = std::make_shared<testing::RecordedImage>(4, 26, 1.0F);
    registerImage("octave-glyphKeys", [&](float) { return keys; });
    for (const char* const name : {"octave-L_edge", "octave-fill", "octave-R_edge"})
        registerImage(name, [&](float) { return part; });
    picker->appearanceDidChange();
    EXPECT_EQ(picker->rangeRect(), (Rect{{66, 0}, {59, 40}}));
    picker->setKeyRange({65, 10});
    EXPECT_EQ(picker->rangeRect().maxX(), 457.0F);
    EXPECT_TRUE(texts().empty());
    picker->setNeedsDisplay();
    const auto drawn = RecordingCanvas::only(RecordingCanvas::What::Image, window->display());
    ASSERT_EQ(drawn.size(), 4U);
    EXPECT_EQ(drawn[0].rect, (Rect{{6, 5}, {452, 30}}));
    EXPECT_EQ(drawn[1].rect.minX(), picker->rangeRect().minX());
    EXPECT_EQ(drawn[2].rect.minX(), drawn[1].rect.maxX());
    EXPECT_EQ(drawn[3].rect.maxX(), picker->rangeRect().maxX());
    for (const char* const name :
         {"octave-glyphKeys", "octave-L_edge", "octave-fill", "octave-R_edge"})
        registerImage(name, nullptr);
}

}  // namespace
}  // namespace veltra
