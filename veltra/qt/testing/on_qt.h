// SPDX-License-Identifier: MIT
// A view in a widget between two fields that take the keyboard, in an application of Qt.
#pragma once

#include "veltra/base/testing/prelude.h"
#include "veltra/qt/view_widget.h"
#include "veltra/ui/application.h"
#include "veltra/ui/canvas.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QWheelEvent>

#include <gmock/gmock.h>

namespace veltra::testing {

inline constexpr int kPatience = 60'000;  // milliseconds, for a busy machine

template <typename Condition>
bool comesTrue(Condition condition) {
    return QTest::qWaitFor(condition, kPatience);
}

class Probe : public View {
public:
    using View::View;

    bool takesKeys = true;
    int draws = 0;
    Color color = Color::fromRgb(0xFF0000);
    std::vector<Event> events;
    std::function<void(const Event&)> react;

    void drawRect(Canvas& canvas, const Rect& /*dirty*/) override {
        ++draws;
        canvas.fillRect(bounds(), color);
    }
    bool acceptsFirstResponder() const override { return takesKeys; }
    void mouseDown(const Event& event) override { note(event); }
    void mouseDragged(const Event& event) override { note(event); }
    void mouseUp(const Event& event) override { note(event); }
    void rightMouseDown(const Event& event) override { note(event); }
    void rightMouseDragged(const Event& event) override { note(event); }
    void rightMouseUp(const Event& event) override { note(event); }
    void keyDown(const Event& event) override {
        View::keyDown(event);
        note(event);
    }
    void flagsChanged(const Event& event) override { note(event); }
    void scrollWheel(const Event& event) override {
        if (takesKeys) return note(event);
        View::scrollWheel(event);
    }
    void tick(Anchored* /*sender*/) {
        if (const auto reaction = react) reaction({});
    }

private:
    void note(const Event& event) {
        events.push_back(event);
        if (const auto reaction = react) reaction(event);  // may delete this view
    }
};

class OnQt : public ::testing::Test {
protected:
    // In a window of its own, between two fields that take the keyboard.
    template <typename V>
    V& host(std::unique_ptr<V> view) {
        V& hosted = *view;
        widget = new ViewWidget(&outside);
        widget->setContentView(std::move(view));
        auto* row = new QHBoxLayout(&outside);
        for (QWidget* item : {static_cast<QWidget*>(&before), static_cast<QWidget*>(widget.data()),
                              static_cast<QWidget*>(&behind)})
            row->addWidget(item);
        widget->setFixedSize(widget->sizeHint());
        outside.show();
        outside.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&outside, kPatience));
        before.setFocus();
        return hosted;
    }
    void drag(QPoint to, Qt::MouseButton held = Qt::LeftButton) {
        QMouseEvent move(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton, held,
                         Qt::NoModifier);
        QApplication::sendEvent(widget, &move);
    }
    bool turn(QPoint angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const QPointF at(5, 5);
        QWheelEvent wheel(at, widget->mapToGlobal(at), {}, angle, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(widget, &wheel);
        return wheel.isAccepted();
    }

    int argumentCount = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    QApplication application{argumentCount, arguments};
    QWidget outside;
    QLineEdit before{&outside};
    QLineEdit behind{&outside};
    QPointer<ViewWidget> widget;
};

}  // namespace veltra::testing
