// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_accessibility.h"

#include "veltra/qt/testing/on_qt.h"
#include "veltra/ui/control.h"
#include "veltra/ui/slider_cell.h"

#include <QAccessible>

namespace veltra {
namespace {

using testing::comesTrue;
using testing::OnQt;

using ::testing::ElementsAre;

TEST_F(OnQt, ReadersSeeAndMoveTheCells) {
    auto slider =
        std::make_unique<Control>(Rect{{10, 10}, {200, 20}}, std::make_unique<SliderCell>());
    auto& cell = static_cast<SliderCell&>(*slider->cell());
    cell.setAltIncrementValue(0.25);
    auto& all = host(std::make_unique<View>(Rect{{}, {300, 50}}));
    auto& control = all.addSubview(std::move(slider));
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
    auto& all = host(std::make_unique<View>(Rect{{}, {300, 50}}));
    auto& slider = all.addSubview(
        std::make_unique<Control>(Rect{{10, 10}, {200, 20}}, std::make_unique<SliderCell>()));
    QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        heard.emplace_back(event->type(), event->accessibleInterface()->role());
    });
    using Notice = AccessibilityNotification;
    for (const Notice notice : {Notice::ValueChanged, Notice::StateChanged, Notice::NameChanged,
                                Notice::FocusGained, Notice::ChildrenChanged})
        slider.postAccessibilityNotification(notice);
    QAccessible::installUpdateHandler(nullptr);
    EXPECT_THAT(heard, ElementsAre(std::pair(QAccessible::ValueChanged, QAccessible::Slider),
                                   std::pair(QAccessible::StateChanged, QAccessible::Slider),
                                   std::pair(QAccessible::NameChanged, QAccessible::Slider),
                                   std::pair(QAccessible::Focus, QAccessible::Slider),
                                   std::pair(QAccessible::ObjectReorder, QAccessible::Grouping)));
}

TEST_F(OnQt, ReadersAreNotShownWhatIsOutOfSight) {
    auto& all = host(std::make_unique<View>(Rect{{}, {100, 50}}));
    auto& seen = all.addSubview(
        std::make_unique<Control>(Rect{{0, 0}, {60, 20}}, std::make_unique<SliderCell>()));
    seen.cell()->setAccessibilityHelp("how loud it is");
    all.addSubview(
        std::make_unique<Control>(Rect{{140, 0}, {60, 20}}, std::make_unique<SliderCell>()));
    auto* const root = QAccessible::queryAccessibleInterface(widget.data());
    ASSERT_EQ(root->childCount(), 2);
    EXPECT_FALSE(root->child(0)->state().offscreen || root->child(0)->state().invisible);
    EXPECT_TRUE(root->child(1)->state().offscreen && root->child(1)->state().invisible);
    EXPECT_TRUE(root->child(0)->text(QAccessible::Description).endsWith("how loud it is"));
}

}  // namespace
}  // namespace veltra
