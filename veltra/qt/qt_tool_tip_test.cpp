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
    ToolTipWindow::shared().closeToolTipWindow();
    EXPECT_FALSE(tip->isVisible());
    QHelpEvent rest(QEvent::ToolTip, {5, 5}, widget->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(widget, &rest);
    EXPECT_EQ(tip->text(), "resting");
    drag({60, 5}, Qt::NoButton);
    EXPECT_FALSE(tip->isVisible());
}

}  // namespace
}  // namespace veltra::testing
