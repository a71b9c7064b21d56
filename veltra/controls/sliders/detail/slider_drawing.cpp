// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/detail/slider_drawing.h"

#include "veltra/controls/sliders/slider_cell.h"
#include "veltra/ui/drawing.h"

#include <algorithm>
#include <cmath>

namespace veltra::detail {

namespace {

constexpr float kSlot = 4.0F;
constexpr float kSlotRadius = 2.0F;
constexpr float kReadingLine = 2.0F;
constexpr float kLabelGap = 3.0F;  // between a mark and its label
constexpr float kLabelHeight = 14.0F;
constexpr float kLabelWidth = 60.0F;

struct CapShape {
    float along;
    float across;
    float radius;
    float lineInset;  // of the reading line, on both sides
};

constexpr CapShape shapeOf(CapKind kind) noexcept {
    switch (kind) {
        case CapKind::Fader:
            return {36.0F, 24.0F, 5.0F, 2.0F};
        case CapKind::Pan:
            return {12.0F, 20.0F, 5.0F, 4.0F};
        case CapKind::Round:
            break;
    }
    return {16.0F, 16.0F, 8.0F, 4.0F};
}

}  // namespace

CapKind capKindOf(std::int32_t imageID) noexcept {
    return imageID == kSliderKnobFader ? CapKind::Fader
           : imageID == kSliderKnobPan ? CapKind::Pan
                                       : CapKind::Round;
}

Size capSize(CapKind kind, bool isVertical) noexcept {
    const CapShape shape = shapeOf(kind);
    return isVertical ? Size{shape.across, shape.along} : Size{shape.along, shape.across};
}

float capRadius(CapKind kind) noexcept {
    return shapeOf(kind).radius;
}

SliderPen::SliderPen(Canvas& canvas, bool isVertical, float middle, Appearance appearance)
    : m_canvas(canvas),
      m_isVertical(isVertical),
      m_appearance(appearance),
      m_colors(theme(appearance)),
      m_scale(canvas.scale()) {
    const float length = std::max(1.0F, pixels(kSlot)) / m_scale;
    m_slot = {edge(middle - length * 0.5F, false), length};
}

float SliderPen::pixels(float points) const {
    return std::round(points * m_scale);
}

// The nearest border between device pixels.
float SliderPen::edge(float coordinate, bool isAlong) const {
    const Rect aligned = m_canvas.alignedToDevice({{coordinate, coordinate}, {1.0F, 1.0F}});
    return isAlong == m_isVertical ? aligned.minY() : aligned.minX();
}

// As long as it can be with both ends equally far from those of `inner`.
Band SliderPen::around(const Band& inner, float length) const {
    const float beyond = std::round((length - inner.length) * 0.5F * m_scale) / m_scale;
    return {inner.low - beyond, inner.length + 2.0F * beyond};
}

Band SliderPen::lineAt(float at, float thickness) const {
    const float width = deviceWidth(m_canvas, thickness);
    const float half = std::floor(pixels(width) * 0.5F) / m_scale;
    return {edge(at, true) - half, width};
}

Rect SliderPen::rect(const Band& along, const Band& across) const {
    const Band& x = m_isVertical ? across : along;
    const Band& y = m_isVertical ? along : across;
    return {{x.low, y.low}, {x.length, y.length}};
}

Band SliderPen::acrossBand(float from, float to) const {
    const float half = kSlot * 0.5F;
    const float near = pixels(from - half) / m_scale;
    const float length = std::max(1.0F, pixels(to - from)) / m_scale;
    return marksAreLow() ? Band{m_slot.low - near - length, length}
                         : Band{m_slot.high() + near, length};
}

void SliderPen::drawSlot(float from, float to) {
    const float low = edge(std::min(from, to), true);
    const Band along{low, edge(std::max(from, to), true) - low};
    drawPlate(m_canvas, rect(along, m_slot), kSlotRadius, m_colors.field, m_colors.edge);
}

void SliderPen::drawDeviation(float from, float to) {
    const float low = edge(std::min(from, to), true);
    const Band along{low, edge(std::max(from, to), true) - low};
    if (along.length <= 1.0F) return;
    fillRounded(m_canvas, rect(along, m_slot), 1.0F, m_colors.accent);
}

void SliderPen::drawMark(float at, SliderMark::Kind kind, const MarkStyle& style) {
    using Kind = SliderMark::Kind;
    const bool isReference = kind == Kind::Reference;
    Color color = style.color.value_or(m_colors.strong);
    if (style.isEnabled && !style.color) {
        if (isReference) color = m_colors.text;
        if (kind == Kind::Centre) color = m_colors.label;
    }
    if (kind == Kind::Minor && !style.color) color = m_colors.line;
    const Band along = lineAt(at, isReference ? 2.0F : 1.0F);
    const auto draw = [&](float from, float to) {
        m_canvas.fillRect(rect(along, acrossBand(from, to)), color);
    };
    const float from = style.position;
    const float height = style.height;
    switch (kind) {
        case Kind::Major:
            return draw(from, from + height);
        case Kind::Minor:
            return draw(from, from + 0.6F * height);
        case Kind::Centre:
            draw(from - 1.0F, from + height);
            return draw(-from - height, 1.0F - from);
        case Kind::Reference:
            draw(from - 2.0F, from + height + 2.0F);  // two points of it are under the cap
            return draw(-from - height + 1.0F, 2.0F - from);
    }
}

void SliderPen::drawText(float at, const std::string& text, const MarkStyle& style, bool isStrong) {
    StyledText label{text, themeFont(10.0F, isStrong ? FontWeight::SemiBold : FontWeight::Medium),
                     isStrong && style.isEnabled ? m_colors.text : m_colors.caption,
                     m_isVertical ? TextAlignment::Right : TextAlignment::Center};
    const float away = style.position + style.height + kLabelGap;
    if (m_isVertical) {
        const Rect place{{m_slot.low - away + kSlot * 0.5F - kLabelWidth, at - kLabelHeight * 0.5F},
                         {kLabelWidth, kLabelHeight}};
        return m_canvas.drawText(label, place, TextPlacement::Capitals);
    }
    const Band across = acrossBand(away, away + kLabelHeight);
    m_canvas.drawText(label, {{at - kLabelWidth * 0.5F, across.low}, {kLabelWidth, across.length}},
                      TextPlacement::Capitals);
}

void SliderPen::drawLabel(float at, const SliderMark& mark, const MarkStyle& style) {
    drawText(edge(at, true), mark.label, style, mark.kind == SliderMark::Kind::Reference);
}

void SliderPen::drawUnit(float at, const std::string& unit, const MarkStyle& style) {
    drawText(edge(at, true), unit, style, false);
}

void SliderPen::drawCap(CapKind kind, const Rect& place, CapState state, float visible) {
    const CapShape shape = shapeOf(kind);
    const bool isDisabled = state == CapState::Disabled;
    const Size whole = capSize(kind, m_isVertical);
    const float cutX = whole.width - place.size.width;  // a place may be smaller than the cap
    const float cutY = whole.height - place.size.height;
    const Band line = lineAt(m_isVertical ? place.center().y : place.center().x, kReadingLine);
    const Band along = around(line, shape.along - (m_isVertical ? cutY : cutX));
    const Band across = around(m_slot, shape.across - (m_isVertical ? cutX : cutY));
    const Rect cap = rect(along, across);

    const auto faded = [&](Color color) {
        return isDisabled ? m_colors.card.mixedWith(color, visible) : color;
    };
    const Color edgeColor = faded(m_colors.capEdge);
    const Color body = state == CapState::Hovered   ? m_colors.capHover
                       : state == CapState::Pressed ? m_colors.cap.mixedWith(m_colors.card, 0.25F)
                                                    : faded(m_colors.cap);
    const Color reading = state == CapState::Dragged ? m_colors.accent
                          : isDisabled ? m_colors.caption.mixedWith(m_colors.card, 0.4F)
                                       : m_colors.text;
    const bool isDragged = state == CapState::Dragged;
    if (isDragged || state == CapState::Hovered)
        drawHalo(m_canvas, cap, shape.radius, m_colors.accent, isDragged);
    drawPlate(m_canvas, cap, shape.radius, body, edgeColor);

    const Band lineAcross = around(m_slot, across.length - 2.0F * shape.lineInset);
    fillRounded(m_canvas, rect(line, lineAcross), 1.0F, reading);
    if (kind != CapKind::Fader) return;
    // A quiet waist: two lines on either side of the reading line.
    const bool isDark = m_appearance == Appearance::Dark;
    const Color grip = isDark ? m_colors.cap.mixedWith(kBlack, isDisabled ? 0.15F : 0.38F)
                              : m_colors.capEdge.mixedWith(m_colors.cap, isDisabled ? 0.7F : 0.35F);
    const Band gripAcross = around(m_slot, across.length - 10.0F);
    const float width = deviceWidth(m_canvas, 1.0F);
    for (const float away : {4.0F, 8.0F}) {
        const float gap = pixels(away) / m_scale;
        m_canvas.fillRect(rect({line.low - gap - width, width}, gripAcross), grip);
        m_canvas.fillRect(rect({line.high() + gap, width}, gripAcross), grip);
    }
}

}  // namespace veltra::detail
