// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/slider_cell.h"

#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/platform/notification_center.h"
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/image_registry.h"
#include "veltra/ui/testing/archive_laws.h"
#include "veltra/ui/testing/scripted_port.h"
#include "veltra/ui/theme.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Log = std::vector<std::string>;

// A slider of a value a point, and a note of everything that it tells.
class SliderHost final : public Anchored, public ToolTipSource {
public:
    explicit SliderHost(bool isVertical = false, bool isFlipped = false, float knob = 16.0F)
        : host(isFlipped ? std::make_unique<Flipped<Slider>>() : std::make_unique<Slider>()),
          cell(QkSliderCell::replacedCellInSlider(slider())) {
        host.window.frameDidChange({{}, isVertical ? Size{40, 104 + knob} : Size{104 + knob, 40}});
        cell.setMaxValue(104.0);
        slider().setTarget(this);
        slider().setAction(action<&SliderHost::changed>());
        auto& center = NotificationCenter::local();
        center.addObserver(this, &SliderHost::noted, kSliderStartTracking, &cell);
        center.addObserver(this, &SliderHost::noted, kSliderStopTracking, &cell);
    }
    ~SliderHost() override { NotificationCenter::local().removeObserver(this); }

    // What was told since the last time.
    Log taken() { return std::exchange(log, {}); }
    Slider& slider() { return static_cast<Slider&>(*host.window.contentView()); }

    void changed(Slider& sender) {
        log.push_back("send " + number(sender.doubleValue()));
        hook("send");
    }
    std::string stringForTag(std::int32_t tag) override {
        hook("tip");
        return "tip " + std::to_string(tag);
    }
    static std::string number(double value) {
        return std::to_string(static_cast<int>(std::lround(value * 10))) + "/10";
    }

    std::function<void(const std::string&)> hook = [](const std::string&) {};
    Log log;
    HostedView host;
    QkSliderCell& cell;

private:
    static void noted(void* self, const VLString* name, const void*) {
        auto& host = *static_cast<SliderHost*>(self);
        const bool isStart = VLStringLength(name) == VLStringLength(kSliderStartTracking);
        host.log.emplace_back(isStart ? "start" : "stop");
        host.hook(host.log.back());
    }
};

class SliderCellTest : public ::testing::Test {
protected:
    ManualRunLoop loop;
    ScriptedPort port;
};

TEST_F(SliderCellTest, TellsTheStepsOfADragInOrderAsFarAsTheMaskAllows) {
    const EventMask down = EventType::LeftMouseDown;
    const EventMask drag = EventType::LeftMouseDragged;
    const EventMask up = EventType::LeftMouseUp;
    const std::pair<EventMask, Log> cases[] = {
        {down | drag | up, {"start", "send 520/10", "send 620/10", "send 620/10", "stop"}},
        {down, {"start", "send 520/10", "stop"}},
        {drag, {"start", "send 620/10", "stop"}},
        {up, {"start", "send 620/10", "stop"}},
        {{}, {"start", "stop"}},
    };
    for (const auto& [mask, told] : cases) {
        SliderHost on;
        EXPECT_EQ(on.cell.sendActionOn(mask), down | drag | up);
        on.cell.setMovableToolTip(&on, 7);
        on.host.press({60, 20});  // beside the knob: it jumps
        EXPECT_EQ(port.toolTip, "tip 7");
        EXPECT_EQ(port.toolTipPlace, (Point{60, 20}));
        EXPECT_EQ(port.toolTipSide, ToolTipSide::Above);
        on.host.drag({70, 20});
        EXPECT_EQ(port.toolTipPlace, (Point{70, 20}));
        on.host.release({70, 20});
        EXPECT_EQ(port.toolTip, "");
        EXPECT_EQ(on.taken(), told);
        on.cell.sendActionWithCurrentEvent(false);
        EXPECT_THAT(on.taken(), ElementsAre("send 620/10"));
        on.host.move({5, 5});
        on.cell.sendActionWithCurrentEvent(true);
        EXPECT_THAT(on.log, IsEmpty()) << "that was no event of the button";
        port.script = {[&] { on.host.release({60, 20}); }};  // pulled
        Event event = on.host.eventAt(EventType::LeftMouseDown, {60, 20});
        on.cell.trackMouse(event, on.slider().bounds(), on.slider(), true);
        EXPECT_EQ(on.log.front(), "start");
        EXPECT_EQ(on.log.back(), "stop");
    }
}

