// SPDX-License-Identifier: MIT
#include "veltra/qt/view_widget.h"

#include "veltra/platform/run_loop.h"
#include "veltra/qt/testing/on_qt.h"
#include "veltra/ui/button.h"

#include <QAccessible>
#include <QScreen>

// What Qt and the libraries below it keep until the process ends.
extern "C" VELTRA_EXPORT const char*
__lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libfontconfig\nleak:libQt6XcbQpa\nleak:libdbus-1\n";
}

namespace veltra::testing {
namespace {

// Paints beyond what it is asked for, and counts.
struct Painting final : View {
    using View::View;
    int draws = 0;
    Color color = Color::fromRgb(0xFF0000);
    void drawRect(Canvas& canvas, const Rect& /*dirty*/) override {
        ++draws;
        canvas.fillRect(bounds(), color);
        canvas.fillPath(Path::roundedRect({{0.5F, 0.5F}, {40, 40}}, 5.0F), color);
    }
    Rect opaqueRect() const override { return isOpaque ? bounds() : Rect{}; }
    bool isOpaque = true;
};

TEST_F(OnQt, DrawsAllChangesOfATurnAtOnceAndNothingBesideThem) {
    auto& view = host(std::make_unique<Painting>(Rect{{}, {200, 100}}));
    // On screen, where what was not drawn again is still what it was.
    const auto colorAt = [this](int x, int y) {
        const QPoint at = widget->mapTo(&outside, QPoint(x, y));
        const QPixmap shown = outside.screen()->grabWindow(outside.winId());
        return shown.toImage().pixelColor(at * shown.devicePixelRatio());
    };
    QCoreApplication::processEvents();
    view.color = Color::fromRgb(0x0000FF);
    view.draws = 0;
    for (int i = 99; i >= 0; --i) {  // and some of them overlap, some come twice
        const auto at = static_cast<float>(i);
        view.setNeedsDisplayInRect({{at * 2.0F, at}, {at < 10 ? 3.0F : 1.0F, 1.0F}});
        view.setNeedsDisplayInRect({{at * 2.0F, at}, {1.0F, 1.0F}});
    }
    widget->grab();  // a picture of them, which is not the screen
    QCoreApplication::processEvents();
    EXPECT_EQ(view.draws, 2);
    EXPECT_TRUE(widget->testAttribute(Qt::WA_OpaquePaintEvent));
    if (QGuiApplication::platformName() == QStringLiteral("offscreen")) {
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(colorAt(2 * i, 99 - i), QColor(Qt::blue)) << i;
            EXPECT_EQ(colorAt(2 * i + 1, 99 - i), QColor(i < 10 ? Qt::blue : Qt::red)) << i;
        }
    }
    view.color = Color::fromRgb(0x00FF00);
    for (const float x : {0.0F, 150.0F})  // in the turns after that, too
        view.setNeedsDisplayInRect({{x, 0}, {10, 10}});
    QCoreApplication::processEvents();
    for (const int x : {5, 155}) {
        const bool isOffscreen = QGuiApplication::platformName() == QStringLiteral("offscreen");
        EXPECT_TRUE(!isOffscreen || colorAt(x, 95) == QColor(Qt::green)) << x;
    }
    view.draws = 2;
    view.isOpaque = false;
    view.setNeedsDisplay();
    view.window()->displayIfNeeded();
    EXPECT_EQ(view.draws, 3);
    EXPECT_FALSE(widget->testAttribute(Qt::WA_OpaquePaintEvent));
    QCoreApplication::processEvents();
    EXPECT_EQ(view.draws, 3);
    widget->hide();
    view.isOpaque = true;
    widget->show();
    EXPECT_TRUE(widget->testAttribute(Qt::WA_OpaquePaintEvent)) << "before it is drawn";
}

TEST_F(OnQt, TabLeadsThroughTheKeyViewsAndOn) {
    auto& all = host(std::make_unique<View>(Rect{{}, {100, 50}}));
    auto& first = all.addSubview(std::make_unique<Probe>(Rect{{}, {10, 10}}));
    auto& second = all.addSubview(std::make_unique<Probe>(Rect{{20, 0}, {10, 10}}));
    const auto tab = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    QWidget::setTabOrder(&before, widget);
    QWidget::setTabOrder(widget, &behind);
    tab(Qt::Key_Tab);
    EXPECT_TRUE(first.hasKeyboard());
    tab(Qt::Key_Tab);
    EXPECT_TRUE(second.hasKeyboard());
    tab(Qt::Key_Tab);
    EXPECT_TRUE(behind.hasFocus());
    EXPECT_FALSE(second.hasKeyboard());
    tab(Qt::Key_Backtab);
    EXPECT_TRUE(second.hasKeyboard());
    first.takesKeys = second.takesKeys = false;
    widget->veltraWindow().makeFirstResponder(nullptr);
    before.setFocus();
    tab(Qt::Key_Tab);
    EXPECT_TRUE(behind.hasFocus()) << "nobody in there wants keys";
    before.setFocus();
    QTest::mouseClick(widget, Qt::LeftButton, {}, {5, 45});
    EXPECT_TRUE(before.hasFocus()) << "a click takes the keyboard only where a view wants it";
}

TEST_F(OnQt, MayBeDeletedInEveryCallback) {
    const auto show = [this] {
        widget = new ViewWidget;
        widget->setContentView(std::make_unique<Probe>(Rect{{}, {50, 50}}));
        widget->show();
        return static_cast<Probe*>(widget->contentView());
    };
    for (const EventType when : {EventType::LeftMouseDown, EventType::LeftMouseDragged,
                                 EventType::LeftMouseUp, EventType::KeyDown}) {
        Probe* const probe = show();
        widget->veltraWindow().makeFirstResponder(probe);
        probe->react = [this, when](const Event& event) {
            if (event.type == when) delete widget.data();
        };
        if (widget) QTest::mousePress(widget, Qt::LeftButton, {}, {5, 5});
        if (widget) drag({9, 9});
        if (widget) QTest::mouseRelease(widget, Qt::LeftButton, {}, {9, 9});
        if (widget) QTest::keyPress(widget, Qt::Key_A);
        EXPECT_TRUE(widget.isNull());
    }
    Probe* const ticking = show();
    ticking->react = [this](const Event& /*event*/) { delete widget.data(); };
    const auto timer = RunLoop::current()->schedule({.interval = milliseconds(1),
                                                     .target = ticking,
                                                     .action = action<&Probe::tick>(),
                                                     .repeats = true});
    EXPECT_TRUE(comesTrue([this] { return widget.isNull(); }));
    timer->invalidate();

    Probe* const around = show();
    around->react = [this](const Event& /*event*/) { delete widget.data(); };
    auto& pressed = around->addSubview(std::make_unique<Button>(Rect{{}, {50, 50}}, "Close"));
    pressed.setTarget(around);
    pressed.setAction(action<&Probe::tick>());
    auto* const root = QAccessible::queryAccessibleInterface(widget.data());
    ASSERT_EQ(root->childCount(), 1);
    QAccessibleInterface* const button = root->child(0);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(widget.isNull());
    EXPECT_FALSE(button->isValid()) << "it is there until the reader has returned";
    auto* const actions = static_cast<QAccessibleActionInterface*>(
        button->interface_cast(QAccessible::ActionInterface));
    EXPECT_TRUE(actions == nullptr && button->parent() == nullptr && button->window() == nullptr);
    EXPECT_TRUE(button->childCount() == 0 && button->childAt(5, 5) == nullptr);
    EXPECT_TRUE(button->rect().isEmpty() && button->text(QAccessible::Name).isEmpty());
    EXPECT_TRUE(button->role() == QAccessible::NoRole && button->state().invalid);
}

}  // namespace
}  // namespace veltra::testing

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
