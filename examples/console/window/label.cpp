// SPDX-License-Identifier: MIT
#include "label.h"

#include "veltra/ui/canvas.h"

#include <utility>

namespace veltra::console {

Label::Label(const Rect& frame, Font font, SystemColor color, TextAlignment alignment)
    : View(frame), m_font(std::move(font)), m_color(color), m_alignment(alignment) {}

void Label::setText(const std::string& text) {
    if (text == m_text) return;
    m_text = text;
    setNeedsDisplay();
}

void Label::setFullText(const std::string& text) {
    m_fullText = text;
    frameDidChange();
}

void Label::frameDidChange() {
    toolTips().removeAllToolTips();
    if (!m_fullText.empty()) toolTips().addToolTipRect(bounds(), m_fullText);
}

void Label::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const StyledText text{m_text, m_font, systemColor(m_color), m_alignment};
    canvas.drawText(text.truncatedTo(bounds().size.width, TextTruncation::Middle), bounds());
}

AccessibilityRole Label::accessibilityRole() const {
    return m_text.empty() ? AccessibilityRole::Ignored : AccessibilityRole::StaticText;
}

std::string Label::accessibilityName() const {
    return m_fullText.empty() ? m_text : m_fullText;
}

}  // namespace veltra::console
