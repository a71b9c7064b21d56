// SPDX-License-Identifier: MIT
#include "veltra/ui/view_tool_tips.h"

#include <utility>

namespace veltra {

std::int32_t ViewToolTips::addToolTipRect(const Rect& rect, std::string text) {
    m_rects.push_back({++m_lastTag, rect, std::move(text), {}, 0});
    return m_lastTag;
}

std::int32_t ViewToolTips::addToolTipRect(const Rect& rect, Anchored* object,
                                          std::int32_t sourceTag) {
    m_rects.push_back({++m_lastTag, rect, {}, object, sourceTag});
    return m_lastTag;
}

void ViewToolTips::removeToolTip(std::int32_t tag) {
    std::erase_if(m_rects, [tag](const Entry& entry) { return entry.tag == tag; });
}

std::optional<ViewToolTips::Found> ViewToolTips::at(Point point) const {
    const std::vector<Entry> rects = m_rects;  // who is asked may change them, or destroy the view
    for (auto entry = rects.rbegin(); entry != rects.rend(); ++entry) {
        if (!pointInRect(point, entry->rect)) continue;
        std::string text =
            entry->object ? toolTipText(entry->object.get(), entry->sourceTag) : entry->text;
        if (!text.empty()) return Found{std::move(text), entry->rect};
    }
    return std::nullopt;
}

}  // namespace veltra
