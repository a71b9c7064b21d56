// SPDX-License-Identifier: MIT
// A line of text in a view; an ellipsis stands for what does not fit, which rests in a tool tip.
#pragma once

#include "veltra/ui/styled_text.h"
#include "veltra/ui/theme.h"
#include "veltra/ui/view.h"

#include <string>

namespace veltra::console {

using ThemeColor = Color Theme::*;

// Thread: main.
class Label final : public View {
public:
    Label(Font font, ThemeColor color, TextAlignment alignment = TextAlignment::Left,
          TextTruncation truncation = TextTruncation::Middle);

    const std::string& text() const noexcept { return m_text; }
    void setText(const std::string& text);
    // Shown when the pointer rests, in place of a text that is too long.
    void setFullText(const std::string& text);
    void setColor(ThemeColor color);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;

    AccessibilityRole accessibilityRole() const override;
    std::string accessibilityName() const override;

protected:
    void frameDidChange() override;

private:
    const Font m_font;
    ThemeColor m_color;
    const TextAlignment m_alignment;
    const TextTruncation m_truncation;
    std::string m_text;
    std::string m_fullText;
};

}  // namespace veltra::console
