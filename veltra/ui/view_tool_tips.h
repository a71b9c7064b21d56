// SPDX-License-Identifier: MIT
// The rectangles of a view in which a tool tip appears when the pointer rests there.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/tool_tip.h"

#include <optional>
#include <vector>

namespace veltra {

class VELTRA_EXPORT ViewToolTips {
public:
    // A tool tip to show.
    struct Found {
        std::string text;  // UTF-8, not empty
        Rect rect;         // while the pointer stays in it, the tool tip stays
    };

    // Returns a tag above 0 for removeToolTip(). `rect` is in the view's coordinates.
    std::int32_t addToolTipRect(const Rect& rect, std::string text);
    // `object` (not retained) is asked for the text of `sourceTag` each time it is shown.
    std::int32_t addToolTipRect(const Rect& rect, Anchored* object, std::int32_t sourceTag);

    // An unknown tag is passed over.
    void removeToolTip(std::int32_t tag);
    void removeAllToolTips() noexcept { m_rects.clear(); }

    // What to show at a point; of rectangles that overlap, the last one added. Nothing when there
    // is none or its text is empty.
    std::optional<Found> at(Point point) const;

private:
    struct Entry {
        std::int32_t tag;
        Rect rect;
        std::string text;
        WeakPointer<Anchored> object;
        std::int32_t sourceTag;
    };

    std::vector<Entry> m_rects;
    std::int32_t m_lastTag = 0;
};

}  // namespace veltra
