// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_editor_control.h"

#include "veltra/controls/number_editor/number_display.h"
#include "veltra/controls/number_editor/number_groups.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/testing/archive_laws.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

// Who is asked and told: the delegate of bars, beats and ticks from 0 on, the target, the control's
// hooks. Each does what a test wants done then.
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
        note("split " + std::to_string(value));
        return isSilent ? std::nullopt : std::optional(groups.split(value));
    }
    std::optional<std::int64_t> calculateValueFromCellValues(
        DfNumberEditorControl&, std::span<const std::int32_t> values) override {
        const std::int64_t joined = std::max<std::int64_t>(groups.join(values), 0);
        note("join");
        return isSilent ? std::nullopt : std::optional(joined);
    }
    void valueOfCellChanged(DfNumberEditorControl& control, QkNumberEditorCell& cell) override {
        note("cell " + std::to_string(control.indexOfCell(&cell)) + '=' + cell.stringValue());
    }
    void act(DfNumberEditorControl& sender) {
        note("action " + std::to_string(sender.value() - sender.oldValue()));
    }
    void longClick() { note("long click"); }
};

class Editor final : public DfNumberEditorControl {
public:
    Editor(Host& told, bool isFlipped)
        : DfNumberEditorControl({{10, 40}, {126, 20}}), m_told(told), m_isFlipped(isFlipped) {
        setEditorCellCount(3);
        setDelegate(&told);
        setTarget(&told);
        setAction(veltra::action<&Host::act>());
        told.take();
    }
    using DfNumberEditorControl::setUpAddedCellAttributes;
    bool isFlipped() const override { return m_isFlipped; }
    bool willStartTrackingCellWithIndex(std::int32_t index) override {
        m_told.note("will " + std::to_string(index));
        return true;
    }
    void mouseButtonWentDown() override {
        DfNumberEditorControl::mouseButtonWentDown();
        m_told.note("down");
    }
    void mouseButtonWentUp() override {
        Host& told = m_told;
        DfNumberEditorControl::mouseButtonWentUp();
        told.note("up");
    }
    void scrollWheelWasMoved() override { m_told.note("wheel"); }
    void keyInEditorWasPressed() override { m_told.note("key"); }
    void stoppedEditingWithReason(QkNumberEditorCell& cell, std::int32_t reason) override {
        DfNumberEditorControl::stoppedEditingWithReason(cell, reason);
        m_told.note("stopped " + std::to_string(reason));
    }

private:
    Host& m_told;
    const bool m_isFlipped;
};

std::unique_ptr<View> rootWith(Editor*& editor, Host& told, bool isFlipped = false) {
    auto root = std::make_unique<View>(Rect{{}, {200, 100}});
    editor = &root->addSubview(std::make_unique<Editor>(told, isFlipped));
    return root;
}

class NumberEditors : public ::testing::Test {
protected:
    NumberEditors() {
        ticks = middleOf(4);
        host.window.makeFirstResponder(control);
    }
    Point middleOf(std::int32_t cell) const {
        return control->convertPointToView(control->frameOfCellAtIndex(cell).center(), nullptr);
    }
    Point above(Point point, float by) const { return {point.x, point.y + by}; }
    bool press(char16_t key, ModifierFlags flags = {}) {
        const Event event = host.keyEvent(key, flags);
        const bool wants = control->wantsKey(event);
        control->keyDown(event);
        return wants;
    }
    std::int32_t edited() const { return control->indexOfCell(control->editingCell()); }

    ManualRunLoop loop;
    ScriptedPort port;
    Host told;
    Editor* control = nullptr;
    HostedView host{rootWith(control, told)};
    Point ticks;
};