TEST_F(SliderCellTest, HoldsTheKnobWhereItIsGrabbedInEveryDirection) {
    for (const bool isVertical : {false, true}) {
        for (const bool isFlipped : {false, true}) {
            SliderHost on(isVertical, isFlipped);
            // Points of the window, whose y axis points up: flipped or not, up is more.
            const auto at = [&](float along) {
                return isVertical ? Point{20, along} : Point{along, 20};
            };
            on.cell.setDoubleValue(30.0);
            on.host.press(at(42));  // four off the middle
            EXPECT_EQ(on.cell.doubleValue(), 30.0);
            on.host.drag(at(62));
            EXPECT_DOUBLE_EQ(on.cell.doubleValue(), 50.0);
            on.host.drag(at(-900));
            EXPECT_EQ(on.cell.doubleValue(), 0.0);
            on.host.drag(at(900));
            EXPECT_EQ(on.cell.doubleValue(), 104.0);
            on.host.release(at(900));
            on.host.click(at(28));
            EXPECT_DOUBLE_EQ(on.cell.doubleValue(), 20.0);
        }
    }
    SliderHost on(true);  // left and right also on an upright slider
    on.cell.setThumbClickAreaLeftInset(6.0F);
    on.cell.setThumbClickAreaRightInset(4.0F);
    const std::pair<float, bool> presses[] = {{17, false}, {18, true}, {23, true}, {24, false}};
    for (const auto& [x, isGrabbed] : presses) {
        on.cell.setDoubleValue(50.0);
        on.host.click({x, 63});  // five above the middle
        EXPECT_DOUBLE_EQ(on.cell.doubleValue(), isGrabbed ? 50.0 : 55.0) << x;
    }
}

TEST_F(SliderCellTest, TakesPressesOnTheTrackAndOnLabelsAndRefusesOthers) {
    struct Case {
        bool isVertical, isFlipped;
        Point point;
        double value;
    };
    const Case cases[] = {
        {false, false, {10, 20}, 0},   {false, true, {110, 20}, 104}, {false, false, {60, 38}, 52},
        {true, false, {20, 10}, 0},    {true, true, {20, 10}, 0},     {true, true, {20, 110}, 104},
        {true, false, {20, 110}, 104},
    };
    for (const bool accepts : {true, false}) {
        for (const Case& row : cases) {
            SliderHost on(row.isVertical, row.isFlipped);
            on.cell.setMinSideInset(20.0F);
            on.cell.setMaxSideInset(20.0F);
            on.cell.setTrackYInset(8.0F);
            on.cell.setLabelClickSetsMinMaxValue(accepts);
            on.cell.setDoubleValue(0.5);
            on.host.click(row.point);
            EXPECT_EQ(on.cell.doubleValue(), accepts ? row.value : 0.5);
            EXPECT_EQ(on.taken().size(), accepts ? 4U : 0U);
            on.slider().setEnabled(false);
            on.host.click({60, 60});
            on.host.wheel({60, 20}, 1.0F);
            EXPECT_THAT(on.log, IsEmpty()) << "disabled";
        }
    }
    SliderHost none;  // labels that take no room are none
    none.cell.setMinSideSliderInset(20.0F);
    none.cell.setLabelClickSetsMinMaxValue(true);
    none.host.click({10, 20});
    EXPECT_THAT(none.log, IsEmpty());
}

