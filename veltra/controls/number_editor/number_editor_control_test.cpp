// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_editor_control.h"

#include "veltra/controls/number_editor/number_groups.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

// Bars, beats and ticks, not below 0; writes down who is asked and told.
struct Host final : Anchored, DfNumberEditorControlDelegate {
    const NumberGroups groups{{{0, 1}, {4, 1}, {960, 0}}};
    std::vector<std::string> log;
    std::function<void(const std::string&)> hook = [](const std::string&) {};
    bool isSilent = false;

    void note(const std::string& what) {
        log.push_back(what);
        hook(what);
    }
    std::vector<std::string> take() { return std::exchange(log, {}); }

    std::optional<std::vector<std::int32_t>> calculateCellValuesFromValue(
        DfNumberEditorControl&, std::int64_t value) override {
        const auto values = groups.split(value);
        note("split " + std::to_string(value));
        if (isSilent) return std::nullopt;
        return values;
    }
    std::optional<std::int64_t> calculateValueFromCellValues(
        DfNumberEditorControl&, std::span<const std::int32_t> values) override {
        const std::int64_t joined = std::max<std::int64_t>(groups.join(values), 0);
        note("join");
        if (isSilent) return std::nullopt;
        return joined;
    }
    void valueOfCellChanged(DfNumberEditorControl& control, QkNumberEditorCell& cell) override {
        note("cell " + std::to_string(control.indexOfCell(&cell)) + '=' + cell.stringValue());
    }
    void act(DfNumberEditorControl& sender) {
        EXPECT_EQ(sender.target(), this);
        note("action " + std::to_string(sender.value() - sender.oldValue()));
    }
    void longClick() { note("long click"); }
};

std::unique_ptr<View> rootWith(DfNumberEditorControl*& control) {
    auto root = std::make_unique<View>(Rect{{}, {200, 100}});
    control = &root->addSubview(std::make_unique<DfNumberEditorControl>(Rect{{10, 40}, {126, 20}}));
    return root;
}

void connect(DfNumberEditorControl& control, Host& target) {
    control.setEditorCellCount(3);
    control.setDelegate(&target);
    control.setTarget(&target);
    control.setAction(action<&Host::act>());
    control.setValue(0);
    target.take();
}

class NumberEditors : public ::testing::Test {
protected:
    Point middleOf(std::int32_t cell) const {
        return control->convertPointToView(control->frameOfCellAtIndex(cell).center(), nullptr);
    }
    void up(Point& point, float by) { host.drag(point = {point.x, point.y + by}); }

    ManualRunLoop loop;
    ScriptedPort port;
    DfNumberEditorControl* control = nullptr;
    HostedView host{rootWith(control)};
    Host target;
};

