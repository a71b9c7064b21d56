// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/cell_group_control.h"

#include "veltra/controls/number_editor/number_editor_delegate.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

// Three cells of 20 points: a number, a fixed text, a number. Writes down what happens, and lets a
// test do something to it then.
template <bool flipped = false>
class Group final : public QkCellGroupControl {
public:
    explicit Group(const Rect& frame) : QkCellGroupControl(frame) {
        for (int i = 0; i < 3; ++i) {
            auto cell = std::make_unique<QkNumberEditorCell>("0");
            cell->setEditable(i != 1);
            cell->setTarget(this);
            cell->setAction(veltra::action<&Group::changed>());
            addCell(std::move(cell), 20.0F);
        }
    }
    std::vector<std::string> log;
    std::function<void(const std::string&)> hook = [](const std::string&) {};
    bool mayStart = true;

    QkNumberEditorCell& number(std::int32_t index) {
        return static_cast<QkNumberEditorCell&>(*cellAtIndex(index));
    }
    std::vector<std::string> take() { return std::exchange(log, {}); }
    bool isFlipped() const override { return flipped; }
    void changed(QkNumberEditorCell& sender) {
        note(std::to_string(indexOfCell(&sender)) + '=' + sender.stringValue());
    }
    void stoppedEditingWithReason(QkNumberEditorCell& cell, std::int32_t reason) override {
        const WeakPointer<View> self(this);
        note("stopped " + std::to_string(reason));
        if (self) QkCellGroupControl::stoppedEditingWithReason(cell, reason);
    }
    bool willStartTrackingCellWithIndex(std::int32_t index) override {
        const bool may = mayStart;
        note("will " + std::to_string(index));
        return may;
    }
    void mouseButtonWentDown() override { note("down"); }
    void mouseButtonWentUp() override { note(mouseTrackingIsActive() ? "up of tracking" : "up"); }
    void scrollWheelWasMoved() override { note("wheel"); }
    void keyInEditorWasPressed() override { note("key"); }

private:
    void note(const std::string& what) {
        log.push_back(what);
        hook(what);
    }
};

template <bool flipped>
std::unique_ptr<View> rootWith(Group<flipped>*& group) {
    auto root = std::make_unique<View>(Rect{{}, {100, 100}});
    group = &root->addSubview(std::make_unique<Group<flipped>>(Rect{{10, 40}, {60, 20}}));
    return root;
}

class Groups : public ::testing::Test {
protected:
    void SetUp() override { group->take(); }
    ScriptedPort port;
    Group<>* group = nullptr;
    HostedView host{rootWith(group)};
};

TEST_F(Groups, SendThePointerAndTheWheelToTheCellAtTheirPlace) {
    host.press({15, 50});
    host.drag({15, 53});
    host.drag({90, 51});
    host.release({90, 51});
    host.drag({90, 90});  // nothing follows any more
    EXPECT_THAT(group->take(), ElementsAre("down", "will 0", "0=3", "0=1", "up of tracking"));
    host.click({35, 50});  // the fixed text
    host.wheel({35, 50}, 1.0F);
    host.wheel({55, 50}, -1.0F);
    EXPECT_THAT(group->take(), ElementsAre("down", "up", "wheel", "2=-1", "wheel"));
    group->mayStart = false;
    host.click({15, 50});
    EXPECT_THAT(group->take(), ElementsAre("down", "will 0", "up"));

    Group<true>* flipped = nullptr;
    HostedView other(rootWith(flipped));
    other.press({55, 50});
    other.drag({55, 53});  // up is up
    other.drag({55, 52});
    EXPECT_THAT(flipped->take(), ElementsAre("down", "will 2", "2=3", "2=2"));
    Event alien = other.eventAt(EventType::LeftMouseDragged, {55, 60});
    alien.eventNumber = 99;  // of another press
    flipped->mouseDragged(alien);
    other.window.visibilityDidChange(false);  // the release that comes of it ends the drag
    EXPECT_THAT(flipped->take(), ElementsAre("up of tracking"));
}

TEST_F(Groups, DragAsFarAsThePointerGoesOnAnyScreen) {
    for (const float part : {2.0F / 3.0F, 0.8F}) {
        for (const float sign : {1.0F, -1.0F}) {
            group->number(0).setIntValue(0);
            host.press({15, 50});
            for (int i = 1; i <= 30; ++i)
                host.drag({15, 50 + sign * part * static_cast<float>(i)});
            host.release({15, 50});
            EXPECT_EQ(group->number(0).intValue(), std::lround(sign * part * 30)) << part * sign;
        }
    }
}

TEST_F(Groups, DoubleClicksStartAndStopEditing) {
    const auto doubleClick = [this](Point point) {
        host.press(point, 2);
        host.release(point);
    };
    doubleClick({15, 50});
    EXPECT_EQ(group->editingCell(), &group->number(0));
    EXPECT_TRUE(group->isFirstResponder());
    host.key(u'5');
    group->take();
    doubleClick({55, 50});  // the other: what was typed is committed, the keys stay
    EXPECT_EQ(group->editingCell(), &group->number(2));
    EXPECT_TRUE(group->isFirstResponder());
    doubleClick({55, 50});
    EXPECT_EQ(group->editingCell(), nullptr);
    EXPECT_FALSE(group->isFirstResponder());
    EXPECT_THAT(group->take(), ElementsAre("down", "will 2", "0=5", "stopped 1", "up", "down",
                                           "will 2", "stopped 1", "up"));
}

