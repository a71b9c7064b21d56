// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/detail/octave_picker_drawing.h"

#include "veltra/controls/keyboard/note_name.h"
#include "veltra/controls/keyboard/white_keys.h"
#include "veltra/ui/drawing.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace veltra::detail {

namespace {

constexpr std::int32_t kMiddleC = 60;
constexpr std::int32_t kOctave = 12;

constexpr float kNameHeight = 12.0F;
constexpr float kNameFoot = 2.0F;  // below the names
constexpr float kBlackLength = 0.6F;
constexpr float kBlackWidth = 0.6F;
constexpr float kEdgeWidth = 3.0F;
constexpr float kReach = 2.0F;  // of the edges beyond the keys and of the line between them

// Colours of keys, and how far those outside of the range go over into the ground.
struct KeyColors {
    Color white;
    Color line;
    Color black;
    float whiteFade;
    float lineFade;
    float blackFade;
};

constexpr KeyColors kDarkKeys{Color::fromRgb(0xCFCBC2),
                              Color::fromRgb(0x6C6860),
                              Color::fromRgb(0x24221F),
                              0.62F,
                              0.55F,
                              0.25F};
constexpr KeyColors kLightKeys{Color::fromRgb(0xFFFFFF),
                               Color::fromRgb(0xB9B4AA),
                               Color::fromRgb(0x3A3732),
                               0.35F,
                               0.55F,
                               0.45F};
constexpr float kDisabledFade = 0.7F;

std::int32_t noteOf(std::uint32_t key, std::int32_t firstNote) noexcept {
    return VLNoteForWhiteKey(static_cast<std::int32_t>(key), firstNote);
}

}  // namespace

OctavePickerDrawing::OctavePickerDrawing(Canvas& canvas, const Content& content, const Rect& dirty,
                                         Appearance appearance) noexcept
    : m_canvas(canvas),
      m_content(content),
      m_dirty(dirty),
      m_theme(theme(appearance)),
      m_isDark(appearance == Appearance::Dark),
      m_top(content.hasNames ? 4.0F : 3.0F),
      m_height(std::max(content.bounds.size.height - (content.hasNames ? 18.0F : 6.0F), 0.0F)) {}

Rect OctavePickerDrawing::part(float x, float top, float width, float height) const noexcept {
    const float low = m_canvas.isFlipped() ? top : m_content.bounds.size.height - top - height;
    return {{x, low}, {width, height}};
}

bool OctavePickerDrawing::isWanted(float x, float width) const noexcept {
    return x < m_dirty.maxX() && x + width > m_dirty.minX();
}

float OctavePickerDrawing::leftOf(std::uint32_t key) const noexcept {
    return OctaveRow::kMargin + static_cast<float>(key) * m_content.row.keyWidth();
}

bool OctavePickerDrawing::isMarked(std::uint32_t key) const noexcept {
    return m_content.state != OctavePickerState::Disabled && key >= m_content.range.location &&
           key < m_content.range.end();
}

void OctavePickerDrawing::drawGround() const {
    drawPlate(m_canvas, m_content.bounds, kOctavePickerRadius, m_theme.field, m_theme.edge);
}

void OctavePickerDrawing::drawKeys() const {
    for (std::uint32_t key = 0; key < m_content.row.count; ++key)
        drawWhiteKey(key);
    for (std::uint32_t key = 0; key + 1 < m_content.row.count; ++key)
        drawBlackKeyBehind(key);
}

void OctavePickerDrawing::drawWhiteKey(std::uint32_t key) const {
    const float width = m_content.row.keyWidth();
    if (!isWanted(leftOf(key), width)) return;
    const KeyColors& colors = m_isDark ? kDarkKeys : kLightKeys;
    const bool isDisabled = m_content.state == OctavePickerState::Disabled;
    const bool marked = isMarked(key);
    const auto faded = [&](Color color, float part) {
        return marked ? color : color.mixedWith(m_theme.field, part);
    };
    const Rect face = m_canvas.alignedToDevice(part(leftOf(key), m_top, width, m_height));
    m_canvas.fillRect(face, faded(colors.white, isDisabled ? kDisabledFade : colors.whiteFade));
    const float line = deviceWidth(m_canvas, 1.0F);
    m_canvas.fillRect({{face.maxX() - line, face.minY()}, {line, face.size.height}},
                      faded(colors.line, colors.lineFade));
}