TEST_F(NumberEditors, BeginAsOneGroupOfThreePlaces) {
    EXPECT_EQ(control->cellCount(), 1);
    EXPECT_EQ(control->alignment(), TextAlignment::Right);
    EXPECT_EQ(control->frameOfCellAtIndex(0), control->bounds());
    EXPECT_EQ(control->font(), Font::userFont(82.0F));  // at 82.5 nothing would be left
    control->setValue(0x1'0000'0007);
    EXPECT_THAT(control->editorCellValues(), ElementsAre(7));  // the low 32 bits
    control->setValue(0xFFFF'FFFF);
    EXPECT_EQ(control->calculateValueFromCellValues(), -1);
    EXPECT_EQ(control->value(), 0xFFFF'FFFF);
    host.display();
    control->setEnabled(false);
    EXPECT_TRUE(host.display().empty());  // nothing at all
}

TEST_F(NumberEditors, StandInGroupsWithSeparatorsBetweenThem) {
    control->setEditorCellCount(3);
    EXPECT_EQ(control->editorCellCount(), 3);
    EXPECT_EQ(control->separatorCellCount(), 2);
    for (std::int32_t i = 0; i < 5; ++i) {
        auto& cell = dynamic_cast<QkNumberEditorCell&>(*control->cellAtIndex(i));
        EXPECT_EQ(cell.isEditable(), i % 2 == 0);
        EXPECT_EQ(cell.stringValue(), i % 2 == 0 ? "0" : "/");
        EXPECT_EQ(cell.placeHolderString(), i % 2 == 0 ? ".00" : "");
        EXPECT_EQ(cell.horizontalTextInsetSum(), i % 2 == 0 ? 2.0F : 0.0F);
        EXPECT_EQ(cell.alignment(), i % 2 == 0 ? TextAlignment::Right : TextAlignment::Center);
    }
    control->setMaxEditStringLenOfEditorCellAtIndex(4, 2);
    control->setLeadingZerosOfEditorCellAtIndex(4, 2);
    control->setShadowEightsOfEditorCellAtIndex(4, 2);
    control->setStringOfSeparatorCellAtIndex(".", 1);
    EXPECT_EQ(control->valueText(), "0/0.0000");
    control->setShadowEightColor(kWhite);
    EXPECT_EQ(control->editorCellAtIndex(1)->shadowEightColor(), kWhite);
    for (const std::int32_t none : {-1, 3}) {
        EXPECT_EQ(control->editorCellAtIndex(none), nullptr);
        EXPECT_EQ(control->maxEditStringLenOfEditorCellAtIndex(none), 0U);
        control->setWidthOfSeparatorCellAtIndex(5, none);
    }
    struct Cell final : QkNumberEditorCell {
        using QkNumberEditorCell::QkNumberEditorCell;
    };
    control->setCellClass(cellFactory<Cell>());
    control->setEditorCellCount(-1);
    EXPECT_EQ(control->cellCount() + control->separatorCellCount(), 0);
    control->setValue(5);
    EXPECT_EQ(control->calculateValueFromCellValues(), 0);
    control->setEditorCellCount(2);
    EXPECT_NE(dynamic_cast<Cell*>(control->separatorCellAtIndex(0)), nullptr);
    DfNumberEditorControl::setDefaultCellClass(cellFactory<ActionCell>());  // cannot be used
    EXPECT_NE(DfNumberEditorControl().editorCellAtIndex(0), nullptr);
    DfNumberEditorControl::setDefaultCellClass(cellFactory<QkNumberEditorCell>());
}

TEST_F(NumberEditors, FitTheirFontToTheirWidthHoweverOftenTheyAreLaidOut) {
    control->setEditorCellCount(3);
    const auto sum = [this] {
        float width = 0.0F;
        for (std::int32_t i = 0; i < control->cellCount(); ++i) {
            EXPECT_EQ(control->frameOfCellAtIndex(i).minX(), width);
            width = control->frameOfCellAtIndex(i).maxX();
        }
        return width;
    };
    // 126 - 6 are left for three texts of three characters and two of one.
    EXPECT_EQ(control->font().size, 21.0F);  // 3 * ceil(31.5) + 2 * ceil(10.5) = 118
    EXPECT_EQ(sum(), 118.0F + 6.0F);
    const Font first = control->font();
    for (int i = 0; i < 40; ++i) {
        control->setFrameSize({i % 2 != 0 ? 126.0F : 90.3F + static_cast<float>(i), 20});
        EXPECT_LT(sum(), control->bounds().size.width);
    }
    EXPECT_EQ(control->font(), first);
    control->setWidthOfSeparatorCellAtIndex(3, 0);
    control->setWidthOfSeparatorCellAtIndex(2.5F, 1);
    control->setUseCustomSeparatorWidths(true);
    EXPECT_EQ(control->widthOfSeparatorCellAtIndex(0), 3.0F);
    EXPECT_EQ(control->font().size, 25.0F);  // 126 - 5.5 - 6 > 3 * ceil(37.5) = 114
    EXPECT_EQ(control->widthOfSeparatorCellAtIndex(1), 2.5F);
    EXPECT_EQ(sum(), 114.0F + 6.0F + 5.5F);
    control->setUseCustomSeparatorWidths(false);
    EXPECT_EQ(control->font(), first);

    control->setLook(NumberEditorLook::Glass, 10.0F);
    EXPECT_EQ(control->font().size, 10.0F);
    EXPECT_EQ(sum(), 3 * (15.0F + 8.0F) + 2 * 5.0F);
    control->setPlaceHolderStringOfEditorCellAtIndex("0000", 0);
    EXPECT_EQ(sum(), 84.0F);
    control->adjustCellsAndControlSizeToFontSize(true);
    EXPECT_EQ(control->bounds().size, (Size{84, 20}));
    EXPECT_EQ(control->font().size, 10.0F);
}

TEST_F(NumberEditors, TakeAChangeToTheDelegateAndBackAndThenSendIt) {
    connect(*control, target);
    Point point = middleOf(4);
    host.press(point);
    up(point, 2);
    EXPECT_THAT(target.take(), ElementsAre("cell 4=2", "join", "split 2", "action 2"));
    EXPECT_EQ(control->oldValue(), 2);
    host.release(point);
    EXPECT_THAT(target.take(), ElementsAre());
    host.wheel(middleOf(2), -1.0F);  // beat 0: below the beginning
    EXPECT_THAT(target.take(), ElementsAre("cell 2=0", "join", "split 0", "action -2"));
    EXPECT_THAT(control->editorCellValues(), ElementsAre(1, 1, 0));

    control->setSendsActionContinuous(false);
    host.press(point = middleOf(0));
    up(point, 2);
    up(point, 1);
    EXPECT_THAT(target.take(),
                ElementsAre("cell 0=3", "join", "split 7680", "cell 0=4", "join", "split 11520"));
    host.release(point);
    EXPECT_THAT(target.take(), ElementsAre("action 11520"));
    host.wheel(point, 1.0F);  // the button is up
    EXPECT_EQ(target.take().back(), "action 3840");
    // Wanted while the button is down and nothing is tracked: it is dropped.
    host.press(middleOf(1));
    host.wheel(point, 1.0F);
    host.release(middleOf(1));
    EXPECT_EQ(target.take().back(), "split 19200");
    host.click(point);
    EXPECT_THAT(target.take(), ElementsAre());

    target.isSilent = true;  // answers nothing: the first group is the value
    host.wheel(point, 1.0F);
    EXPECT_EQ(control->value(), 7);
    EXPECT_EQ(control->editorCellValues()[0], 7);
}

TEST_F(NumberEditors, ALongClickEndsTheDragAndIsSent) {
    connect(*control, target);
    control->setSendsActionContinuous(false);
    control->setLongClickAction(action<&Host::longClick>());
    Point point = middleOf(4);
    host.press(point);
    up(point, 2);
    target.take();
    loop.advance(0.59);
    EXPECT_THAT(target.take(), ElementsAre());
    loop.advance(0.02);
    EXPECT_THAT(target.take(), ElementsAre("action 2", "long click"));
    up(point, 5);  // still held
    host.release(point);
    EXPECT_THAT(target.take(), ElementsAre());
    host.click(point);  // too short
    loop.advance(1.0);
    host.press(point);
    {
        const RunLoop::ModeScope tracking(loop, RunLoopMode::EventTracking);
        loop.advance(0.7);
    }
    EXPECT_THAT(target.take(), ElementsAre("long click"));
    host.release(point);
    host.press(point);
    control->setEnabled(false);
    loop.advance(1.0);
    EXPECT_THAT(target.take(), ElementsAre());
}

TEST_F(NumberEditors, CopyPasteAndLeadOnByKeysWhereTheHostWantsIt) {
    connect(*control, target);
    control->setValue(4215);
    control->setLeadingZerosOfEditorCellAtIndex(4, 2);
    host.window.makeFirstResponder(control);
    const auto command = [this](char16_t key) {
        Event event = host.eventAt(EventType::KeyDown, {});
        event.charactersIgnoringModifiers = std::u16string(1, key);
        event.modifierFlags = kControlKeyMask;
        const bool wants = control->wantsKey(event);
        control->keyDown(event);
        return wants;
    };
    EXPECT_FALSE(command(u'c'));
    EXPECT_EQ(port.clipboard, "");
    control->setUsesClipboard(true);
    EXPECT_TRUE(command(u'c'));
    EXPECT_EQ(port.clipboard, "2/1/0375");
    host.key(kReturnCharacter);
    host.key(u'9');
    port.clipboard = "7.5";
    target.take();
    EXPECT_TRUE(command(u'v'));  // over what was typed; beat 5 is the next bar
    EXPECT_THAT(target.take(), ElementsAre("cell 0=7", "cell 2=5", "cell 4=0", "join",
                                           "split 26880", "action 26880"));
    port.clipboard = "nothing";
    EXPECT_TRUE(command(u'v'));
    EXPECT_THAT(target.take(), ElementsAre());

    host.key(u'.');
    EXPECT_EQ(control->editingCell(), control->editorCellAtIndex(0));
    control->setSeparatorsLead(true);
    const std::pair<char16_t, std::int32_t> keys[] = {{u'.', 1}, {u'/', 2}, {u',', 2}, {u'x', 2}};
    for (const auto& [key, index] : keys) {
        host.key(key);
        EXPECT_EQ(control->editingCell(), control->editorCellAtIndex(index)) << char(key);
    }
}

TEST_F(NumberEditors, KeepTheirSettingsInAnArchiveAndHalfOfTheirValue) {
    control->setValue(0x1'FFFF'FFFE);
    control->setSendsActionContinuous(false);
    control->setUseCustomSeparatorWidths(true);
    control->setShadowEightColor(kWhite);
    KeyedCoder coder;
    control->encodeWithCoder(coder);
    EXPECT_EQ(coder.decodeInt64("NUMBEREDITOR_VALUE"), 0x1'FFFF'FFFE);
    DfNumberEditorControl read({{}, {126, 20}});
    read.decodeWithCoder(KeyedCoder(coder.archive()));
    EXPECT_EQ(read.value(), -2);
    EXPECT_EQ(read.editorCellAtIndex(0)->intValue(), 0);  // not before it is asked to
    EXPECT_FALSE(read.sendsActionContinuous());
    EXPECT_TRUE(read.useCustomSeparatorWidths());
    EXPECT_EQ(read.shadowEightColor(), kWhite);
    read.setDelegate(&target);
    EXPECT_EQ(read.editorCellValues()[0], 0);  // the bar before the first
    read.setValue(9);
    read.decodeWithCoder(KeyedCoder());
    EXPECT_EQ(read.value(), 9);
}

TEST_F(NumberEditors, TellReadersTheWholeAndEachGroup) {
    connect(*control, target);
    control->setAccessibilityName("position");
    EXPECT_EQ(shownAccessibilityChildren(*control).size(), 3U);
    EXPECT_EQ(control->accessibilityValueText(), "1/1/0");
    host.window.makeFirstResponder(control);
    EXPECT_TRUE(control->accessibilityIsFocused());
    host.key(kReturnCharacter);
    EXPECT_TRUE(control->editorCellAtIndex(0)->accessibilityIsFocused());
    EXPECT_EQ(control->editorCellAtIndex(0)->accessibilityName(), "position");
    EXPECT_TRUE(control->editorCellAtIndex(2)->setAccessibilityNumber(480));
    EXPECT_EQ(target.take().back(), "action 480");
}

TEST_F(NumberEditors, SurviveTheirDeletionInEachCallback) {
    for (const bool atOnce : {true, false}) {
        for (const std::string place : {"cell", "join", "split", "action", "long"}) {
            for (const std::string gesture : {"wheel", "drag", "paste", "type", "hold"}) {
                if ((place == "long") != (gesture == "hold")) continue;
                SCOPED_TRACE(place + gesture);
                DfNumberEditorControl* victim = nullptr;
                HostedView window(rootWith(victim));
                connect(*victim, target);
                const WeakPointer<View> alive(victim);
                victim->setLongClickAction(action<&Host::longClick>());
                target.hook = [&](const std::string& what) {
                    if (!what.starts_with(place) || !alive) return;
                    if (!atOnce) return victim->removeFromSuperview();
                    victim->takeFromSuperview().reset();
                };
                port.clipboard = "5.1.1";
                const Point point{15, 50};
                if (gesture == "wheel") window.wheel(point, 1.0F);
                if (gesture == "paste") victim->paste();
                if (gesture == "drag" || gesture == "hold") {
                    window.press(point);
                    if (gesture == "drag") window.drag({15, 55});
                    loop.advance(1.0);
                    window.release(point);
                }
                if (gesture == "type") {
                    window.press(point, 2);
                    window.release(point);
                    window.key(u'5');
                    window.key(kReturnCharacter);
                }
                loop.advance(1.0);
                EXPECT_FALSE(alive);
                window.display();
                target.hook = [](const std::string&) {};
            }
        }
    }
}

}  // namespace
}  // namespace veltra::testing
