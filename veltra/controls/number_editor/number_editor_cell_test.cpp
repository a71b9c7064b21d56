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
        void stoppedEditingWithReason(QkNumberEditorCell& stopped, std::int32_t reason) override {
            EXPECT_FALSE(stopped.isEditing());
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
        cell.calculateInternalsFromCellFrame({{10, 4}, {60, 16}}, view());
    }
    View& view() { return *host.window.contentView(); }
    // - deletes, ^ and v are arrows.
    void keys(std::u16string_view characters, ModifierFlags flags = {}) {
        for (const char16_t character : characters) {
            const Event event = host.keyEvent(character == u'-'   ? kDeleteCharacter
                                              : character == u'^' ? kUpArrowCharacter
                                              : character == u'v' ? kDownArrowCharacter
                                                                  : character,
                                              flags);
            const bool isOurs = cell.isEditing() && flags.isEmpty() && character != u'x';
            EXPECT_EQ(cell.wantsKey(event), isOurs);
            cell.keyDown(event);
        }
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
        cell.drawWithFrame(canvas, cell.cellFrame(), view());
        return RecordingCanvas::only(what, surface.calls);
    }

    ScriptedPort port;
    HostedView host{std::make_unique<View>(Rect{{}, {100, 30}})};
    Host target;
    QkNumberEditorCell cell;
};

TEST_F(Cells, TypeDigitsAndCommitOrRestoreThem) {
    keys(u"1");  // not in edit mode
    const struct {
        std::u16string_view typed;
        const char* shown;
        std::u16string_view end;
        std::int32_t left;
        std::vector<std::string> told;
    } rows[] = {{u"1234", "234", u"\x1B", 50, {"stopped 2"}},
                {u"-", "5", u"\x1B", 50, {"stopped 2"}},  // the first edit: it counts
                {u"-7---", "", u"\x1B", 50, {"stopped 2"}},
                {u"007", "007", u"\r", 7, {"7", "stopped 3"}},
                {u"--", "", u"\x3", 0, {"0", "stopped 3"}},
                {u"8x", "8", u"", 8, {"8", "stopped 1"}},
                {u"", "8", u"\r", 8, {"8", "stopped 3"}},
                {u"", "8", u"", 8, {"stopped 1"}}};
    for (const auto& row : rows) {
        cell.startEditing();
        keys(row.typed);
        EXPECT_EQ(cell.stringValue(), row.shown);
        keys(row.end);
        cell.stopEditing();
        EXPECT_EQ(cell.intValue(), row.left);
        EXPECT_EQ(target.take(), row.told);
    }
    cell.setMaxEditStringLen(20);
    cell.startEditing();
    keys(u"99999999999");
    target.stops = &cell;  // the action ends editing: the delegate hears of it once
    keys(u"\r");
    EXPECT_THAT(target.take(), ElementsAre("2147483647", "stopped 1"));
    cell.startEditing();
    keys(u"5");
    cell.stopEditing();
    EXPECT_THAT(target.take(), ElementsAre("5", "stopped 1"));
}

