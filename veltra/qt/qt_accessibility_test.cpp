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

// A group as a container of cells is, with a name and a help of its own.
struct Group final : View {
    using View::View;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityValueText() const override { return "all"; }
};

TEST_F(OnQt, ReadersFindTheirWayThroughGroupsAndWidgetsAround) {
    auto& all = host(std::make_unique<View>(Rect{{}, {300, 50}}));
    auto& group = all.addSubview(std::make_unique<Group>(Rect{{0, 0}, {200, 50}}));
    group.setAccessibilityHelp("of four");
    auto& slider = static_cast<SliderCell&>(*addSlider(group, {{10, 10}, {20, 30}}).cell());
    slider.setAltIncrementValue(0.25);
    QLineEdit field(widget);
    field.setGeometry(250, 10, 40, 20);
    field.show();
    auto* const root = QAccessible::queryAccessibleInterface(widget.data());
    auto* const inner = QAccessible::queryAccessibleInterface(&field);
    ASSERT_EQ(root->childCount(), 2);  // the elements, then the widgets
    QAccessibleInterface* const shown = root->child(0);
    EXPECT_TRUE(root->child(1) == inner && root->child(2) == nullptr);
    EXPECT_TRUE(root->indexOfChild(inner) == 1 && root->indexOfChild(root) == -1);
    ASSERT_EQ(shown->childCount(), 1);
    QAccessibleInterface* const knob = shown->child(0);
    EXPECT_TRUE(knob->parent() == shown && shown->parent() == root);
    EXPECT_TRUE(shown->indexOfChild(knob) == 0 && shown->indexOfChild(inner) == -1);
    EXPECT_EQ(knob->window(), outside.windowHandle());
    const auto at = [&](QAccessibleInterface* where, QPoint point) {
        const QPoint onScreen = widget->mapToGlobal(point);
        return where->childAt(onScreen.x(), onScreen.y());
    };
    EXPECT_TRUE(at(root, {260, 20}) == inner && at(root, {220, 20}) == nullptr);
    EXPECT_TRUE(at(shown, {15, 20}) == knob && at(shown, {100, 20}) == nullptr);
    EXPECT_EQ(shown->text(QAccessible::Help), "of four");
    EXPECT_EQ(shown->text(QAccessible::Value), "all");
    EXPECT_EQ(knob->text(QAccessible::Value), "0");
    EXPECT_EQ(knob->text(QAccessible::Description), "vertical");
    EXPECT_EQ(knob->text(QAccessible::Accelerator), "");
    EXPECT_EQ(knob->valueInterface()->minimumStepSize().toDouble(), 0.25);
    knob->actionInterface()->doAction("no such action");
    EXPECT_EQ(slider.doubleValue(), 0.0);
    EXPECT_TRUE(shown->valueInterface() == nullptr && shown->actionInterface() == nullptr);
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
