// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_display.h"

#include "veltra/ui/drawing.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace veltra {

namespace {

constexpr float kMargin = 4.0F;          // beside the digits
constexpr float kHeightOfGround = 1.4F;  // of the group that is edited, in sizes of the font
constexpr float kAirOnGlass = 12.0F;     // above and below it, together
constexpr float kCaptionSize = 10.0F;
constexpr float kCaptionHeight = 12.0F;
constexpr float kRadiusOfGlass = 8.0F;
constexpr float kRadiusOfField = 4.0F;
constexpr float kLowGlass = 24.0F;  // up to here glass has the corners of a field

}  // namespace

NumberDisplay::NumberDisplay(const Rect& frame, NumberEditorLook look, float fontSize)
    : View(frame),
      m_look(look == NumberEditorLook::Field ? look : NumberEditorLook::Glass),
      m_editor(&addSubview(std::make_unique<DfNumberEditorControl>())) {
    m_editor->setLook(m_look, fontSize);
    layOut();
}

NumberDisplay::~NumberDisplay() = default;

void NumberDisplay::setGroups(const std::vector<NumberDisplayGroup>& groups,
                              std::string_view separator) {
    m_editor->setEditorCellCount(static_cast<std::int32_t>(groups.size()));
    for (std::int32_t i = 0; i < m_editor->editorCellCount(); ++i) {
        const NumberDisplayGroup& group = groups[static_cast<std::size_t>(i)];
        m_editor->setPlaceHolderStringOfEditorCellAtIndex(std::string(group.places, '0'), i);
        m_editor->setMaxEditStringLenOfEditorCellAtIndex(group.places, i);
        m_editor->setShadowEightsOfEditorCellAtIndex(group.places, i);
        if (group.hasLeadingZeros) m_editor->setLeadingZerosOfEditorCellAtIndex(group.places, i);
        m_editor->editorCellAtIndex(i)->setAccessibilityName(group.name);
        if (i > 0) m_editor->setStringOfSeparatorCellAtIndex(separator, i - 1);
    }
    layOut();
}

void NumberDisplay::setCaptions(std::vector<std::string> captions) {
    m_captions = std::move(captions);
    layOut();
    setNeedsDisplay();
}

float NumberDisplay::width() const {
    float width = 0.0F;
    for (std::int32_t i = 0; i < m_editor->cellCount(); ++i)
        width += m_editor->cellAtIndex(i)->cellSize().width;
    return width;
}

float NumberDisplay::radius() const noexcept {
    const bool isLow = m_look == NumberEditorLook::Field || bounds().size.height <= kLowGlass;
    return isLow ? kRadiusOfField : kRadiusOfGlass;
}

Size NumberDisplay::sizeThatFits() const {
    const float digits = std::round(m_editor->font().size * kHeightOfGround);
    const float air = m_look == NumberEditorLook::Glass ? kAirOnGlass : kMargin;
    return {width() + 2.0F * kMargin, digits + air + (m_captions.empty() ? 0.0F : kCaptionHeight)};
}

void NumberDisplay::layOut() {
    const Size size = bounds().size;
    const float captions = m_captions.empty() ? 0.0F : kCaptionHeight;
    // A low display of one group is edited as a whole.
    const bool isWhole = m_editor->editorCellCount() == 1 && size.height <= kLowGlass;
    const float wanted = std::round(m_editor->font().size * kHeightOfGround);
    const float height =
        isWhole ? size.height : std::max(std::min(wanted, size.height - captions), 0.0F);
    const float across = isWhole ? size.width : std::min(width(), size.width);
    const Rect place{{std::floor((size.width - across) * 0.5F),
                      captions + std::floor((size.height - captions - height) * 0.5F)},
                     {across, height}};
    m_editor->setFrame(place);
    m_editor->recalculateCellSizes();
    // The editor's y axis points up.
    m_editor->setFocusShape(
        FocusShape{{{-place.minX(), place.maxY() - size.height}, size}, radius()});
    setNeedsDisplay();
}

void NumberDisplay::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    if (m_look == NumberEditorLook::Field) {
        drawPlate(canvas, bounds(), radius(), colors.field, colors.line);
    } else {
        fillRounded(canvas, bounds(), radius(), colors.glass);
    }
    const Color ink = m_look == NumberEditorLook::Field ? colors.label : colors.glassCaption;
    const std::int32_t count = m_editor->editorCellCount();
    for (std::int32_t i = 0; i < count && static_cast<std::size_t>(i) < m_captions.size(); ++i) {
        const Rect cell = m_editor->frameOfCellAtIndex(2 * i);
        // Wider than its group a caption reaches over both sides alike.
        const StyledText text{m_captions[static_cast<std::size_t>(i)],
                              themeFont(kCaptionSize, FontWeight::Medium), ink,
                              TextAlignment::Center};
        const float half = std::max(text.size().width, cell.size.width) * 0.5F;
        const float middle = m_editor->frame().minX() + cell.center().x;
        canvas.drawText(text,
                        {{middle - half, m_editor->frame().minY() - kCaptionHeight},
                         {2.0F * half, kCaptionHeight}},
                        TextPlacement::Capitals);
    }
}

}  // namespace veltra
