// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_editor_cell.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;
using What = RecordingCanvas::What;

class Cells : public ::testing::Test {
protected:
    struct Host final : Anchored, QkNumberEditorCellDelegate {
        std::vector<std::string> log;
        QkNumberEditorCell* stops = nullptr;  // what its action does to it
        void changed(QkNumberEditorCell& sender) {
            log.push_back(sender.stringValue());
            if (stops != nullptr) stops->stopEditing();
        }
        void stoppedEditingWithReason(QkNumberEditorCell& cell, std::int32_t reason) override {
            EXPECT_FALSE(cell.isEditing());
            log.push_back("stopped " + std::to_string(reason));
        }
        std::vector<std::string> take() { return std::exchange(log, {}); }
    };

    Cells() {
        cell.setEditable(true);
        cell.setIntValue(50);
        cell.setTarget(&target);
        cell.setAction(action<&Host::changed>());
        cell.setDelegate(&target);
        cell.setAlignment(TextAlignment::Right);
        cell.calculateInternalsFromCellFrame({{10, 4}, {60, 16}}, *host.window.contentView());
    }
    void key(char16_t character, ModifierFlags flags = {}) {
        Event event = host.eventAt(EventType::KeyDown, {});
        event.charactersIgnoringModifiers = std::u16string(1, character);
        event.modifierFlags = flags;
        EXPECT_EQ(cell.wantsKey(event), cell.isEditing() && flags.isEmpty() && character != u'x');
        cell.keyDown(event);
    }
    void keys(std::u16string_view characters) {
        for (const char16_t character : characters)
            key(character);
    }
    void wheel(float deltaY, bool isPrecise = false) {
        Event event = host.eventAt(EventType::ScrollWheel, {});
        event.deltaY = deltaY;
        event.hasPreciseScrollingDeltas = isPrecise;
        cell.scrollWheel(event);
    }
    std::vector<RecordingCanvas::Call> drawn(What what = What::Text) {
        RecordingCanvas surface;
        Canvas canvas(surface);
        cell.drawWithFrame(canvas, cell.cellFrame(), *host.window.contentView());
        return RecordingCanvas::only(what, surface.calls);
    }

    ScriptedPort port;
    HostedView host{std::make_unique<View>(Rect{{}, {100, 30}})};
    Host target;
    QkNumberEditorCell cell;
};

TEST_F(Cells, TypeDigitsAndCommitOrRestoreThem) {
    key(u'1');  // not in edit mode
    EXPECT_EQ(cell.intValue(), 50);
    cell.startEditing();
    keys(u"1234");
    EXPECT_EQ(cell.stringValue(), "234");
    EXPECT_THAT(target.take(), ElementsAre());
    key(kEscapeCharacter);
    EXPECT_EQ(cell.intValue(), 50);
    EXPECT_THAT(target.take(), ElementsAre("stopped 2"));

    cell.startEditing();
    key(kDeleteCharacter);  // the first edit: 50 comes back
    EXPECT_EQ(cell.stringValue(), "5");
    key(u'7');
    EXPECT_EQ(cell.stringValue(), "57");
    for (int i = 0; i < 3; ++i)
        key(kDeleteCharacter);
    EXPECT_EQ(cell.stringValue(), "");
    key(kEscapeCharacter);
    EXPECT_EQ(cell.intValue(), 50);
    EXPECT_THAT(target.take(), ElementsAre("stopped 2"));

    for (const char16_t end : {kReturnCharacter, kEnterCharacter}) {
        cell.startEditing();
        keys(u"007");
        key(end);
        EXPECT_THAT(target.take(), ElementsAre("7", "stopped 3"));
    }
    cell.startEditing();
    keys(u"8x");
    cell.stopEditing();
    cell.stopEditing();
    EXPECT_THAT(target.take(), ElementsAre("8", "stopped 1"));
    cell.setMaxEditStringLen(20);
    cell.startEditing();
    keys(u"99999999999");
    key(kReturnCharacter);
    EXPECT_EQ(cell.intValue(), std::numeric_limits<std::int32_t>::max());
    target.take();

    cell.startEditing();
    key(u'9');
    target.stops = &cell;  // the action ends editing: the delegate hears of it once
    key(kReturnCharacter);
    EXPECT_THAT(target.take(), ElementsAre("9", "stopped 1"));
}

