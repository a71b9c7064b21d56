// SPDX-License-Identifier: MIT
#include "reading_line.h"

#include "../text.h"
#include "veltra/ui/canvas.h"

#include <algorithm>

namespace veltra::console {

ReadingLine::ReadingLine(const Rect& frame) : View(frame) {
    setHidden(true);
}

void ReadingLine::update(const std::vector<ProgressLine>& lines) {
    setHidden(lines.empty());
    if (lines.empty()) return;
    const ProgressLine& line = lines.front();
    if (line.title == m_title && line.value == m_value) return;
    if (line.title != m_title) {
        toolTips().removeAllToolTips();
        toolTips().addToolTipRect({{}, {10'000.0F, kHeight}},
                                  "Reading " + line.title + " (Escape stops)");
    }
    m_title = line.title;
    m_value = line.value;
    setNeedsDisplay();
}

std::string ReadingLine::accessibilityValueText() const {
    return m_value < 0.0 ? "" : formatted("%d %%", static_cast<int>(m_value * 100.0));
}

void ReadingLine::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    canvas.fillRect(bounds(), systemColor(SystemColor::Separator));
    const auto share = static_cast<float>(std::clamp(m_value, 0.0, 1.0));
    canvas.fillRect({{}, {bounds().size.width * share, kHeight}}, systemColor(SystemColor::Accent));
}

}  // namespace veltra::console
