// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_surface.h"

#include "veltra/qt/testing/on_qt.h"

#include <QShortcut>

namespace veltra::testing {
namespace {

// A view that edits numbers.
class Editor final : public Probe {
public:
    using Probe::Probe;
    bool wantsKey(const Event& event) const override {
        const char16_t key = event.plainKey();
        return (key >= u'0' && key <= u'9') || key == kDeleteCharacter;
    }
};

TEST_F(OnQt, AViewThatEditsGetsItsKeysBeforeTheShortcutsAround) {
    auto& editor = host(std::make_unique<Editor>(Rect{{}, {100, 50}}));
    int fired = 0;
    constexpr Qt::Key kKeys[] = {Qt::Key_4, Qt::Key_Backspace, Qt::Key_M};
    for (const Qt::Key key : kKeys) {
        auto* const shortcut = new QShortcut(QKeySequence(key), &outside);
        QObject::connect(shortcut, &QShortcut::activated, &outside, [&fired] { ++fired; });
    }
    widget->veltraWindow().makeFirstResponder(&editor);
    widget->setFocus();
    for (const Qt::Key key : kKeys)
        QTest::keyClick(widget, key);
    EXPECT_EQ(fired, 1) << "the one that is not edited with";
    EXPECT_EQ(editor.events.size(), 2U);
}

TEST_F(OnQt, ALockedPointerDragsWithoutEnd) {
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {100, 50}}));
    EXPECT_FALSE(widget->veltraWindow().lockPointer(true)) << "no button is down";
    QCursor::setPos(widget->mapToGlobal(QPoint(50, 25)));
    QTest::mousePress(widget, Qt::LeftButton, {}, {50, 25});
    ASSERT_TRUE(widget->veltraWindow().lockPointer(true));
    probe.events.clear();
    drag({50, -85});  // far enough to be put back,
    drag({50, 25});   // which is no movement
    drag({50, -5});
    ASSERT_EQ(probe.events.size(), 2U);
    EXPECT_TRUE(probe.events[0].deltaY == 110.0F && probe.events[1].deltaY == 30.0F);
    EXPECT_EQ(probe.events[1].locationInWindow, (Point{50, 165}));
    QTest::mouseRelease(widget, Qt::LeftButton, {}, {50, -5});
    EXPECT_FALSE(widget->veltraWindow().lockPointer(false)) << "the release has ended it";
    QCoreApplication::processEvents();  // where the pointer was put is not for the next application
}

}  // namespace
}  // namespace veltra::testing