TEST_F(SliderCellTest, SetsTheDefaultOnAnAltClickAndDoesNotDragThen) {
    SliderHost on;
    on.cell.setDefaultValue(12.0);
    on.cell.sendActionOn({});
    on.cell.setMovableToolTip(&on, 1);
    on.host.press({60, 20}, 1, kAlternateKeyMask);  // not switched on yet
    on.host.release({60, 20});
    EXPECT_EQ(on.cell.doubleValue(), 52.0);
    on.taken();
    on.cell.setAltClickSetsDefaultValue(true);
    on.host.press({60, 20}, 1, kAlternateKeyMask);
    EXPECT_EQ(port.toolTipPlace.x, 20.0F);
    on.host.drag({90, 20});
    on.host.wheel({90, 20}, 1.0F);
    on.host.release({90, 20});
    EXPECT_EQ(on.cell.doubleValue(), 12.0);
    EXPECT_THAT(on.taken(), ElementsAre("send 120/10", "start", "stop"));
    on.host.press({60, 20});
    EXPECT_EQ(on.cell.doubleValue(), 52.0) << "the next click is a plain one";
}

TEST_F(SliderCellTest, MovesFinelyWithShiftAndNeverJumps) {
    for (const bool isFlipped : {false, true}) {
        SliderHost on(true, isFlipped);
        on.cell.setFineValueControlStep(0.1);
        on.cell.setDoubleValue(30.0);
        on.host.press({20, 40});
        on.taken();
        on.host.drag({20, 70}, kShiftKeyMask);  // 30 points, one event
        EXPECT_DOUBLE_EQ(on.cell.doubleValue(), 30.1);
        on.host.drag({35, 70}, kShiftKeyMask);  // across
        EXPECT_THAT(on.taken(), ElementsAre("send 301/10"));
        on.host.drag({35, 60}, kShiftKeyMask);
        EXPECT_DOUBLE_EQ(on.cell.doubleValue(), 30.0);
        on.host.drag({35, 70}, kShiftKeyMask);
        on.host.drag({20, 70});  // Shift is up, and nothing moves along the track
        EXPECT_DOUBLE_EQ(on.cell.doubleValue(), 30.1);
        on.host.drag({20, 73});
        EXPECT_NEAR(on.cell.doubleValue(), 33.1, 1.0);
        on.host.release({20, 73});
    }
    SliderHost on;
    on.host.press({60, 20}, 1, kShiftKeyMask);  // without a fine step Shift does nothing
    on.host.drag({70, 20}, kShiftKeyMask);
    EXPECT_EQ(on.cell.doubleValue(), 62.0);
    on.cell.setFineValueControlStep(-0.5);
    on.host.drag({80, 20}, kShiftKeyMask);
    EXPECT_EQ(on.cell.doubleValue(), 61.5) << "a negative step leads the other way";
}

TEST_F(SliderCellTest, IsCapturedByMarksAndGetsAwayFromThem) {
    SliderHost on;
    for (const double mark : {50.0, 50.0, -1.0, 105.0, static_cast<double>(NAN), 80.0})
        on.cell.setMagneticMarkAt(mark);
    EXPECT_THAT(on.cell.magneticMarks(), ElementsAre(50.0, 80.0));
    on.cell.setMagneticMarkDelta(2.0);
    on.host.press({60, 20});
    EXPECT_EQ(on.cell.doubleValue(), 52.0);
    on.host.drag({59, 20});
    EXPECT_EQ(on.cell.doubleValue(), 50.0);
    on.cell.setFineValueControlStep(0.75);
    on.host.drag({60, 20}, kShiftKeyMask);
    on.host.drag({70, 20});
    on.host.drag({71, 20}, kShiftKeyMask);
    EXPECT_DOUBLE_EQ(on.cell.doubleValue(), 60.75) << "one step, whatever a mark has swallowed";
    on.host.drag({60, 20});
    float x = 61.0F;
    for (const double value : {50.0, 50.0, 52.25, 53.0}) {  // a mark holds fine steps for a while
        on.host.drag({x++, 20}, kShiftKeyMask);
        EXPECT_DOUBLE_EQ(on.cell.doubleValue(), value);
    }
    on.host.release({59, 20});
    on.cell.setDoubleValue(50.0);
    on.host.wheel({5, 5}, 1.0F);
    EXPECT_EQ(on.cell.doubleValue(), 50.75) << "the wheel gets away at once";
    on.cell.setDoubleValue(47.5);
    on.host.wheel({5, 5}, 1.0F);
    EXPECT_EQ(on.cell.doubleValue(), 50.0) << "and comes to rest at a mark";
    on.cell.setMaxValue(49.0);
    EXPECT_EQ(on.cell.doubleValue(), 49.0) << "a change of range is no new value";
    on.cell.resetMagneticMarks();
    EXPECT_THAT(on.cell.magneticMarks(), IsEmpty());
}