void OctavePickerDrawing::drawBlackKeyBehind(std::uint32_t key) const {
    const std::int32_t note = noteOf(key, m_content.firstNote);
    if (note < 0 || !VLIsBlackKey(note + 1)) return;
    const float width = std::max(std::round(m_content.row.keyWidth() * kBlackWidth), 2.0F);
    const float left = leftOf(key + 1) - width / 2.0F - 0.5F;  // around the line between the keys
    if (!isWanted(left, width)) return;
    const KeyColors& colors = m_isDark ? kDarkKeys : kLightKeys;
    // Bright only between two marked keys.
    const bool marked = isMarked(key) && isMarked(key + 1);
    Rect face = m_canvas.alignedToDevice(part(left, m_top, width, m_height * kBlackLength));
    face.size.width = deviceWidth(m_canvas, width);
    m_canvas.fillRect(
        face, marked ? colors.black : colors.black.mixedWith(m_theme.field, colors.blackFade));
}

void OctavePickerDrawing::drawRange() const {
    const float left = m_content.row.left(m_content.range);
    const float right = m_content.row.right(m_content.range) + 1.0F;  // behind the last key's line
    const Rect keys = part(left, m_top, right - left, m_height);
    const Rect frame = m_canvas.alignedToDevice(keys.inset(-kReach, -kReach));
    if (m_content.state == OctavePickerState::Disabled)
        return strokeRounded(m_canvas, frame, 2.0F, m_theme.strong);

    const bool isDragged = m_content.state == OctavePickerState::Dragged;
    const bool isHovered = m_content.state == OctavePickerState::Hovered;
    fillAligned(m_canvas, keys,
                m_theme.accent.withAlpha(isDragged ? 0.30F : (isHovered ? 0.24F : 0.16F)));
    const Color color =
        isDragged && m_isDark ? m_theme.accent.mixedWith(kWhite, 0.3F) : m_theme.accent;
    const float edge = deviceWidth(m_canvas, kEdgeWidth);
    const float line = deviceWidth(m_canvas, kReach);
    const Size side{edge, frame.size.height};
    const Size between{frame.size.width - 2.0F * edge, line};
    fillRounded(m_canvas, {frame.origin, side}, 1.0F, color);
    fillRounded(m_canvas, {{frame.maxX() - edge, frame.minY()}, side}, 1.0F, color);
    fillAligned(m_canvas, {{frame.minX() + edge, frame.minY()}, between}, color);
    fillAligned(m_canvas, {{frame.minX() + edge, frame.maxY() - line}, between}, color);
}

void OctavePickerDrawing::drawNames() const {
    if (!m_content.hasNames) return;
    const float top = m_content.bounds.size.height - kNameFoot - kNameHeight;
    for (std::uint32_t key = 0; key < m_content.row.count; ++key) {
        const std::int32_t note = noteOf(key, m_content.firstNote);
        if (note < 0 || note % kOctave != 0) continue;
        Color color = isMarked(key) ? m_theme.text : m_theme.caption;
        if (m_content.state == OctavePickerState::Disabled) color = m_theme.strong;
        const Font font =
            themeFont(10.0F, note == kMiddleC ? FontWeight::SemiBold : FontWeight::Regular);
        const float center = leftOf(key) + m_content.row.keyWidth() / 2.0F;
        constexpr float kWidth = 40.0F;
        if (!isWanted(center - kWidth / 2.0F, kWidth)) continue;
        const StyledText text{noteName(note, m_content.octaveOfMiddleC), font, color,
                              key == 0 ? TextAlignment::Left : TextAlignment::Center};
        const float left = key == 0 ? OctaveRow::kMargin : center - kWidth / 2.0F;
        m_canvas.drawText(text, part(left, top, kWidth, kNameHeight), TextPlacement::Capitals);
    }
}

}  // namespace veltra::detail