TEST_F(NumberEditors, BeginAsOneGroupAndStandInAsManyAsTheyAreGiven) {
    DfNumberEditorControl fresh({{}, {126, 20}});
    EXPECT_EQ(fresh.frameOfCellAtIndex(0), fresh.bounds());
    EXPECT_EQ(fresh.font(), Font::userFont(82.0F));  // at 82.5 nothing would be left
    fresh.setValue(0x1'FFFF'FFF9);
    EXPECT_THAT(fresh.editorCellValues(), ElementsAre(-7));  // the low 32 bits
    EXPECT_EQ(fresh.calculateValueFromCellValues(), -7);
    fresh.setEditorCellCount(-1);
    EXPECT_EQ(fresh.cellCount() + fresh.separatorCellCount(), 0);
    fresh.setCellClass(cellFactory<ActionCell>());  // cannot be used
    fresh.setEditorCellCount(2);
    EXPECT_EQ(fresh.editorCellCount(), 2);

    for (std::int32_t i = 0; i < 5; ++i) {
        auto& cell = dynamic_cast<QkNumberEditorCell&>(*control->cellAtIndex(i));
        const bool isGroup = i % 2 == 0;
        EXPECT_EQ(cell.isEditable(), isGroup);
        EXPECT_EQ(cell.placeHolderString(), isGroup ? ".00" : "");
        EXPECT_EQ(cell.horizontalTextInsetSum(), isGroup ? 2.0F : 0.0F);
        EXPECT_EQ(cell.alignment(), isGroup ? TextAlignment::Right : TextAlignment::Center);
    }
    control->setLeadingZerosOfEditorCellAtIndex(4, 2);
    control->setStringOfSeparatorCellAtIndex(".", 1);
    EXPECT_EQ(control->valueText(), "1/1.0000");
    for (const std::int32_t none : {-1, 3}) {
        EXPECT_EQ(control->editorCellAtIndex(none), nullptr);
        EXPECT_EQ(control->maxEditStringLenOfEditorCellAtIndex(none), 0U);
        EXPECT_EQ(control->placeHolderStringOfEditorCellAtIndex(none), "");
        EXPECT_EQ(control->stringOfSeparatorCellAtIndex(none), "");
        EXPECT_EQ(control->widthOfSeparatorCellAtIndex(none), 0.0F);
        EXPECT_EQ(control->cellAtIndex(2 * none), nullptr);
        control->setMaxEditStringLenOfEditorCellAtIndex(9, none);
        control->setPlaceHolderStringOfEditorCellAtIndex("000000", none);
        control->setLeadingZerosOfEditorCellAtIndex(9, none);
        control->setShadowEightsOfEditorCellAtIndex(9, none);
        control->setStringOfSeparatorCellAtIndex(";", none);
        control->setWidthOfSeparatorCellAtIndex(5, none);
        control->removeCellAtIndex(2 * none);
    }
    host.display();
    control->setEnabled(false);
    EXPECT_TRUE(host.display().empty());  // nothing at all
    control->editorCellAtIndex(1)->setDrawsBackground(true);
    control->setDrawsBackground(false);  // is not told to the cells
    EXPECT_TRUE(control->editorCellAtIndex(1)->drawsBackground());
    host.move(middleOf(2));
    EXPECT_TRUE(control->editorCellAtIndex(1)->isHovered());
    const std::unique_ptr<View> taken = control->takeFromSuperview();
    EXPECT_FALSE(control->editorCellAtIndex(1)->isHovered());
    control->addCell(std::make_unique<ActionCell>(), 4.0F);  // no number editor's, and no pair
    control->setFrameSize({100, 20});
    EXPECT_EQ(control->cellCount(), 6);
    EXPECT_EQ(control->separatorCellCount(), 2);
}

TEST_F(NumberEditors, FitTheirFontToTheirWidthHoweverOftenTheyAreLaidOut) {
    const auto sum = [this] {
        float width = 0.0F;
        for (std::int32_t i = 0; i < control->cellCount(); ++i) {
            EXPECT_EQ(control->cellAtIndex(i)->cellFrame().minX(), width);
            width = control->frameOfCellAtIndex(i).maxX();
        }
        return width;
    };
    const Font first = control->font();
    EXPECT_EQ(first.size, 21.0F);  // 6 + 3 * ceil(31.5) + 2 * ceil(10.5) = 124
    for (int i = 0; i < 40; ++i) {
        control->setFrameSize({i % 2 != 0 ? 126.0F : 90.3F + static_cast<float>(i), 20});
        EXPECT_LT(sum(), control->bounds().size.width);
    }
    EXPECT_EQ(control->font(), first);
    control->setWidthOfSeparatorCellAtIndex(3, 0);
    control->setWidthOfSeparatorCellAtIndex(2.5F, 1);
    control->setUseCustomSeparatorWidths(true);
    EXPECT_EQ(control->font().size, 25.0F);  // 126 - 5.5 - 6 > 3 * ceil(37.5) = 114
    EXPECT_EQ(sum(), 114.0F + 6.0F + 5.5F);
    control->setUseCustomSeparatorWidths(false);
    control->setLook(NumberEditorLook::Glass, 10.0F);
    EXPECT_EQ(sum(), 3 * (15.0F + 8.0F) + 2 * 5.0F);
    control->adjustCellsAndControlSizeToFontSize(true);
    EXPECT_EQ(control->bounds().size, (Size{79, 20}));
    EXPECT_EQ(control->font().size, 10.0F);
    control->setLook(NumberEditorLook::Plain, 10.0F);
    control->setFitsFontSize(false);
    control->setFrameSize({300, 20});
    EXPECT_EQ(control->font().size, 10.0F);
}

