// SPDX-License-Identifier: MIT
#include "veltra/qt/late_fingers.h"

#include "veltra/qt/testing/on_qt.h"

#include <QPointingDevice>
#include <QTouchEvent>

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

class Fingers final : public View {
public:
    using View::View;
    std::string told;
    std::int64_t lowest = 0;
    bool acceptsTouches() const override { return true; }
    void touchBegan(const Event& event) override { tell('+', event); }
    void touchMoved(const Event& event) override { tell('>', event); }
    void touchEnded(const Event& event) override { tell('-', event); }
    void touchCancelled(const Event& event) override { tell('x', event); }
    void tell(char what, const Event& event) {
        told += what;
        lowest = std::min(lowest, event.finger);
    }
};

TEST_F(OnQt, FingersGoToTheViewsThatAcceptThemAndElseActAsThePointer) {
    auto& all = host(std::make_unique<View>(Rect{{}, {100, 50}}));
    auto& fingers = all.addSubview(std::make_unique<Fingers>(Rect{{}, {50, 50}}));
    auto& probe = all.addSubview(std::make_unique<Probe>(Rect{{50, 0}, {50, 50}}));
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    const auto touch = [&] { return QTest::touchEvent(widget, screen.get()); };
    constexpr QPoint kLeft{10, 20}, kRight{60, 20};
    const auto types = [&] {
        std::vector<EventType> heard;
        for (const Event& event : std::exchange(probe.events, {}))
            heard.push_back(event.type);
        return heard;
    };
    for (const bool isPointerFirst : {true, false}) {
        const int one = isPointerFirst ? 5 : 4, other = isPointerFirst ? 4 : 5;
        const QPoint at = isPointerFirst ? kRight : kLeft, there = isPointerFirst ? kLeft : kRight;
        touch().press(one, at);
        touch().stationary(one).press(other, there);
        touch().move(5, kLeft).move(4, {20, 10});
        touch().stationary(4).release(5, kLeft);
        touch().release(4, {20, 10});
        EXPECT_EQ(std::exchange(fingers.told, {}), "+>-") << isPointerFirst;
        EXPECT_THAT(types(), ElementsAre(EventType::LeftMouseDown, EventType::LeftMouseDragged,
                                         EventType::LeftMouseUp))
            << isPointerFirst;
    }
    // Its end comes with the beginning, or with a movement, of one that a view takes.
    for (const bool isBeginning : {true, false}) {
        touch().press(5, kRight);
        if (!isBeginning) touch().stationary(5).press(4, kLeft);
        if (isBeginning) touch().release(5, kRight).press(4, kLeft);
        if (!isBeginning) touch().release(5, kRight).move(4, {20, 10});
        EXPECT_THAT(types(), ElementsAre(EventType::LeftMouseDown, EventType::LeftMouseUp))
            << isBeginning;
        touch().release(4, kLeft);
        EXPECT_EQ(std::exchange(fingers.told, {}), isBeginning ? "+-" : "+>-");
    }
    EXPECT_GE(fingers.lowest, 0);
    touch().press(1, kLeft).press(2, kRight);
    QTouchEvent cancel(QEvent::TouchCancel, screen.get());
    QApplication::sendEvent(widget, &cancel);
    touch().release(1, kLeft).release(2, kRight);
    EXPECT_EQ(fingers.told, "+x");
    ASSERT_EQ(probe.events.size(), 2U);
    EXPECT_EQ(probe.events.back().clickCount, 0) << "the pointer is lost";
}

}  // namespace
}  // namespace veltra::testing
