// SPDX-License-Identifier: MIT
#include "label.h"

#include "veltra/ui/canvas.h"

#include <utility>

namespace veltra::console {

Label::Label(Font font, ThemeColor color, TextAlignment alignment, TextTruncation truncation)
    : m_font(std::move(font)), m_color(color), m_alignment(alignment), m_truncation(truncation) {}

void Label::setText(const std::string& text) {
    if (text == m_text) return;
    m_text = text;
    setNeedsDisplay();
}

void Label::setColor(ThemeColor color) {
    if (color == m_color) return;
    m_color = color;
    setNeedsDisplay();
}

void Label::setFullText(const std::string& text) {
    if (text == m_fullText) return;
    m_fullText = text;
    frameDidChange();
}

void Label::frameDidChange() {
    toolTips().removeAllToolTips();
    if (!m_fullText.empty()) toolTips().addToolTipRect(bounds(), m_fullText);
}

void Label::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const StyledText text{m_text, m_font, theme(effectiveAppearance()).*m_color, m_alignment};
    canvas.drawText(text.truncatedTo(bounds().size.width, m_truncation), bounds(),
                    TextPlacement::Capitals);
}

AccessibilityRole Label::accessibilityRole() const {
    return m_text.empty() ? AccessibilityRole::Ignored : AccessibilityRole::StaticText;
}

std::string Label::accessibilityName() const {
    return m_fullText.empty() ? m_text : m_fullText;
}

}  // namespace veltra::console