TEST_F(NumberEditors, StandInAGroupThatFollowsThePointerAndDrawsItsGround) {
    struct Brief final : QkNumberEditorCell {  // one drag, and it is enough
        bool continueTracking(Point, Point, View&) override { return false; }
        void stopTracking(Point, Point, View&, bool isUp) override { ended += isUp ? 'u' : 'x'; }
        std::string ended;
    };
    Shown<QkCellGroupControl> group(Rect{{}, {100, 20}});
    QkCellGroupControl& view = group.view;
    view.setFontSize(10.0F);
    for (const char* const text : {"12", "345"}) {
        auto cell = std::make_unique<Brief>();
        cell->setStringValue(text);
        cell->setEditable(true);
        view.addCell(std::move(cell), 50.0F);
    }
    view.recalculateCellPositionsAndSizes();
    EXPECT_EQ(view.frameOfCellAtIndex(0), (Rect{{0, 0}, {12, 20}}));
    EXPECT_EQ(view.frameOfCellAtIndex(1), (Rect{{12, 0}, {17, 20}}));
    view.setBackgroundColor(kBlack);
    view.setDrawsBackground(true);
    const auto grounds = group.drawn(RecordingCanvas::What::FillRect);
    ASSERT_EQ(grounds.size(), 3U);  // of the group, then of the cells
    EXPECT_EQ(grounds[0].rect, (Rect{{}, {100, 20}}));
    auto& cell = dynamic_cast<Brief&>(*view.cellAtIndex(0));
    group.press({5, 5});
    for (const float y : {6.0F, 7.0F})
        group.drag({5, y});
    group.release({5, 7});
    EXPECT_EQ(cell.ended, "x");
}

TEST_F(NumberEditors, AreShownWholeOnADisplayOfTheSizeThatFits) {
    for (const NumberEditorLook look : {NumberEditorLook::Glass, NumberEditorLook::Field}) {
        for (const float captions : {0.0F, 12.0F}) {
            NumberDisplay display({}, look);
            display.setGroups({{3, "bars"}, {2, "ticks", true}}, ":");
            if (captions > 0.0F) display.setCaptions({"BAR", "TICK"});
            const Size size = display.sizeThatFits();
            display.setFrameSize(size);
            const Rect place = display.editor().frame();
            EXPECT_EQ(place.size, (Size{size.width - 8.0F, 28.0F}));  // 1.4 of the font's size
            EXPECT_GE(place.minY(), captions);
            EXPECT_LE(place.maxY(), size.height);
            EXPECT_EQ(display.editor().frameOfCellAtIndex(2).maxX(), place.size.width);
            EXPECT_EQ(display.editor().valueText(), "0:00");
            EXPECT_EQ(display.editor().editorCellAtIndex(1)->accessibilityName(), "ticks");
            EXPECT_EQ(display.editor().maxEditStringLenOfEditorCellAtIndex(0), 3U);
            display.setFrameSize({size.width, captions + 20.0F});  // too low for its digits
            EXPECT_EQ(display.editor().frame().size.height, 20.0F);
        }
    }
}

