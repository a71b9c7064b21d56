// SPDX-License-Identifier: MIT
// How QkSliderCell draws itself: images where the host has registered some, else by code.
#include "veltra/controls/sliders/detail/slider_drawing.h"
#include "veltra/controls/sliders/slider_cell.h"
#include "veltra/ui/image_registry.h"
#include "veltra/ui/window.h"

#include <algorithm>

namespace veltra {

namespace {

constexpr float kLabelDistance = 15.0F;  // of labels along the slot
constexpr float kSlotBeyond = 6.0F;      // of the slot, beyond what the middle of the knob reaches
constexpr float kUnitAbove = 12.0F;      // of the unit, above the uppermost mark

void drawCentred(Canvas& canvas, const Image& image, const Rect& place, float alpha) {
    const Size size = image.size();
    const Rect wanted{{place.center().x - size.width * 0.5F, place.center().y - size.height * 0.5F},
                      size};
    // Of its own size, so that its pixels are copied.
    canvas.drawImage(image, {{}, size}, {canvas.alignedToDevice(wanted).origin, size}, alpha);
}

}  // namespace

Appearance QkSliderCell::appearance() const {
    return controlView() != nullptr ? controlView()->effectiveAppearance() : Appearance::Light;
}

bool QkSliderCell::isInMainWindow() const {
    const Window* const window = controlView() != nullptr ? controlView()->window() : nullptr;
    return window != nullptr && window->isMainWindow();
}

bool QkSliderCell::looksEnabled() const {
    return isEnabled() && (isInMainWindow() || !m_showsDisabledWhenNotMainWindow);
}

void QkSliderCell::drawBar(Canvas& canvas, const Rect& track, View& view) {
    drawBarInside(canvas, track, view.isFlipped());
}

void QkSliderCell::drawBarInside(Canvas& canvas, const Rect& track, bool isFlipped) {
    if (track.isEmpty()) return;
    if (const auto image = findImage(m_trackImageID, canvas.scale()))
        return drawCentred(canvas, *image, track, 1.0F);
    const bool vertical = isVertical();
    detail::SliderPen pen(canvas, vertical, vertical ? track.center().x : track.center().y,
                          appearance());
    const float low = positionOf(minValue(), isFlipped);
    const float high = positionOf(maxValue(), isFlipped);
    const float beyond = low < high ? kSlotBeyond : -kSlotBeyond;
    pen.drawSlot(low - beyond, high + beyond);
    if (!looksEnabled()) return;
    const double normal = std::clamp(m_defaultValue, minValue(), maxValue());
    pen.drawDeviation(positionOf(normal, isFlipped), positionOf(doubleValue(), isFlipped));
}

void QkSliderCell::drawTickMarks(Canvas& canvas, View& /*view*/) {
    drawTickmarks(canvas);
}

void QkSliderCell::drawTickmarks(Canvas& canvas) {
    const Rect track = trackRect();
    if (track.isEmpty()) return;
    const bool vertical = isVertical();
    const bool flipped = canvas.isFlipped();
    detail::SliderPen pen(canvas, vertical, vertical ? track.center().x : track.center().y,
                          appearance());
    const bool isLive = looksEnabled();
    const detail::SliderPen::MarkStyle style{
        m_tickMarkY, m_tickMarkHeight, isLive ? m_tickMarkColor : m_tickMarkDisabledColor, isLive};
    if (m_marks.empty()) {
        for (std::int32_t i = 0; i < numberOfTickMarks(); ++i)
            pen.drawMark(positionOf(tickMarkValueAtIndex(i), flipped), SliderMark::Kind::Major,
                         style);
    }
    std::vector<float> positions;
    positions.reserve(m_marks.size());
    for (const SliderMark& mark : m_marks)
        positions.push_back(positionOf(mark.value, flipped));
    // Minor marks first: others lie over them.
    for (const bool isMinor : {true, false}) {
        for (std::size_t i = 0; i < m_marks.size(); ++i) {
            if ((m_marks[i].kind == SliderMark::Kind::Minor) == isMinor)
                pen.drawMark(positions[i], m_marks[i].kind, style);
        }
    }
    for (const std::size_t i : labelsWithRoom(m_marks, positions, kLabelDistance))
        pen.drawLabel(positions[i], m_marks[i], style);
    if (!m_unit.empty() && vertical) {
        const float top = positionOf(maxValue(), flipped);
        pen.drawUnit(flipped ? top - kUnitAbove : top + kUnitAbove, m_unit, style);
    }
    drawEndLabels(canvas);
}

void QkSliderCell::drawEndLabels(Canvas& canvas) const {
    const Rect& frame = cellFrame();
    const bool vertical = isVertical();
    const bool flipped = canvas.isFlipped();
    const Theme& colors = theme(appearance());
    const auto draw = [&](const std::string& text, float inset, bool isMinimum) {
        if (text.empty() || !(inset > 0.0F)) return;
        Rect place = frame;
        if (vertical) {
            place.size.height = inset;
            if (isMinimum == flipped) place.origin.y = frame.maxY() - inset;
            place.origin.x += m_labelsYInset;
            place.size.width -= m_labelsYInset;
        } else {
            place.size.width = inset;
            if (!isMinimum) place.origin.x = frame.maxX() - inset;
            if (flipped) place.origin.y += m_labelsYInset;
            place.size.height -= m_labelsYInset;
        }
        canvas.drawText(
            {text, themeFont(10.0F, FontWeight::Medium), colors.caption, TextAlignment::Center},
            place, TextPlacement::Capitals);
    };
    draw(m_minimumLabel, m_minSideInset, true);
    draw(m_maximumLabel, m_maxSideInset, false);
}

void QkSliderCell::drawKnob(Canvas& canvas, const Rect& knob, View& /*view*/) {
    if (trackRect().isEmpty()) return;
    const bool isLive = looksEnabled();
    const Rect place = knob.inset(m_knobRectInset.x, m_knobRectInset.y);
    if (const auto image = findImage(m_knobImageID, canvas.scale()))
        return drawCentred(canvas, *image, place, isLive ? 1.0F : m_KnobDisabledAlpha);
    using State = detail::CapState;
    const State state = !isLive        ? State::Disabled
                        : m_state != 0 ? (m_hasMoved ? State::Dragged : State::Pressed)
                        : m_isHovered && isInMainWindow() ? State::Hovered
                                                          : State::Rest;
    const bool vertical = isVertical();
    const Point middle = trackRect().center();
    detail::SliderPen(canvas, vertical, vertical ? middle.x : middle.y, appearance())
        .drawCap(detail::capKindOf(m_knobImageID), place, state, m_KnobDisabledAlpha);
}

}  // namespace veltra