TEST_F(Cells, StepByOneByKeysAndByTheMinimumByWheelDragAndReader) {
    cell.setMinimumDelta(10);
    cell.startEditing();
    key(kUpArrowCharacter);
    keys(u"60");
    key(kDownArrowCharacter);  // of what was typed, which is committed with it
    EXPECT_FALSE(cell.isEditedByNumberKeys());
    wheel(0.2F);
    wheel(-3.0F);
    wheel(0.0F);
    View& view = *host.window.contentView();
    EXPECT_TRUE(cell.continueTracking({0, 5}, {9, 6}, view));
    EXPECT_TRUE(cell.continueTracking({0, 5}, {9, 5}, view));
    EXPECT_TRUE(cell.continueTracking({0, 30}, {9, 5}, view));
    EXPECT_TRUE(cell.performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_TRUE(cell.performAccessibilityAction(AccessibilityAction::Decrement));
    EXPECT_TRUE(cell.setAccessibilityNumber(7.9));
    for (int i = 0; i < 5; ++i)
        wheel(0.4F, true);  // parts of a notch add up
    EXPECT_THAT(target.take(),
                ElementsAre("51", "59", "69", "59", "69", "44", "54", "44", "7", "17", "27"));
    cell.setCoarseStep(100);
    key(kUpArrowCharacter, kControlKeyMask);
    EXPECT_EQ(cell.intValue(), 127);
}

TEST_F(Cells, IgnoreTheUserWhileDisabledOrNotEditable) {
    cell.setEnabled(false);
    cell.startEditing();
    EXPECT_FALSE(cell.isEditing());
    wheel(1.0F);
    cell.setNewValueAndSendAction(7);
    EXPECT_FALSE(cell.setAccessibilityNumber(7.0));
    EXPECT_TRUE(cell.accessibilityActions().empty());
    const Event press = host.eventAt(EventType::LeftMouseDown, {15, 10});
    EXPECT_FALSE(cell.trackMouse(press, cell.cellFrame(), *host.window.contentView(), true));
    cell.setEnabled(true);
    cell.setEditable(false);
    cell.startEditing();
    EXPECT_FALSE(cell.isEditing());
    EXPECT_FALSE(cell.performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_FALSE(cell.trackMouse(press, cell.cellFrame(), *host.window.contentView(), true));
    EXPECT_EQ(cell.intValue(), 50);
    EXPECT_THAT(target.take(), ElementsAre());
    cell.setAction(action<&Receiver::act>());  // nobody who responds: nothing happens
    cell.setNewValueAndSendAction(8);
    EXPECT_EQ(cell.intValue(), 8);
}

// In an ordinary control: the loop of its own, and the release that has nothing to add.
TEST_F(Cells, FollowThePointerByThemselves) {
    struct Puller final : View {
        using View::View;
        std::function<void(const Event&)> pull;
        void mouseDown(const Event& event) override { pull(event); }
    };
    auto owned = std::make_unique<Puller>(Rect{{}, {100, 30}});
    Puller& view = *owned;
    HostedView pulled(std::move(owned));
    bool result = false;
    bool untilMouseUp = true;
    view.pull = [&](const Event& event) {
        result = cell.trackMouse(event, {{10, 4}, {60, 16}}, view, untilMouseUp);
    };
    const auto run = [&](Point end) {
        cell.setIntValue(0);
        port.script = {[&] {
                           pulled.drag({15, 13});
                       },
                       [&] {
                           pulled.wheel({15, 13}, 5.0F);
                       },
                       [&, end] { pulled.release(end); }};
        pulled.press({15, 10});
        pulled.release(end);
        return result;
    };
    EXPECT_TRUE(cell.prefersTrackingUntilMouseUp());
    EXPECT_TRUE(run({500, 500}));
    EXPECT_EQ(cell.intValue(), 4);
    untilMouseUp = false;
    EXPECT_FALSE(run({15, 13}));  // the first drag ends it
    EXPECT_EQ(cell.intValue(), 3);
    EXPECT_EQ(QkNumberEditorCell::convertPoint({5, 6}, {1, 2}), (Point{4, 4}));
    EXPECT_TRUE(cell.sendActionMask().isEmpty());
}

TEST_F(Cells, DrawTheirDigitsAsTheSettingsSay) {
    const Color red = Color::fromRgb(0xFF0000);
    const Color grey = Color::fromRgb(0x888888);
    auto texts = drawn();
    ASSERT_EQ(texts.size(), 1U);  // a line of 13 points is 16.25 high, and the frame 16
    EXPECT_EQ(texts[0].rect.origin, (Point{11, 0}));
    EXPECT_EQ(texts[0].color, kBlack);
    cell.setStringValue("");
    EXPECT_TRUE(drawn().empty());

    cell.setIntValue(7);
    cell.setTextColor(red);
    cell.setLeadingZeros(3);
    EXPECT_EQ(drawn()[0].text, "007");
    cell.setLeadingZerosColor(grey);
    cell.setDisablesFontSmoothing(true);
    texts = drawn();
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0].text + '|' + texts[1].text, "7|00");
    EXPECT_EQ(texts[0].color, red);
    EXPECT_EQ(texts[1].color, grey);
    EXPECT_FALSE(texts[1].isSmoothed);
    EXPECT_EQ(texts[0].rect.size.width - texts[1].rect.size.width, 6.5F);  // of one digit
    cell.setAlignment(TextAlignment::Left);
    texts = drawn();
    EXPECT_EQ(texts[0].rect.minX() - texts[1].rect.minX(), 13.0F);  // of two zeros
    cell.setAlignment(TextAlignment::Right);
    cell.setIntValue(0);
    texts = drawn();
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0].text, "000");
    EXPECT_EQ(texts[0].color, grey);

    cell.setLeadingZeros(0);
    cell.setShadowEights(3);
    cell.setIntValue(5);
    texts = drawn();
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0].text + '|' + texts[1].text, "888|  5");
    EXPECT_EQ(texts[0].color, (Color{0.8F, 0.8F, 0.8F, 0.5F}));
    EXPECT_TRUE(texts[0].isSmoothed);
    EXPECT_EQ(texts[0].rect, texts[1].rect);

    cell.setBackgroundColor(grey);
    EXPECT_TRUE(drawn(What::FillRect).empty());
    cell.setDrawsBackground(true);
    EXPECT_EQ(drawn(What::FillRect)[0].color, grey);
    cell.setEditTextColor(grey);
    cell.startEditing();
    EXPECT_EQ(drawn()[1].color, grey);
    EXPECT_EQ(drawn(What::FillPath)[0].color,
              systemColor(SystemColor::SelectedTextBackground, Appearance::Light));
    EXPECT_EQ(drawn(What::FillPath)[0].rect, (Rect{{11.5F, 5.5F}, {57, 13}}));
    EXPECT_EQ(drawn(What::StrokePath).size(), 1U);
}