TEST_F(Cells, StepByOneByKeysAndByTheMinimumByWheelDragAndReader) {
    cell.setMinimumDelta(10);
    cell.startEditing();
    keys(u"^60v");  // of what was typed, which is committed with it
    EXPECT_FALSE(cell.isEditedByNumberKeys());
    for (const float turn : {0.2F, -3.0F, 0.0F})
        wheel(turn);
    for (const float y : {6.0F, 5.0F, -20.0F})
        EXPECT_TRUE(cell.continueTracking({0, 5}, {9, y}, view()));
    EXPECT_TRUE(cell.performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_TRUE(cell.setAccessibilityNumber(7.9));
    for (int i = 0; i < 5; ++i)
        wheel(0.4F, true);  // parts of a notch add up
    cell.setCoarseStep(100);
    keys(u"^", kControlKeyMask);
    EXPECT_THAT(target.take(),
                ElementsAre("51", "59", "69", "59", "69", "44", "54", "7", "17", "27", "127"));
    wheel(1e20F, true);
    EXPECT_EQ(cell.intValue(), std::numeric_limits<std::int32_t>::max());
}

TEST_F(Cells, IgnoreTheUserWhileDisabledOrNotEditable) {
    const Event press = host.eventAt(EventType::LeftMouseDown, {15, 10});
    for (const bool isEnabled : {false, true}) {
        cell.setEnabled(isEnabled);
        cell.setEditable(!isEnabled);
        cell.startEditing();
        EXPECT_FALSE(cell.isEditing());
        EXPECT_FALSE(cell.setAccessibilityNumber(7.0));
        EXPECT_FALSE(cell.performAccessibilityAction(AccessibilityAction::Increment));
        EXPECT_FALSE(cell.trackMouse(press, cell.cellFrame(), view(), true));
        if (!isEnabled) cell.setNewValueAndSendAction(7);
    }
    EXPECT_EQ(cell.accessibilityRole(), AccessibilityRole::Ignored);
    EXPECT_EQ(cell.intValue(), 50);
    EXPECT_THAT(target.take(), ElementsAre());
}

TEST_F(Cells, FollowThePointerByThemselves) {
    struct Puller final : View {
        using View::View;
        std::function<void(const Event&)> pull;
        void mouseDown(const Event& event) override { pull(event); }
    };
    Shown<Puller> pulled(Rect{{}, {100, 30}});
    for (const bool untilMouseUp : {true, false}) {
        pulled.view.pull = [&](const Event& event) {
            cell.trackMouse(event, {{10, 4}, {60, 16}}, pulled.view, untilMouseUp);
        };
        cell.setIntValue(0);
        port.script.emplace_back([&] { pulled.drag({15, 13}); });
        port.script.emplace_back([&] { pulled.wheel({15, 13}, 5.0F); });
        port.script.emplace_back([&] { pulled.release({500, 500}); });
        pulled.click({15, 10});
        EXPECT_EQ(cell.intValue(), untilMouseUp ? 4 : 3);  // else the first drag ends it
        port.script.clear();
    }
    EXPECT_TRUE(cell.sendActionMask().isEmpty());  // the release has nothing to add
}

TEST_F(Cells, HaveTheColoursOfPlainTextWithoutALook) {
    EXPECT_EQ(drawn()[0].color, kBlack);
    cell.setShadowEights(3);
    EXPECT_EQ(drawn()[0].color, (Color{0.8F, 0.8F, 0.8F, 0.5F}));
    cell.setHovered(true);
    cell.setBackgroundColor(kWhite);
    EXPECT_TRUE(drawn(What::FillPath).empty() && drawn(What::FillRect).empty());
    cell.startEditing();
    EXPECT_EQ(drawn(What::FillPath)[0].color,
              systemColor(SystemColor::SelectedTextBackground, Appearance::Light));
    cell.setStringValue("");
    EXPECT_TRUE(drawn().empty());
}

TEST_F(Cells, AreAsWideAsTheirPlaceHolderAndTellReadersTheirValue) {
    cell.setHorizontalTextInsets(2.5F);
    cell.setVerticalTextInset(1.0F);
    EXPECT_EQ(cell.cellSize(), (Size{13 + 5, 19}));  // "50" at 13 points
    cell.setPlaceHolderString("000");
    EXPECT_EQ(cell.cellSize(), (Size{20 + 5, 19}));
    EXPECT_EQ(cell.accessibilityRole(), AccessibilityRole::Slider);
    EXPECT_EQ(cell.accessibilityNumber()->value, 50.0);
    view().setAccessibilityName("tempo");
    EXPECT_EQ(cell.accessibilityName(), "tempo");
    port.notifications.clear();
    cell.startEditing();
    keys(u"3");
    EXPECT_EQ(port.notifications[AccessibilityNotification::FocusGained].size(), 1U);
    EXPECT_EQ(port.notifications[AccessibilityNotification::ValueChanged].size(), 1U);
}

TEST_F(Cells, SurviveADelegateThatDiesFirst) {
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