TEST_F(SliderCellTest, CountsARunOfNotchesAsOneGesture) {
    SliderHost on;
    on.cell.setMovableToolTip(&on, 3);
    on.host.wheel({5, 5}, 2.0F);
    EXPECT_EQ(port.toolTip, "tip 3");
    loop.advance(0.99);
    on.host.wheel({5, 5}, 0.5F);  // a part of a notch, which prolongs nothing
    on.host.wheel({5, 5}, 0.5F);
    EXPECT_THAT(on.taken(), ElementsAre("start", "send 21/10", "send 31/10"));
    loop.advance(0.99);
    EXPECT_EQ(port.toolTip, "tip 3");
    loop.advance(0.01);
    EXPECT_EQ(port.toolTip, "");
    EXPECT_THAT(on.taken(), ElementsAre("stop"));

    on.host.wheel({5, 5}, -9.0F);  // beyond the end: nothing more to send
    on.host.wheel({5, 5}, -1.0F);
    EXPECT_THAT(on.taken(), ElementsAre("start", "send 0/10"));
    on.host.press({60, 20});  // ends the run, and the tip stays
    on.host.wheel({60, 20}, 10.0F);
    EXPECT_THAT(on.taken(), ElementsAre("stop", "start", "send 520/10", "send 624/10"));
    on.host.drag({61, 20});
    EXPECT_NEAR(on.cell.doubleValue(), 63.4, 1.0) << "the drag goes on from where the wheel led";
    on.host.release({61, 20});
    loop.advance(2.0);
    EXPECT_EQ(on.taken().back(), "stop");
    const struct {
        double fine;
        std::int32_t marks;
        double value;
    } steps[] = {{0.0, 0, 52.08}, {0.25, 0, 50.5}, {0.25, 5, 104.0}, {0.0, 5, 104.0}};
    for (const auto& step : steps) {
        on.cell.setNumberOfTickMarks(step.marks);
        on.cell.setAllowsTickMarkValuesOnly(step.marks > 0);
        on.cell.setFineValueControlStep(step.fine);
        on.cell.setDoubleValue(50.0);
        on.host.wheel({5, 5}, 2.0F);
        EXPECT_DOUBLE_EQ(on.cell.doubleValue(), step.value);
    }
    on.taken();
    on.slider().setEnabled(false);
    EXPECT_THAT(on.taken(), ElementsAre("stop")) << "a run ends when the slider is disabled";
}

