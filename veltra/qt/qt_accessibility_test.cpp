// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_accessibility.h"

#include "veltra/qt/testing/on_qt.h"
#include "veltra/ui/control.h"
#include "veltra/ui/slider_cell.h"

#include <QAccessible>

namespace veltra::testing {
namespace {

Control& addSlider(View& all, const Rect& frame) {
    return all.addSubview(std::make_unique<Control>(frame, std::make_unique<SliderCell>()));
}

TEST_F(OnQt, ReadersSeeAndMoveTheCells) {
    auto& control =
        addSlider(host(std::make_unique<View>(Rect{{}, {300, 50}})), {{10, 10}, {200, 20}});
    auto& cell = static_cast<SliderCell&>(*control.cell());
    cell.setAltIncrementValue(0.25);
    auto* const root = QAccessible::queryAccessibleInterface(widget.data());
    ASSERT_EQ(root->childCount(), 1);
    QAccessibleInterface* const shown = root->child(0);
    EXPECT_EQ(root->child(0), shown);
    EXPECT_EQ(root->indexOfChild(shown), 0);
    EXPECT_EQ(shown->parent(), root);
    EXPECT_EQ(shown->role(), QAccessible::Slider);
    EXPECT_EQ(shown->text(QAccessible::Description), "horizontal");
    EXPECT_EQ(shown->rect(), QRect(widget->mapToGlobal(QPoint(10, 20)), QSize(200, 20)));
    const QPoint inside = shown->rect().center();
    EXPECT_EQ(root->childAt(inside.x(), inside.y()), shown);
    shown->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(cell.doubleValue(), 0.25);
    shown->valueInterface()->setCurrentValue(2.0);
    EXPECT_EQ(shown->valueInterface()->currentValue().toDouble(), 1.0);
    control.setEnabled(false);
    shown->valueInterface()->setCurrentValue(0.5);
    EXPECT_EQ(cell.doubleValue(), 1.0);
    EXPECT_TRUE(shown->state().disabled);
    control.removeFromSuperview();
    EXPECT_EQ(root->childCount(), 0);
}

std::vector<std::pair<QAccessible::Event, QAccessible::Role>> heard;

TEST_F(OnQt, ReadersHearOfChanges) {
    if (!qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON")) {
        GTEST_SKIP() << "no accessibility bus";
    }
    ASSERT_TRUE(comesTrue([] { return QAccessible::isActive(); }));
    auto& slider =
        addSlider(host(std::make_unique<View>(Rect{{}, {300, 50}})), {{10, 10}, {200, 20}});
    QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        heard.emplace_back(event->type(), event->accessibleInterface()->role());
    });
    using Notice = AccessibilityNotification;
    for (const Notice notice : {Notice::ValueChanged, Notice::StateChanged, Notice::NameChanged,
                                Notice::FocusGained, Notice::ChildrenChanged})
        slider.postAccessibilityNotification(notice);
    QAccessible::installUpdateHandler(nullptr);
    EXPECT_EQ(heard, (decltype(heard){{QAccessible::ValueChanged, QAccessible::Slider},
                                      {QAccessible::StateChanged, QAccessible::Slider},
                                      {QAccessible::NameChanged, QAccessible::Slider},
                                      {QAccessible::Focus, QAccessible::Slider},
                                      {QAccessible::ObjectReorder, QAccessible::Grouping}}));
}

TEST_F(OnQt, ReadersAreNotShownWhatIsOutOfSight) {
    auto& all = host(std::make_unique<View>(Rect{{}, {100, 50}}));
    addSlider(all, {{0, 0}, {60, 20}}).cell()->setAccessibilityHelp("how loud it is");
    addSlider(all, {{140, 0}, {60, 20}});
    auto* const root = QAccessible::queryAccessibleInterface(widget.data());
    ASSERT_EQ(root->childCount(), 2);
    EXPECT_FALSE(root->child(0)->state().offscreen || root->child(0)->state().invisible);
    EXPECT_TRUE(root->child(1)->state().offscreen && root->child(1)->state().invisible);
    EXPECT_TRUE(root->child(0)->text(QAccessible::Description).endsWith("how loud it is"));
}

}  // namespace
}  // namespace veltra::testing
