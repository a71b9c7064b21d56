// SPDX-License-Identifier: MIT
#include "drop_view.h"

#include "icons.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kRadius = 10.0F;
constexpr float kHeight = 256.0F;  // of all that the invitation says
constexpr float kMarkHeight = 80.0F;
constexpr Size kButton{128.0F, 36.0F};
constexpr float kBars[] = {8, 20, 34, 14, 46, 60, 30, 52, 22, 38, 12, 26, 8};
constexpr int kPlayedBars = 5;

}  // namespace

DropView::DropView(ConsoleDelegate& delegate)
    : m_delegate(delegate),
      m_add(addSubview(std::make_unique<ConsoleButton>(Rect{}, "Add files\u2026"))) {
    m_add.setFont(themeFont(13.0F, FontWeight::Medium));
    m_add.buttonCell().setStyle(ButtonCell::Style::Primary);
    m_add.setTarget(this);
    m_add.setAction(action<&DropView::addWasPressed>());
}

void DropView::setIsWhole(bool isWhole) {
    m_isWhole = isWhole;
    m_add.setHidden(!isWhole);
    setNeedsDisplay();
}

void DropView::setDropTarget(bool isDropTarget) {
    if (isDropTarget == m_isDropTarget) return;
    m_isDropTarget = isDropTarget;
    setNeedsDisplay();
}

bool DropView::takeKeyboard() {
    return m_isWhole && window() != nullptr && window()->giveKeyboardTo(m_add);
}

// Without room for the mark, the words begin at the top.
float DropView::top() const {
    const float height = bounds().size.height < kHeight ? kHeight - kMarkHeight : kHeight;
    const float top = std::round((bounds().size.height - height) * 0.5F);
    return std::max(top, 8.0F) - (height < kHeight ? kMarkHeight : 0.0F);
}

void DropView::frameDidChange() {
    const Point place{std::round((bounds().size.width - kButton.width) * 0.5F), top() + 164.0F};
    m_add.setFrame({place, kButton});
    setNeedsDisplay();
}

void DropView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    if (m_isDropTarget) {
        fillRounded(canvas, bounds(), kRadius, colors.accentSoft);
        strokeDashed(canvas, bounds(), kRadius, colors.accent, 2.0F);
    } else {
        strokeDashed(canvas, bounds(), kRadius, m_isWhole ? colors.strong : colors.edge, 1.0F);
    }
    if (m_isWhole) return drawInvitation(canvas);
    const Point middle = bounds().center();
    drawPlusIcon(canvas, {middle.x - 8.0F, middle.y - 30.0F}, colors.caption);
    const StyledText text{"Add or drop files", themeFont(12.0F), colors.caption,
                          TextAlignment::Center};
    canvas.drawText(text.truncatedTo(bounds().size.width - 16.0F),
                    {{0.0F, middle.y - 4.0F}, {bounds().size.width, 18.0F}},
                    TextPlacement::Capitals);
}

void DropView::drawInvitation(Canvas& canvas) const {
    const Theme& colors = theme(effectiveAppearance());
    const float middle = std::round(bounds().center().x);
    const float top = this->top();
    constexpr float kPitch = 10.0F;
    constexpr float kBar = 6.0F;
    const auto count = static_cast<float>(std::size(kBars));
    float x = middle - (count * kPitch - (kPitch - kBar)) * 0.5F;
    for (std::size_t i = 0; i < std::size(kBars) && top >= 0.0F; ++i, x += kPitch) {
        const Rect bar{{x, top + 40.0F - kBars[i] * 0.5F}, {kBar, kBars[i]}};
        fillRounded(canvas, bar, kBar * 0.5F,
                    static_cast<int>(i) < kPlayedBars
                        ? colors.accent
                        : colors.strong.mixedWith(colors.window, 0.35F));
    }
    const auto line = [&](const char* string, float y, const Font& font, Color color) {
        StyledText text{string, font, color, TextAlignment::Center};
        canvas.drawText(text.truncatedTo(bounds().size.width - 16.0F),
                        {{0.0F, y}, {bounds().size.width, 24.0F}}, TextPlacement::Capitals);
    };
    line("Drop audio files here", top + 98.0F, themeFont(20.0F, FontWeight::SemiBold), colors.text);
    line("WAV, AIFF, FLAC, Ogg, Opus and MP3", top + 128.0F, themeFont(13.0F), colors.label);
    if (top + kHeight <= bounds().size.height)
        line("Ctrl O opens files. Space plays, Home returns to the start.", top + 212.0F,
             themeFont(11.0F), colors.caption);
}

void DropView::mouseUp(const Event& event) {
    if (!m_isWhole && mouseInRect(locationOf(event), bounds(), true)) addWasPressed();
}

Cursor DropView::cursorAt(Point /*point*/) const {
    return m_isWhole ? Cursor::Arrow : Cursor::PointingHand;
}

void DropView::addWasPressed() {
    m_delegate.addFilesWasPressed();
}

}  // namespace veltra::console
