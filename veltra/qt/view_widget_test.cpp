// SPDX-License-Identifier: MIT
#include "veltra/qt/view_widget.h"

#include "veltra/platform/run_loop.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/testing/on_qt.h"
#include "veltra/ui/control.h"

#include <QAccessible>
#include <QEventLoop>
#include <QMenu>
#include <QScreen>
#include <QTimer>

// What Qt and the libraries below it keep until the process ends.
extern "C" VELTRA_EXPORT const char*
__lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libfontconfig\nleak:libQt6XcbQpa\nleak:libdbus-1\n";
}

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;

TEST_F(OnQt, DrawsTheViewsThatHaveChangedAndNoOthers) {
    auto& all = host(std::make_unique<View>(Rect{{}, {400, 200}}));
    std::vector<Probe*> meters;
    for (int i = 0; i < 200; ++i) {
        const int row = i / 20;
        const Point at{static_cast<float>(i % 20 * 20), static_cast<float>(row * 20)};
        meters.push_back(&all.addSubview(std::make_unique<Probe>(Rect{at, {18, 18}})));
    }
    widget->repaint();
    for (Probe* meter : meters)
        meter->draws = 0;
    for (std::size_t i = 0; i < 200; i += 20) {
        meters[i]->color = Color::fromRgb(0x0000FF);
        meters[i]->setNeedsDisplay();
    }
    widget->veltraWindow().displayIfNeeded();
    for (std::size_t i = 0; i < 200; ++i)
        EXPECT_EQ(meters[i]->draws, i % 20 == 0 ? 1 : 0) << i;
    const QImage picture = widget->grab().toImage();
    EXPECT_EQ(picture.pixelColor(9, 191), QColor(Qt::blue));  // the lowest row
    EXPECT_EQ(picture.pixelColor(29, 191), QColor(Qt::red));
}

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
    QCoreApplication::processEvents();
    EXPECT_EQ(view.draws, 1);
    EXPECT_TRUE(widget->testAttribute(Qt::WA_OpaquePaintEvent));
    if (QGuiApplication::platformName() == QStringLiteral("offscreen")) {
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(colorAt(2 * i, 99 - i), QColor(Qt::blue)) << i;
            EXPECT_EQ(colorAt(2 * i + 1, 99 - i), QColor(i < 10 ? Qt::blue : Qt::red)) << i;
        }
    }
    view.isOpaque = false;
    view.setNeedsDisplay();
    view.window()->displayIfNeeded();
    EXPECT_EQ(view.draws, 2);
    EXPECT_FALSE(widget->testAttribute(Qt::WA_OpaquePaintEvent));
    QCoreApplication::processEvents();
    EXPECT_EQ(view.draws, 2);
}

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

    EXPECT_TRUE(turn({0, 24}));
    EXPECT_FLOAT_EQ(probe.events.back().deltaY, 0.2F);
    EXPECT_TRUE(turn({-120, 0}, Qt::AltModifier));  // as systems that swap the axes send it
    EXPECT_EQ(probe.events.back().deltaY, -1);
    probe.takesKeys = false;
    EXPECT_FALSE(turn({0, 120})) << "what no view takes is offered to the widgets around";
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
    struct Deleter final : Control {
        using Control::Control;
        bool performAccessibilityAction(AccessibilityAction /*action*/) override {
            delete victim.data();
            return true;
        }
        AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Button; }
        std::vector<AccessibilityAction> accessibilityActions() const override {
            return {AccessibilityAction::Press};
        }
        QPointer<ViewWidget> victim;
    };
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

    show();
    auto deleter = std::make_unique<Deleter>(Rect{{}, {50, 50}});
    deleter->victim = widget;
    widget->setContentView(std::move(deleter));
    auto* const root = QAccessible::queryAccessibleInterface(widget.data());
    ASSERT_EQ(root->childCount(), 1);
    QAccessibleInterface* const button = root->child(0);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(widget.isNull());
    EXPECT_FALSE(button->isValid()) << "it is there until the reader has returned";
}

TEST_F(OnQt, APullEndsWhenTheReleaseCannotComeAnyMore) {
    const auto lose = [this](QEvent::Type type) {
        QEvent lost(type);
        QApplication::sendEvent(widget, &lost);
    };
    const std::function<void()> ends[] = {[this] { widget->hide(); },
                                          [this] { delete widget.data(); },
                                          [&] { lose(QEvent::WindowDeactivate); },
                                          [&] { lose(QEvent::UngrabMouse); },
                                          [this] {
                                              drag({30, 30}, Qt::NoButton);
                                          },
                                          [] { QCoreApplication::quit(); }};
    host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    for (const auto& end : ends) {
        if (!widget) {
            widget = new ViewWidget;
            widget->setContentView(std::make_unique<Probe>(Rect{{}, {50, 50}}));
        }
        widget->show();
        auto& pulling = static_cast<Probe&>(*widget->contentView());
        Event last;
        last.clickCount = -1;
        pulling.react = [&](const Event& event) {
            if (event.type != EventType::LeftMouseDown) return;
            QTimer::singleShot(0, &application, end);
            last = Application::current().nextEvent(EventType::LeftMouseUp,
                                                    RunLoopMode::EventTracking);
        };
        QTimer::singleShot(0, &application, [this] {
            QTest::mousePress(widget, Qt::LeftButton, {}, {5, 5});
            QCoreApplication::exit();
        });
        QCoreApplication::exec();
        EXPECT_EQ(last.type, EventType::LeftMouseUp);
        EXPECT_EQ(last.clickCount, 0) << &end - ends;
    }
}

TEST_F(OnQt, TimersGoOnInMenusAndInLoopsThatATimerRuns) {
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    int ticks = 0;
    probe.react = [&ticks](const Event& /*event*/) { ++ticks; };
    const auto beat = RunLoop::current()->schedule({.interval = milliseconds(1),
                                                    .target = &probe,
                                                    .action = action<&Probe::tick>(),
                                                    .repeats = true});
    QMenu menu;
    menu.addAction("item");
    Probe opener;
    opener.react = [&](const Event& /*event*/) {
        ticks = 0;
        menu.popup({0, 0});
        EXPECT_TRUE(comesTrue([&ticks] { return ticks >= 3; }));
        menu.close();
        opener.react = nullptr;
    };
    RunLoop::current()->schedule({.target = &opener, .action = action<&Probe::tick>()});
    EXPECT_TRUE(comesTrue([&opener] { return !opener.react; }));
    beat->invalidate();
}

TEST_F(OnQt, AppearanceFollowsThePaletteAroundUnlessSet) {
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Light);
    outside.setPalette(QPalette(QColor(0x30, 0x30, 0x30)));
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Dark);
    setQtAppearance(Appearance::Light);
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Light);
    setQtAppearance(std::nullopt);
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Dark);
}

}  // namespace
}  // namespace veltra::testing

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
