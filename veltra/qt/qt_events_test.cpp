// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_events.h"

#include "veltra/qt/testing/on_qt.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;

TEST_F(OnQt, TellsPressesDragsAndTheWheelInTheWindowsCoordinates) {
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {100, 50}}));
    QTest::mousePress(widget, Qt::LeftButton, Qt::ShiftModifier | Qt::AltModifier, {10, 20});
    drag({13, 16});
    QTest::mouseRelease(widget, Qt::LeftButton, {}, {13, 16});
    ASSERT_EQ(probe.events.size(), 3U);
    EXPECT_EQ(probe.events[0].locationInWindow, (Point{10, 30}));
    EXPECT_EQ(probe.events[0].modifierFlags, kShiftKeyMask | kAlternateKeyMask);
    EXPECT_EQ(probe.events[1].type, EventType::LeftMouseDragged);
    EXPECT_TRUE(probe.events[1].deltaX == 3 && probe.events[1].deltaY == 4);
    const int last = probe.events[2].eventNumber;
    EXPECT_EQ(last, probe.events[0].eventNumber);
    EXPECT_TRUE(widget->hasFocus());
    probe.events.clear();
    std::uint64_t time = 100'000;
    for (const auto type :
         {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick, QEvent::MouseButtonPress}) {
        QMouseEvent press(type, {50, 20}, widget->mapToGlobal(QPointF(50, 20)), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        press.setTimestamp(time += 100);
        QApplication::sendEvent(widget, &press);
    }
    const auto clicks = [](int count) { return Field(&Event::clickCount, count); };
    EXPECT_THAT(probe.events, ElementsAre(clicks(1), clicks(2), clicks(3)));
    EXPECT_EQ(probe.events.back().eventNumber, last + 3);

    QTest::mouseClick(widget, Qt::RightButton, {}, {50, 20});  // meanwhile
    EXPECT_EQ(probe.events.back().eventNumber, last + 4);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, {50, 20});
    EXPECT_THAT(probe.events.back(),
                ::testing::AllOf(clicks(3), Field(&Event::eventNumber, last + 3)));
    probe.events.clear();
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {  // nobody hears of the latter
        QTest::mousePress(widget, button, {}, {10, 20});
        drag({13, 16}, button);
        QTest::mouseRelease(widget, button, {}, {13, 16});
    }
    const auto is = [](EventType type) { return Field(&Event::type, type); };
    EXPECT_THAT(probe.events,
                ElementsAre(is(EventType::RightMouseDown), is(EventType::RightMouseDragged),
                            is(EventType::RightMouseUp)));

    EXPECT_TRUE(turn({0, 24}));
    EXPECT_FLOAT_EQ(probe.events.back().deltaY, 0.2F);
    EXPECT_TRUE(turn({-120, 0}, Qt::AltModifier));  // as systems that swap the axes send it
    EXPECT_EQ(probe.events.back().deltaY, -1);
    probe.takesKeys = false;
    EXPECT_FALSE(turn({0, 120})) << "what no view takes is offered to the widgets around";
}

TEST_F(OnQt, TheWheelTellsWhetherItIsFine) {
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {100, 50}}));
    turn({0, 120});
    EXPECT_FALSE(probe.events.back().hasPreciseScrollingDeltas);
    EXPECT_EQ(probe.events.back().scrollPhase, ScrollPhase::None);
    const std::pair<Qt::ScrollPhase, ScrollPhase> phases[] = {
        {Qt::ScrollBegin, ScrollPhase::Began},
        {Qt::ScrollUpdate, ScrollPhase::Changed},
        {Qt::ScrollMomentum, ScrollPhase::Momentum},
        {Qt::ScrollEnd, ScrollPhase::Ended}};
    for (const auto& [phase, told] : phases) {
        for (const int angle : {0, 18}) {  // some devices tell pixels alone
            QWheelEvent fine(QPointF(5, 5), widget->mapToGlobal(QPointF(5, 5)), {0, 3}, {0, angle},
                             Qt::NoButton, Qt::NoModifier, phase, false);
            QApplication::sendEvent(widget, &fine);
            EXPECT_TRUE(probe.events.back().hasPreciseScrollingDeltas);
            EXPECT_EQ(probe.events.back().scrollPhase, told);
            EXPECT_FLOAT_EQ(probe.events.back().deltaY, 0.15F);
        }
    }
}

TEST_F(OnQt, TellsKeysAsCharactersThatControlsKnow) {
    const struct {
        int key;
        Qt::KeyboardModifiers modifiers;
        QString text;
        std::u16string characters, ignoring;
        ModifierFlags flags;
    } rows[] = {
        {Qt::Key_A, {}, "a", u"a", u"a", {}},
        {Qt::Key_A, Qt::ShiftModifier, "A", u"A", u"A", kShiftKeyMask},
        {Qt::Key_A, Qt::ControlModifier, "\x01", u"\x01", u"a", kControlKeyMask},
        {Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier, "\x01", u"\x01", u"A",
         kControlKeyMask | kShiftKeyMask},
        {Qt::Key_Dead_Acute, Qt::ControlModifier, "", u"", u"", kControlKeyMask},
        {Qt::Key_Up, {}, "", u"\uF700", u"\uF700", kFunctionKeyMask},
        {Qt::Key_F3, Qt::MetaModifier, "", u"\uF706", u"\uF706",
         kFunctionKeyMask | kCommandKeyMask},
        {Qt::Key_Enter, Qt::KeypadModifier, "\r", u"\x03", u"\x03", kNumericPadKeyMask},
        {Qt::Key_Backspace, {}, "\b", u"\x7F", u"\x7F", {}},
        {Qt::Key_Dead_Acute, {}, "", u"", u"", {}},
        {Qt::Key_Shift, {}, "", u"", u"", kShiftKeyMask},
    };
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {100, 50}}));
    widget->veltraWindow().makeFirstResponder(&probe);
    for (const auto& row : rows) {
        QKeyEvent press(QEvent::KeyPress, row.key, row.modifiers, 38, 0, 0, row.text);
        QApplication::sendEvent(widget, &press);
        const Event& event = probe.events.back();
        EXPECT_EQ(event.characters, row.characters) << row.key;
        EXPECT_EQ(event.charactersIgnoringModifiers, row.ignoring) << row.key;
        EXPECT_EQ(event.modifierFlags, row.flags) << row.key;
        EXPECT_EQ(event.keyCode, 38) << row.key;
        EXPECT_EQ(event.type == EventType::FlagsChanged, row.key == Qt::Key_Shift);
    }
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Shift, Qt::ShiftModifier);
    QApplication::sendEvent(widget, &release);
    EXPECT_TRUE(probe.events.back().modifierFlags.isEmpty());
}

}  // namespace
}  // namespace veltra::testing