TEST_F(SliderCellTest, ObeysTheKeyboardAndScreenReaders) {
    SliderHost on;
    on.host.window.makeFirstResponder(&on.slider());
    const auto key = [&](char16_t character, ModifierFlags flags = {}) {
        EXPECT_TRUE(on.slider().wantsKey(on.host.keyEvent(character, flags)));
        on.host.key(character, flags);
    };
    on.cell.setFineValueControlStep(0.5);
    on.cell.setAltIncrementValue(2.0);
    on.cell.setDefaultValue(40.0);
    on.cell.setAltClickSetsDefaultValue(true);
    const struct {
        char16_t key;
        ModifierFlags flags;
        double value;
    } rows[] = {{kUpArrowCharacter, {}, 2},        {kRightArrowCharacter, kShiftKeyMask, 2.5},
                {kPageUpCharacter, {}, 22.5},      {kLeftArrowCharacter, {}, 20.5},
                {kDownArrowCharacter, {}, 18.5},   {kPageDownCharacter, kShiftKeyMask, 13.5},
                {kDeleteCharacter, {}, 40},        {kEndCharacter, {}, 104},
                {kForwardDeleteCharacter, {}, 40}, {kHomeCharacter, {}, 0}};
    Log told{"start"};
    for (const auto& row : rows) {
        key(row.key, row.flags);
        EXPECT_EQ(on.cell.doubleValue(), row.value);
        told.push_back("send " + SliderHost::number(row.value));
    }
    EXPECT_EQ(on.taken(), told);
    loop.advance(1.0);
    EXPECT_THAT(on.taken(), ElementsAre("stop"));

    on.host.press({60, 20});
    on.host.drag({80, 20});
    key(kEscapeCharacter);  // the value before the press
    on.host.drag({90, 20});
    on.host.release({90, 20});
    EXPECT_THAT(on.taken(),
                ElementsAre("start", "send 520/10", "send 720/10", "send 0/10", "stop"));
    EXPECT_FALSE(on.slider().wantsKey(on.host.keyEvent(kEscapeCharacter)))
        << "without a drag it is the host's";
    on.host.press({60, 20});
    key(kUpArrowCharacter);
    on.host.drag({61, 20});
    EXPECT_EQ(on.cell.doubleValue(), 55.0) << "the drag goes on from where the key led";
    on.host.release({61, 20});
    on.taken();

    on.cell.setInvertValues(true);
    EXPECT_TRUE(on.cell.setAccessibilityNumber(90.0));
    EXPECT_EQ(on.cell.doubleValue(), 14.0);
    EXPECT_TRUE(on.cell.performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_EQ(on.cell.accessibilityNumber()->value, 92.0);
    EXPECT_EQ(on.cell.accessibilityNumber()->step, 2.0);
    EXPECT_THAT(on.taken(), ElementsAre("start", "send 140/10", "send 120/10"));
    EXPECT_EQ(on.cell.accessibilityValueText(), "92");
    on.cell.setFormatter([](double value) { return std::to_string(std::lround(value)) + " %"; });
    EXPECT_EQ(on.cell.stringForTag(0), "92 %");
    AccessibilityElement& view = on.slider();
    EXPECT_EQ(on.cell.accessibilityParent(), &view);
}

TEST_F(SliderCellTest, SaysNumbersAsFinelyAsTheyChange) {
    const std::tuple<double, double, double, const char*> rows[] = {{100, 0, 33.4, "33"},
                                                                    {2, 0, -0.25, "\u22120.25"},
                                                                    {1, 0.001, 0.5, "0.500"},
                                                                    {6, 0.1, -0.01, "0.0"}};
    for (const auto& [maximum, fine, value, text] : rows) {
        QkSliderCell cell;
        cell.setMaxValue(maximum);
        cell.setMinValue(-1.0);
        cell.setFineValueControlStep(fine);
        cell.setDoubleValue(value);
        EXPECT_EQ(cell.stringForTag(0), text);
    }
    QkSliderCell pan;
    setUpPan(pan);
    const std::pair<double, const char*> sides[] = {
        {-2, "L 100"}, {-0.5, "L 50"}, {0.001, "C"}, {0.25, "R 25"}};
    for (const auto& [position, text] : sides) {
        pan.setDoubleValue(position);
        EXPECT_EQ(pan.stringForTag(0), text);
    }
}

// In each call out the slider is deleted at once, or discarded as a host does it; or the pointer is
// lost because the slider is disabled, hidden or its window closed. Each start has its stop.
TEST_F(SliderCellTest, SurvivesWhateverHappensInItsCalls) {
    QkSliderCell off;
    off.setEnabled(false);
    KeyedCoder disabled;
    off.encodeWithCoder(disabled);
    for (const char* place : {"start", "send", "stop", "tip"}) {
        for (const int way : {0, 1, 2, 3, 4}) {
            for (const int gesture : {0, 1, 2, 3, 4, 5, 6}) {
                SCOPED_TRACE(place + std::string(" ") + std::to_string(way) +
                             std::to_string(gesture));
                SliderHost on;
                on.cell.setMovableToolTip(&on, 0);
                on.cell.setAltClickSetsDefaultValue(true);
                on.cell.setDefaultValue(9.0);
                on.host.window.makeFirstResponder(&on.slider());
                const WeakPointer<View> slider(&on.slider());
                bool isDone = false;
                on.hook = [&](const std::string& where) {
                    if (where != place || std::exchange(isDone, true)) return;
                    if (way == 0) slider->takeFromSuperview().reset();
                    if (way == 1) slider->removeFromSuperview();
                    if (way == 2) on.slider().setEnabled(false);
                    if (way == 3) slider->setHidden(true);
                    if (way == 4) on.host.window.visibilityDidChange(false);
                };
                if (gesture == 3) {
                    on.host.wheel({5, 5}, 1.0F);
                } else if (gesture == 4) {
                    on.host.key(kUpArrowCharacter);
                } else if (gesture > 4) {  // the run is under way
                    on.host.wheel({5, 5}, 1.0F);
                    if (slider && gesture == 5) on.slider().setCell(std::make_unique<SliderCell>());
                    if (slider && gesture == 6) on.cell.decodeWithCoder(disabled);
                } else {
                    on.host.press({60, 20}, 1, gesture == 1 ? kAlternateKeyMask : ModifierFlags{});
                    on.host.drag({70, 20});
                    if (gesture == 2) on.host.key(kEscapeCharacter);
                    on.host.release({70, 20});
                }
                loop.advance(2.0);
                EXPECT_TRUE(isDone);
                EXPECT_EQ(static_cast<bool>(slider), way > 1);
                EXPECT_EQ(std::count(on.log.begin(), on.log.end(), "start"),
                          std::count(on.log.begin(), on.log.end(), "stop"));
                if (on.log.front() == "start") {
                    EXPECT_EQ(on.log.back(), "stop");
                }
                EXPECT_EQ(port.toolTip, "");
                on.hook = [](const std::string&) {};
                on.host.display();
            }
        }
    }
}

TEST_F(SliderCellTest, TakesItsPropertiesAlongAndGoesBackToTheFirstOnes) {
    SliderHost on;
    setUpFader(on.cell);
    on.cell.setImageIDs(kSliderKnobPan, 9);
    on.cell.setEndLabels("low", "high");
    on.cell.setMaxValue(2.0);
    on.cell.setMinValue(-1.0);
    on.cell.setNumberOfTickMarks(4);
    on.cell.setAllowsTickMarkValuesOnly(true);
    on.cell.setLogTickMarks(2);
    on.cell.setInvertValues(true);
    on.cell.setTickMarkColor(kBlack);
    on.cell.setTickMarkDisabledColor(kWhite);
    on.cell.setThumbClickAreaLeftInset(3.0F);
    on.cell.setLabelClickSetsMinMaxValue(true);
    on.cell.setShowsDisabledWhenNotMainWindow(true);
    on.cell.setKnobDisabledAlpha(0.125F);
    on.cell.setDoubleValue(0.5);
    // Does not capture what was set before.
    on.cell.setMagneticMarkAt(on.cell.doubleValue() + 1e-4);
    on.cell.setEnabled(false);
    on.cell.sendActionOn(EventType::LeftMouseUp);
    QkSliderCell read;
    EXPECT_EQ(archiveFaults(on.cell, read, "SLIDER_", 23), "");
    read.decodeWithCoder(KeyedCoder(archiveOf(on.cell)));  // now that it has marks
    Slider copy;
    copy.setTarget(&on);
    copy.setTag(7);
    copy.setDoubleValue(0.75);
    QkSliderCell& replaced = QkSliderCell::replacedCellInSlider(copy);
    EXPECT_EQ(copy.doubleValue(), 0.75);
    copy.setTarget(nullptr);
    replaced.initWithPropertiesOfSliderCell(on.cell);
    EXPECT_EQ(copy.target(), &on);
    EXPECT_EQ(replaced.sendActionMask(), EventMask(EventType::LeftMouseUp));
    EXPECT_EQ(replaced.action(), on.cell.action());
    EXPECT_EQ(replaced.stringForTag(0), on.cell.stringForTag(0));
    EXPECT_TRUE(replaced.hasMovableToolTip());
    for (const QkSliderCell* kept : {&read, &replaced})
        EXPECT_EQ(archiveOf(*kept), archiveOf(on.cell));
    SliderCell plain;
    QkSliderCell fresh;
    fresh.initWithPropertiesOfSliderCell(plain);
    const PropertyValue first = archiveOf(fresh);
    fresh.initWithPropertiesOfSliderCell(on.cell);
    fresh.myInit();
    EXPECT_EQ(fresh.sendActionMask(), QkSliderCell().sendActionMask());
    fresh.setLogTickMarks(0);  // the class below keeps what it has
    fresh.setInvertValues(false);
    fresh.initWithPropertiesOfSliderCell(plain);
    EXPECT_EQ(archiveOf(fresh), first);
    EXPECT_EQ(fresh.stringForTag(0), "0.00") << "without the formatter";
    EXPECT_THAT(fresh.magneticMarks(), IsEmpty());
    EXPECT_FALSE(fresh.hasMovableToolTip());
}

TEST_F(SliderCellTest, LooksHoveredOrDisabledAsThePointerAndTheWindowSay) {
    using ::testing::AllOf, ::testing::Contains, ::testing::Not;
    SliderHost on(true, false, 36.0F);
    setUpFader(on.cell);
    const auto& colors = theme(Appearance::Light);
    const auto drawn = [&] {
        std::vector<Color> all;
        for (const auto& call : on.host.display())
            all.push_back(call.color);
        return all;
    };
    on.host.display();
    const Rect knob = on.cell.knobRectFlipped(false);
    EXPECT_EQ(on.slider().focusShape()->rect, knob);
    on.host.move(knob.center());
    EXPECT_THAT(drawn(), Contains(colors.capHover));
    on.host.move({1, 1});
    EXPECT_THAT(drawn(), AllOf(Contains(colors.cap), Not(Contains(colors.capHover))));
    on.cell.setDoubleValue(0.3);
    on.cell.setShowsDisabledWhenNotMainWindow(true);
    EXPECT_THAT(drawn(), Contains(colors.accent));
    Window other{on.host.port, Size{10, 10}};
    other.visibilityDidChange(true);
    on.host.window.keyStateDidChange(false);
    other.keyStateDidChange(true);
    EXPECT_THAT(drawn(), AllOf(Contains(colors.line), Not(Contains(colors.accent))));
}

TEST_F(SliderCellTest, DrawsWhatAHostRegisters) {
    SliderHost on(true, false, 36.0F);
    setUpFader(on.cell);
    for (const std::int32_t part : {kSliderKnobFader, kSliderTrackSlot})
        registerImage(part,
                      [](float scale) { return std::make_shared<RecordedImage>(20, 30, scale); });
    for (const bool isEnabled : {true, false}) {
        on.slider().setEnabled(isEnabled);
        on.slider().setNeedsDisplay();
        EXPECT_EQ(on.host.drawn(RecordingCanvas::What::Image).size(), 2U);
        EXPECT_EQ(on.cell.knobThickness(), 30.0F);
    }
    for (const std::int32_t part : {kSliderKnobFader, kSliderTrackSlot})
        registerImage(part, nullptr);
}

TEST_F(SliderCellTest, HasMarksBesideItsTrackAndATrackInWhateverRoomIsLeft) {
    for (const bool isFlipped : {false, true}) {
        SliderHost on(true, isFlipped), lying(false, isFlipped);  // 40 x 120, and the reverse
        for (SliderHost* const host : {&on, &lying}) {
            host->cell.setTickMarkYPosition(9.0F, 3.0F);
            host->cell.setNumberOfTickMarks(3);
        }
        EXPECT_EQ(on.cell.rectOfTickMarkAtIndex(0, isFlipped),
                  (Rect{{8, isFlipped ? 111.5F : 7.5F}, {3, 1}}));
        EXPECT_EQ(lying.cell.rectOfTickMarkAtIndex(1, isFlipped),
                  (Rect{{59.5F, isFlipped ? 29.0F : 8.0F}, {1, 3}}));
        EXPECT_TRUE(on.cell.rectOfTickMarkAtIndex(3, isFlipped).isEmpty());
        on.cell.setMaxSideInset(20.0F);
        for (const auto& [inset, height] : {std::pair{10.0F, 90.0F}, {NAN, 100.0F}, {1e9F, 0.0F}}) {
            on.cell.setMinSideInset(inset);
            for (int i = 0; i < 3; ++i)
                on.cell.calculateInternalsFromCellFrame(on.slider().bounds(), on.slider());
            on.host.display();
            EXPECT_EQ(on.cell.trackRect().size.height, height);
        }
    }
}

}  // namespace
}  // namespace veltra::testing