TEST_F(Cells, ALookShowsThePointerAndWhatIsTyped) {
    cell.setLeadingZeros(4);
    cell.setShadowEights(4);
    host.port.invalid.clear();
    cell.setHovered(true);
    EXPECT_TRUE(host.port.invalid.empty());
    EXPECT_TRUE(drawn(What::FillPath).empty());
    cell.setLook(NumberEditorLook::Glass);
    EXPECT_EQ(drawn(What::FillPath).size(), 1U);
    EXPECT_EQ(drawn().size(), 3U);  // eights, digits, zeros
    cell.startEditing();
    EXPECT_EQ(drawn().size(), 2U);
    EXPECT_TRUE(drawn(What::FillRect).empty());
    key(u'1');
    const auto texts = drawn();
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0].text, "1");
    EXPECT_EQ(drawn(What::FillRect).size(), 1U);  // the caret
    key(kDeleteCharacter);
    EXPECT_EQ(drawn(What::FillRect).size(), 1U);
    key(kReturnCharacter);
    EXPECT_EQ(drawn().size(), 2U);  // 0: eights and zeros
}

TEST_F(Cells, AreAsWideAsTheirPlaceHolderAndTellReadersTheirValue) {
    cell.setHorizontalTextInsets(2.5F);
    cell.setVerticalTextInset(1.0F);
    EXPECT_EQ(cell.cellSize(), (Size{13 + 5, 19}));  // "50" at 13 points
    cell.setPlaceHolderString("000");
    EXPECT_EQ(cell.cellSize(), (Size{20 + 5, 19}));
    EXPECT_EQ(cell.cellSizeForBounds({{}, {10, 10}}), (Size{10, 10}));

    EXPECT_EQ(cell.accessibilityRole(), AccessibilityRole::Slider);
    EXPECT_EQ(cell.accessibilityOrientation(), AccessibilityOrientation::Horizontal);
    EXPECT_EQ(cell.accessibilityNumber()->value, 50.0);
    host.window.contentView()->setAccessibilityName("tempo");
    EXPECT_EQ(cell.accessibilityName(), "tempo");
    port.notifications.clear();
    cell.startEditing();
    key(u'3');
    EXPECT_EQ(port.notifications[AccessibilityNotification::FocusGained].size(), 1U);
    EXPECT_EQ(port.notifications[AccessibilityNotification::ValueChanged].size(), 1U);
    cell.setEditable(false);
    EXPECT_EQ(cell.accessibilityRole(), AccessibilityRole::Ignored);
}

TEST_F(Cells, SurviveTheirDeletionInEachCallbackAndADelegateThatDiesFirst) {
    struct Killer final : Anchored, QkNumberEditorCellDelegate {
        std::unique_ptr<QkNumberEditorCell> cell = std::make_unique<QkNumberEditorCell>();
        void act() { cell.reset(); }
        void stoppedEditingWithReason(QkNumberEditorCell&, std::int32_t) override { cell.reset(); }
    };
    for (const bool inAction : {true, false}) {
        for (const char16_t end : {kReturnCharacter, kEscapeCharacter}) {
            Killer killer;
            QkNumberEditorCell& victim = *killer.cell;
            victim.setEditable(true);
            victim.setControlView(host.window.contentView());
            victim.setTarget(&killer);
            if (inAction) victim.setAction(action<&Killer::act>());
            if (!inAction) victim.setDelegate(&killer);
            victim.startEditing();
            Event event;
            event.charactersIgnoringModifiers = u"5";
            victim.keyDown(event);
            event.charactersIgnoringModifiers = std::u16string(1, end);
            victim.keyDown(event);
            EXPECT_EQ(killer.cell == nullptr, !inAction || end == kReturnCharacter);
        }
    }
    {
        Host brief;
        cell.setDelegate(&brief);
    }
    cell.startEditing();
    cell.stopEditing();
    EXPECT_EQ(cell.delegate(), nullptr);
}

}  // namespace
}  // namespace veltra::testing
