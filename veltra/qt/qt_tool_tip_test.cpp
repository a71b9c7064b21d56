// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_tool_tip.h"

#include "veltra/qt/testing/on_qt.h"
#include "veltra/ui/tool_tip.h"

#include <QHelpEvent>
#include <QLabel>

namespace veltra::testing {
namespace {

TEST_F(OnQt, TheToolTipStaysClearOfWhatItDescribes) {
    struct Source final : Anchored, ToolTipSource {
        std::string stringForTag(std::int32_t tag) override { return std::to_string(tag); }
    } source;
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {100, 50}}));
    probe.toolTips().addToolTipRect({{0, 0}, {20, 50}}, "resting");
    ToolTipWindow::shared().showToolTipWindowForView(probe, &source, 7, {50, 25});
    auto* const tip = outside.findChild<QLabel*>();
    ASSERT_NE(tip, nullptr);
    EXPECT_TRUE(tip->isVisible());
    EXPECT_EQ(tip->text(), "7");
    EXPECT_FALSE(tip->geometry().contains(widget->mapToGlobal(QPoint(50, 25))));
    const auto rest = [this](QPoint at) {
        QHelpEvent event(QEvent::ToolTip, at, widget->mapToGlobal(at));
        QApplication::sendEvent(widget, &event);
    };
    rest({5, 5});
    EXPECT_EQ(tip->text(), "7") << "a value that is being changed stays";
    ToolTipWindow::shared().closeToolTipWindow();
    EXPECT_FALSE(tip->isVisible());
    constexpr QPoint kElsewhere{60, 5}, kNotch{0, 120};
    const std::function<void()> ends[] = {[&] { drag(kElsewhere, Qt::NoButton); },
                                          [&] { QTest::keyPress(widget, Qt::Key_A); },
                                          [&] { turn(kNotch); }};
    for (const auto& end : ends) {
        rest({5, 5});
        EXPECT_EQ(tip->text(), "resting");
        drag({6, 5}, Qt::NoButton);  // still in its rectangle
        EXPECT_TRUE(tip->isVisible());
        const QImage shown = tip->grab().toImage();
        EXPECT_NE(shown.pixelColor(shown.width() / 2, 3), shown.pixelColor(0, 0)) << "a plate";
        end();
        EXPECT_FALSE(tip->isVisible()) << &end - ends;
    }
    rest(kElsewhere);  // where nothing is described
    EXPECT_FALSE(tip->isVisible());
}

}  // namespace
}  // namespace veltra::testing