TEST_F(NumberEditors, TakeAChangeToTheDelegateAndBackAndThenSendIt) {
    host.press(ticks);
    host.drag(above(ticks, 2));
    host.release(above(ticks, 2));
    host.drag(above(ticks, 9));  // nothing follows any more
    EXPECT_THAT(told.take(),
                ElementsAre("down", "will 4", "cell 4=2", "join", "split 2", "action 2", "up"));
    EXPECT_EQ(control->oldValue(), 2);
    host.wheel(middleOf(2), -1.0F);  // beat 0: before the beginning
    EXPECT_THAT(told.take(), ElementsAre("cell 2=0", "join", "split 0", "action -2", "wheel"));
    host.wheel(middleOf(1), 1.0F);
    EXPECT_THAT(told.take(), ElementsAre("wheel"));

    control->setSendsActionContinuous(false);
    host.press(ticks);
    host.drag(above(ticks, 1));
    host.drag(above(ticks, 3));
    told.take();
    host.release(ticks);
    EXPECT_THAT(told.take(), ElementsAre("action 3", "up"));
    // Wanted while the button is down and nothing is tracked: it is dropped.
    host.press(middleOf(1));
    host.wheel(ticks, 1.0F);
    host.release(middleOf(1));
    host.click(ticks);
    EXPECT_THAT(told.take(), ElementsAre("down", "cell 4=4", "join", "split 4", "wheel", "up",
                                         "down", "will 4", "up"));
    told.isSilent = true;  // answers nothing: the first group is the value
    host.wheel(middleOf(0), 1.0F);
    EXPECT_EQ(control->value(), 2);
}

TEST_F(NumberEditors, FollowThePointerUpAndDownOnAnyScreen) {
    Editor* flipped = nullptr;
    HostedView other(rootWith(flipped, told, true));
    for (const float part : {1.0F, 2.0F / 3.0F, 0.8F}) {
        for (Editor* editor : {control, flipped}) {
            HostedView& window = editor == control ? host : other;
            editor->setValue(0);
            window.press(ticks);
            for (int i = 1; i <= 30; ++i)
                window.drag(above(ticks, part * static_cast<float>(i)));
            EXPECT_EQ(editor->value(), std::lround(part * 30));
            for (int i = 29; i >= 10; --i)
                window.drag(above(ticks, part * static_cast<float>(i)));
            EXPECT_NEAR(static_cast<float>(editor->value()), part * 10, 1.0);
            window.window.visibilityDidChange(false);  // the release that comes of it ends it
            EXPECT_EQ(told.take().back(), "up");
        }
    }
}

TEST_F(NumberEditors, ALongClickEndsTheDragAndIsSent) {
    control->setSendsActionContinuous(false);
    control->setLongClickAction(action<&Host::longClick>());
    control->setLocksPointer(true);
    const RunLoop::ModeScope tracking(loop, RunLoopMode::EventTracking);
    host.press(ticks);
    host.drag(above(ticks, 2));
    EXPECT_EQ(host.port.locks, "+");
    told.take();
    loop.advance(0.59);
    EXPECT_THAT(told.take(), ElementsAre());
    loop.advance(0.02);
    EXPECT_THAT(told.take(), ElementsAre("action 2", "up", "long click"));
    EXPECT_EQ(host.port.locks, "+-");
    host.drag(above(ticks, 5));  // still held
    host.release(ticks);
    host.click(ticks);  // too short
    loop.advance(1.0);
    host.press(ticks);
    control->setEnabled(false);
    loop.advance(1.0);
    EXPECT_THAT(told.take(), ElementsAre("up", "down", "will 4", "up", "down", "will 4", "up"));
}

