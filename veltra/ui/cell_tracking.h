// SPDX-License-Identifier: MIT
// A cell that follows the pointer, step by step: a press begins it, each further event goes in as
// it comes. Nothing waits, so that it works in every event loop.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/cell.h"
#include "veltra/ui/event.h"
#include "veltra/ui/view.h"

namespace veltra {

// Each of its functions may delete it, with the control that it is a part of.
class VELTRA_EXPORT CellTracking final : public Anchored {
public:
    // Asks the cell to begin; a tracking that is under way is cancelled first. Returns false when
    // the cell is disabled or refuses, or was deleted meanwhile.
    bool press(Cell& cell, View& view, const Rect& frame, bool untilMouseUp, const Event& event);

    // A drag, the wheel or the release; other events are passed over, as is everything when nothing
    // is under way. A drag or release belongs to the press with the same event number.
    void handle(const Event& event);

    // Ends it where the pointer was last: the cell is told that the button is not up. The same
    // happens at a release that stands for a lost pointer (clickCount 0).
    void cancel();

    // Whether a press is under way: it has begun, and neither the cell nor the release has ended
    // it.
    bool isActive() const noexcept { return m_isActive; }
    // The cell that is being tracked; null when there is none.
    Cell* cell() const noexcept { return m_isActive ? m_cell.get() : nullptr; }

    // Of the last one that has ended: whether it ended with the release that was asked for.
    bool hasSucceeded() const noexcept { return m_hasSucceeded; }

private:
    void drag(Point point);
    void release(Point point);
    Point pointOf(const Event& event) const;

    WeakPointer<Cell> m_cell;
    WeakPointer<View> m_view;
    Rect m_frame;    // of the cell, in the view
    Point m_origin;  // of the points that the cell is given, in the view
    Point m_last;
    std::int32_t m_eventNumber = 0;
    bool m_untilMouseUp = false;
    bool m_isActive = false;
    bool m_hasSucceeded = false;
};

}  // namespace veltra
