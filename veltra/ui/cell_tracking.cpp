// SPDX-License-Identifier: MIT
#include "veltra/ui/cell_tracking.h"

#include <utility>

namespace veltra {

Point CellTracking::pointOf(const Event& event) const {
    return m_view->convertPointFromView(event.locationInWindow, nullptr) - m_origin;
}

bool CellTracking::press(Cell& cell, View& view, const Rect& frame, bool untilMouseUp,
                         const Event& event) {
    const WeakPointer<CellTracking> self(this);
    const WeakPointer<Cell> pressed(&cell);
    const WeakPointer<View> around(&view);
    cancel();
    if (!self || !pressed || !around) return false;
    m_hasSucceeded = false;
    if (!cell.isEnabled()) return false;
    m_cell = &cell;
    m_view = &view;
    m_frame = frame;
    m_origin = cell.trackingOrigin(frame);
    m_untilMouseUp = untilMouseUp;
    m_eventNumber = event.eventNumber;
    m_last = pointOf(event);
    m_isActive = true;  // what the cell does may cancel it
    const bool starts = cell.startTracking(m_last, view);
    if (!self) return false;
    if (!m_cell || !m_view || !starts) m_isActive = false;
    return m_isActive;
}

void CellTracking::handle(const Event& event) {
    if (!m_isActive) return;
    if (!m_cell || !m_view) {
        m_isActive = false;
        return;
    }
    switch (event.type) {
        case EventType::LeftMouseDragged:
            if (event.eventNumber == m_eventNumber) drag(pointOf(event));
            return;
        case EventType::LeftMouseUp:
            if (event.clickCount == 0) return cancel();
            if (event.eventNumber == m_eventNumber) release(pointOf(event));
            return;
        case EventType::ScrollWheel:
            return m_cell->scrollWheel(event);
        default:
            return;
    }
}

void CellTracking::drag(Point point) {
    const Point last = std::exchange(m_last, point);
    const WeakPointer<CellTracking> self(this);
    const bool goesOn = m_cell->continueTracking(last, point, *m_view.get());
    if (!self || !m_isActive) return;
    m_isActive = m_cell && m_view;
    if (!m_isActive) return;
    const bool isInside = mouseInRect(point + m_origin, m_frame, m_view->isFlipped());
    const bool mayGoOn = m_untilMouseUp || (isInside && !m_cell->stopsTrackingAtFirstDrag());
    if (goesOn && mayGoOn) return;
    m_isActive = false;
    m_cell->stopTracking(last, point, *m_view.get(), false);
}

void CellTracking::release(Point point) {
    m_isActive = false;
    const bool isInside = mouseInRect(m_last + m_origin, m_frame, m_view->isFlipped());
    const WeakPointer<CellTracking> self(this);
    m_cell->stopTracking(m_last, point, *m_view.get(), true);
    if (self) m_hasSucceeded = m_cell && (m_untilMouseUp || isInside);
}

void CellTracking::cancel() {
    if (!std::exchange(m_isActive, false)) return;
    if (m_cell && m_view) m_cell->stopTracking(m_last, m_last, *m_view.get(), false);
}

}  // namespace veltra