TEST_F(NumberEditors, AreEditedByDoubleClicksAndKeys) {
    const auto doubleClick = [this](Point point) {
        host.press(point, 2);
        host.release(point);
    };
    EXPECT_FALSE(press(u'5') || press(kEscapeCharacter) || press(kUpArrowCharacter));
    doubleClick(middleOf(0));
    EXPECT_TRUE(press(u'5'));
    told.take();
    doubleClick(ticks);  // the other: what was typed is committed, the keys stay
    EXPECT_TRUE(edited() == 4 && control->isFirstResponder());
    doubleClick(ticks);
    EXPECT_TRUE(edited() == -1 && !control->isFirstResponder());
    EXPECT_THAT(told.take(),
                ElementsAre("down", "will 4", "cell 0=5", "join", "split 15360", "action 15360",
                            "stopped 1", "up", "down", "will 4", "stopped 1", "up"));
    host.window.makeFirstResponder(control);
    for (const std::int32_t index : {0, 2, 4, 0}) {
        EXPECT_TRUE(press(kRightArrowCharacter));
        EXPECT_EQ(edited(), index);
    }
    EXPECT_TRUE(press(kLeftArrowCharacter) && edited() == 4);
    control->editorCellAtIndex(0)->setEnabled(false);
    EXPECT_TRUE(press(kRightArrowCharacter) && edited() == 2);
    told.take();
    EXPECT_TRUE(press(kUpArrowCharacter) && press(kEnterCharacter));
    EXPECT_THAT(told.take(),
                ElementsAre("cell 2=2", "join", "split 16320", "action 960", "key", "cell 2=2",
                            "join", "split 16320", "action 0", "stopped 3", "key"));
    control->startEditingForCell(control->cellAtIndex(2));
    host.port.invalid.clear();
    control->editingCell()->stopEditing();  // nothing was typed, but it looks otherwise
    EXPECT_FALSE(host.port.invalid.empty());
    control->startEditingForCell(control->cellAtIndex(1));  // is not editable
    EXPECT_EQ(edited(), -1);
    control->setBecomeFirstResponderStartsEditing(true);
    control->editorCellAtIndex(0)->setEnabled(true);
    host.window.makeFirstResponder(control);
    EXPECT_TRUE(edited() == 0 && press(u'7'));
    control->startEditingForCell(control->cellAtIndex(0));  // as it is already
    host.press(ticks, 3);
    told.take();
    host.window.makeFirstResponder(nullptr);  // commits, and does not resign again
    EXPECT_THAT(told.take(),
                ElementsAre("cell 0=7", "join", "split 24000", "action 7680", "stopped 1"));
    host.window.makeFirstResponder(control);
    told.hook = [this](const std::string& what) {
        if (what != "key") return;
        const WeakPointer<QkNumberEditorCell> removed(control->editorCellAtIndex(0));
        control->removeCellAtIndex(0);
        EXPECT_EQ(control->editingCell(), nullptr);
        ASSERT_TRUE(removed) << "it lives until the key is dealt with";
        EXPECT_EQ(removed->delegate(), nullptr);
    };
    EXPECT_EQ(edited(), 0);
    host.key(u'1');
    EXPECT_EQ(control->cellCount(), 4);
    told.hook = [this](const std::string& what) {
        if (what.starts_with("action")) control->setEnabled(false);
    };
    control->startEditingForCell(control->cellAtIndex(1));
    press(u'5');
    press(kRightArrowCharacter);  // commits first, and then there is nothing to be edited
    told.hook = [](const std::string&) {};
    EXPECT_EQ(edited(), -1);
    EXPECT_FALSE(control->canBecomeKeyView() || press(kReturnCharacter));
}

TEST_F(NumberEditors, CopyPasteAndLeadOnByKeysWhereTheHostWantsIt) {
    control->setValue(4215);
    control->setLeadingZerosOfEditorCellAtIndex(4, 2);
    EXPECT_FALSE(press(u'c', kControlKeyMask));
    control->setUsesClipboard(true);
    EXPECT_TRUE(press(u'c', kControlKeyMask));
    EXPECT_EQ(port.clipboard, "2/1/0375");
    for (const char16_t key : {u'8', kEscapeCharacter}) {
        control->startEditingForCell(control->cellAtIndex(0));
        press(u'9');
        control->setValue(4215);  // over what was typed, as a song that runs does
        press(key);
        EXPECT_EQ(control->cellAtIndex(0)->intValue(), key == u'8' ? 8 : 2);
    }
    press(kReturnCharacter);
    Event held = host.keyEvent(kReturnCharacter);
    held.isRepeat = true;
    control->keyDown(held);
    EXPECT_EQ(edited(), 0);
    press(u'9');
    told.take();
    for (const char* text : {"nothing", "7.5"}) {  // over what was typed; beat 5 is the next bar
        port.clipboard = text;
        EXPECT_TRUE(press(u'v', kControlKeyMask));
    }
    EXPECT_THAT(told.take(), ElementsAre("cell 0=7", "cell 2=5", "cell 4=0", "join", "split 26880",
                                         "action 26880"));
    press(u'.');
    EXPECT_EQ(edited(), 0);
    control->setSeparatorsLead(true);
    control->setStringOfSeparatorCellAtIndex(" of 40", 1);  // its digits are digits all the same
    const std::pair<char16_t, std::int32_t> keys[] = {{u'4', 0}, {u'0', 0}, {u'.', 2},
                                                      {u'/', 4}, {u',', 4}, {u'x', 4}};
    for (const auto& [key, index] : keys) {
        press(key);
        EXPECT_EQ(edited(), index);
    }
}