TEST_F(Groups, KeysLeadFromCellToCellAndAround) {
    host.window.makeFirstResponder(group);
    const auto wants = [this](char16_t key) {
        Event event = host.eventAt(EventType::KeyDown, {});
        event.charactersIgnoringModifiers = std::u16string(1, key);
        return group->wantsKey(event);
    };
    EXPECT_TRUE(wants(kReturnCharacter) && wants(kLeftArrowCharacter));
    EXPECT_FALSE(wants(u'5') || wants(kEscapeCharacter) || wants(kUpArrowCharacter));
    host.key(u'5');
    host.key(kUpArrowCharacter);
    EXPECT_THAT(group->take(), ElementsAre());
    host.key(kRightArrowCharacter);
    EXPECT_EQ(group->editingCell(), &group->number(0));
    EXPECT_TRUE(wants(u'5') && wants(kEscapeCharacter));
    for (const std::int32_t index : {2, 0, 2}) {
        host.key(kRightArrowCharacter);
        EXPECT_EQ(group->editingCell(), group->cellAtIndex(index));
    }
    host.key(kLeftArrowCharacter);
    EXPECT_EQ(group->editingCell(), group->cellAtIndex(0));
    host.key(kLeftArrowCharacter);
    group->take();
    host.key(kUpArrowCharacter);
    host.key(kEnterCharacter);
    EXPECT_THAT(group->take(), ElementsAre("2=1", "key", "2=1", "stopped 3", "key"));
    host.window.makeFirstResponder(group);
    group->number(2).setEnabled(false);
    host.key(kReturnCharacter);
    host.key(kLeftArrowCharacter);  // no other cell: up the chain
    EXPECT_EQ(group->editingCell(), group->cellAtIndex(0));
    host.key(u'7');
    group->take();
    host.window.makeFirstResponder(nullptr);  // commits, and does not resign again
    EXPECT_THAT(group->take(), ElementsAre("0=7", "stopped 1"));
    group->setBecomeFirstResponderStartsEditing(true);
    host.window.makeFirstResponder(group);
    EXPECT_EQ(group->editingCell(), group->cellAtIndex(0));
    group->setEnabled(false);
    EXPECT_EQ(group->editingCell(), nullptr);
    EXPECT_FALSE(group->canBecomeKeyView() || wants(kReturnCharacter));
}

TEST_F(Groups, KeepTheirCellsInOrderAndGiveThemTheirSettings) {
    const Color red = Color::fromRgb(0xFF0000);
    group->setTextColor(red);
    group->setEditBackgroundColor(red);
    group->setDrawsBackground(true);
    group->setDisablesFontSmoothing(true);
    group->setFontSize(9.0F);
    group->setAlignment(TextAlignment::Center);
    group->addCell(std::make_unique<QkNumberEditorCell>("12"), Size{30, 10});
    KeyedCoder coder;
    group->encodeWithCoder(coder);
    Group<> read({{}, {60, 20}});
    read.decodeWithCoder(KeyedCoder(coder.archive()));
    for (const QkNumberEditorCell* cell : {&group->number(0), &group->number(3), &read.number(0)}) {
        EXPECT_TRUE(cell->textColor() == red && cell->editBackgroundColor() == red);
        EXPECT_TRUE(cell->drawsBackground() && cell->disablesFontSmoothing());
        EXPECT_TRUE(cell->font().size == 9.0F && cell->alignment() == TextAlignment::Center);
        EXPECT_NE(cell->delegate(), nullptr);
    }
    EXPECT_EQ(group->frameOfCellAtIndex(3), (Rect{{60, 0}, {30, 10}}));
    group->setWidthOfCellAtIndex(5, 0);
    group->recalculateCellPositions();
    EXPECT_EQ(group->number(3).cellFrame(), (Rect{{45, 0}, {30, 10}}));
    group->recalculateCellPositionsAndSizes();
    EXPECT_EQ(group->frameOfCellAtIndex(3), (Rect{{21, 0}, {11, 20}}));  // two digits of 9 points
    group->startEditingForCell(group->cellAtIndex(0));
    group->startEditingForCell(group->cellAtIndex(1));  // is not editable
    EXPECT_EQ(group->editingCell(), group->cellAtIndex(0));
    host.port.invalid.clear();
    group->updateCellInside(group->number(0));
    EXPECT_THAT(host.port.invalid, ElementsAre(Rect{{10, 40}, {7, 20}}));
    group->removeCellAtIndex(0);
    EXPECT_EQ(group->editingCell(), nullptr);
    for (const std::int32_t index : {-1, 3}) {
        EXPECT_EQ(group->cellAtIndex(index), nullptr);
        group->removeCellAtIndex(index);
    }
    EXPECT_EQ(group->cellCount(), 3);
}

// Deleted at once, and removed as a host does it, in every callback there is.
TEST_F(Groups, SurviveTheirDeletionInEachCallback) {
    const std::string places[] = {"down", "will 0", "0=3", "0=4",       "up of tracking", "wheel",
                                  "0=5",  "0=57",   "key", "stopped 3", "stopped 1"};
    for (const bool atOnce : {true, false}) {
        for (const std::string& place : places) {
            SCOPED_TRACE(place);
            Group<>* victim = nullptr;
            HostedView window(rootWith(victim));
            const WeakPointer<View> alive(victim);
            victim->hook = [&, place](const std::string& what) {
                if (what != place || !alive) return;
                if (!atOnce) return victim->removeFromSuperview();
                victim->takeFromSuperview().reset();
            };
            window.press({15, 50});
            window.drag({15, 53});
            window.release({15, 53});
            window.wheel({15, 50}, 1.0F);
            window.press({15, 50}, 2);
            window.release({15, 50});
            window.key(kUpArrowCharacter);
            window.key(u'5');
            window.key(u'7');
            window.key(place == "stopped 1" ? kRightArrowCharacter : kReturnCharacter);
            EXPECT_FALSE(alive);
            window.display();
        }
    }
}

}  // namespace
}  // namespace veltra::testing
