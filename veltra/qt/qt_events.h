// SPDX-License-Identifier: MIT
// Events of Qt as those of veltra/ui.
#pragma once

#include "veltra/ui/event.h"

#include <QPointF>
#include <optional>

class QEventPoint;
class QInputEvent;
class QKeyEvent;
class QMouseEvent;
class QTouchEvent;
class QWheelEvent;

namespace veltra {

// What one surface has to remember from event to event: Qt counts presses up to two, and numbers
// and measures nothing.
class QtEvents {
public:
    // `height` is that of the window's content; events have no window yet. Nothing for buttons
    // other than the left and the right one.
    std::optional<Event> mouse(const QMouseEvent& event, float height);
    Event exit(float height) const;
    Event wheel(const QWheelEvent& event, float height) const;
    // One of its points, which is not stationary, at `place` in the widget.
    static Event touch(const QTouchEvent& event, const QEventPoint& point, QPointF place,
                       float height);
    // Nothing for the releases of a key that repeats. A ShortcutOverride counts as a press.
    static std::optional<Event> key(const QKeyEvent& event);

    // While locked, drags go on from where the pointer would be if nothing held it; it has to be
    // put back to `place`, in the widget's coordinates, each time that needsWarp() says so.
    void lock(QPointF place);
    void unlock() { m_lock.reset(); }
    bool isLocked() const { return m_lock.has_value(); }
    bool needsWarp();

private:
    // Where the pointer is held, was last, and whether it is on its way back.
    struct Lock {
        QPointF place;
        QPointF last;
        bool isReturning = false;
    };

    // Of a button, until its next press.
    struct Press {
        std::int32_t eventNumber = 0;
        std::int32_t clickCount = 0;
    };

    void countPress(const QMouseEvent& event, Press& press);
    QPointF positionOf(const QMouseEvent& event);

    std::optional<Lock> m_lock;
    QPointF m_last;   // where the pointer was
    QPointF m_press;  // where the button went down
    std::uint64_t m_pressTime = 0;
    int m_pressButton = 0;
    Press m_left;
    Press m_right;
};

}  // namespace veltra