TEST_F(NumberEditors, KeepTheirSettingsInAnArchiveAndHalfOfTheirValue) {
    const Color red = Color::fromRgb(0xFF0000);
    control->setValue(0x1'FFFF'FFFE);
    control->setSendsActionContinuous(false);
    control->setUseCustomSeparatorWidths(true);
    control->setShadowEightColor(kWhite);
    control->setTextColor(red);
    control->setDisablesFontSmoothing(true);
    control->setDrawsBackground(true);
    control->setBackgroundColor(red);
    control->setEditTextColor(red);
    control->setEditBackgroundColor(red);
    DfNumberEditorControl read({{}, {126, 20}});
    EXPECT_EQ(archiveFaults<QkCellGroupControl>(*control, read, "CELLGROUP_", 6), "");
    DfNumberEditorControl other({{}, {126, 20}});
    EXPECT_EQ(archiveFaults<DfNumberEditorControl>(*control, other, "NUMBEREDITOR_", 4),
              "NUMBEREDITOR_VALUE is lost; ");
    EXPECT_EQ(read.value(), -2);
    EXPECT_EQ(read.editorCellAtIndex(0)->intValue(), 0);  // not before it is asked to
    read.setEditorCellCount(1);                           // new cells get the settings, too
    control->setControlSize(ControlSize::Mini);
    read.setControlSize(ControlSize::Small);
    for (const DfNumberEditorControl* each :
         {static_cast<DfNumberEditorControl*>(control), &read}) {
        const QkNumberEditorCell& cell = *each->editorCellAtIndex(0);
        EXPECT_TRUE(cell.textColor() == red && cell.editTextColor() == red);
        EXPECT_TRUE(cell.backgroundColor() == red && cell.editBackgroundColor() == red);
        EXPECT_TRUE(cell.shadowEightColor() == kWhite && cell.disablesFontSmoothing());
        EXPECT_EQ(cell.controlSize(), each->controlSize());
    }
    read.setDelegate(&told);
    EXPECT_THAT(told.take().back(), "split -2");
}

TEST_F(NumberEditors, TellReadersTheWholeAndEachGroup) {
    control->setAccessibilityName("position");
    EXPECT_EQ(shownAccessibilityChildren(*control).size(), 3U);
    EXPECT_EQ(control->accessibilityValueText(), "1/1/0");
    EXPECT_TRUE(control->accessibilityIsFocused() && control->accessibilityIsFocusable());
    EXPECT_FALSE(control->editorCellAtIndex(0)->accessibilityIsFocusable());
    press(kReturnCharacter);
    EXPECT_FALSE(control->accessibilityIsFocused());
    EXPECT_TRUE(control->editorCellAtIndex(0)->accessibilityIsFocused());
    EXPECT_EQ(control->editorCellAtIndex(0)->accessibilityName(), "position");
    EXPECT_TRUE(control->editorCellAtIndex(2)->setAccessibilityNumber(480));
    EXPECT_EQ(told.take().back(), "action 480");
}

// Deleted at once, and removed as a host does it, at each call out in each gesture.
TEST_F(NumberEditors, SurviveTheirDeletionInEachCallback) {
    for (const std::string place : {"down", "will", "cell", "join", "split", "action", "up",
                                    "wheel", "key", "stopped", "long", "stop"}) {
        for (const bool atOnce : {true, false}) {
            SCOPED_TRACE(place);
            Editor* victim = nullptr;
            HostedView window(rootWith(victim, told));
            const WeakPointer<View> alive(victim);
            victim->setLongClickAction(action<&Host::longClick>());
            told.hook = [&](const std::string& what) {
                if (!what.starts_with(place) || !alive) return;
                if (!atOnce) return victim->removeFromSuperview();
                victim->takeFromSuperview().reset();
            };
            const bool isPlaceOfWheel = place == "wheel" || place == "join";
            if (isPlaceOfWheel) window.wheel(ticks, 1.0F);
            if (alive && place != "key" && place != "stopped") {
                window.press(ticks);
                window.drag(above(ticks, 5));
                if (place == "long") loop.advance(1.0);
                window.release(ticks);
            }
            window.press(ticks, 2);
            window.release(ticks);
            window.key(u'5');
            KeyedCoder disabled;
            disabled.encodeBool(false, "CONTROL_ENABLED");
            if (place == "stop" && alive) victim->decodeWithCoder(disabled);
            window.key(kReturnCharacter);
            EXPECT_FALSE(alive);
            loop.advance(1.0);
            window.display();
            told.hook = [](const std::string&) {};
        }
    }
}

}  // namespace
}  // namespace veltra::testing
