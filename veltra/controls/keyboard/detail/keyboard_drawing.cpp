// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/detail/keyboard_drawing.h"

#include "veltra/ui/drawing.h"

#include <algorithm>

namespace veltra::detail {

namespace {

constexpr float kWhiteRadius = 6.0F;
constexpr float kBlackRadius = 4.0F;
constexpr float kInnerRadius = 3.0F;
constexpr float kLip = 4.0F;       // the front of a white key that is up
constexpr float kBlackLip = 8.0F;  // of a black one
constexpr float kBlackRim = 1.5F;  // around the upper side of a black key
constexpr float kLabelUp = 21.0F;  // from the foot to the middle of a label
constexpr float kDotUp = 38.0F;
constexpr float kLabelHeight = 14.0F;
constexpr float kEdgeHeight = 3.0F;

struct KeyColors {
    Color bed;
    Color white;
    Color black;
    float whiteFar;    // how much darker a white key is at its far end
    float whiteFront;  // and on its front
};

constexpr KeyColors kDark{Color::fromRgb(0x0B0A0A), Color::fromRgb(0xE4E0D7),
                          Color::fromRgb(0x1A1917), 0.08F, 0.32F};
constexpr KeyColors kLight{Color::fromRgb(0xB9B4AA), Color::fromRgb(0xFFFFFF),
                           Color::fromRgb(0x2B2926), 0.03F, 0.16F};
constexpr Color kLabel = Color::fromRgb(0x625D56);

constexpr float kHover = 0.06F;
constexpr float kDisabled = 0.5F;

// Square corners at the top, round ones at the foot; the canvas is flipped.
Path keyPath(const Rect& rect, float wantedRadius) {
    const float radius = std::min({wantedRadius, rect.size.width / 2.0F, rect.size.height});
    const float bend = radius * 0.45F;  // of the control points from the corner
    const float foot = rect.maxY();
    Path path;
    path.moveTo(rect.origin);
    path.lineTo({rect.maxX(), rect.minY()});
    path.lineTo({rect.maxX(), foot - radius});
    path.curveTo({rect.maxX(), foot - bend}, {rect.maxX() - bend, foot},
                 {rect.maxX() - radius, foot});
    path.lineTo({rect.minX() + radius, foot});
    path.curveTo({rect.minX() + bend, foot}, {rect.minX(), foot - bend},
                 {rect.minX(), foot - radius});
    path.close();
    return path;
}

LinearGradient downwards(const Rect& rect, Color from, Color to) {
    return {from, to, rect.origin, {rect.minX(), rect.maxY()}};
}

}  // namespace

KeyboardDrawing::KeyboardDrawing(Canvas& canvas, Appearance appearance) noexcept
    : m_canvas(canvas), m_theme(theme(appearance)), m_isDark(appearance == Appearance::Dark) {}

Color KeyboardDrawing::dimmed(Color color, const KeyPicture& picture) const noexcept {
    return picture.isEnabled ? color : color.mixedWith(m_theme.card, kDisabled);
}

void KeyboardDrawing::drawBed(const Rect& bounds) const {
    fillRounded(m_canvas, bounds, 4.0F, (m_isDark ? kDark : kLight).bed);
}

void KeyboardDrawing::drawWhiteKey(const Rect& key, const KeyPicture& picture) const {
    const KeyColors& colors = m_isDark ? kDark : kLight;
    Rect body = m_canvas.alignedToDevice(key);
    const float gap = deviceWidth(m_canvas, 1.0F);
    // The key before may have been rounded to end a pixel farther.
    if (key.minX() > 0.0F) m_canvas.fillRect({body.origin, {gap, body.size.height}}, colors.bed);
    body.origin.x += gap;
    body.size.width -= gap;
    body.size.height -= gap;
    const Path outline = keyPath(body, kWhiteRadius);
    if (picture.isPressed) {
        const Color face = dimmed(m_theme.accent, picture);
        m_canvas.fillPath(outline, downwards(body, face.mixedWith(kBlack, 0.1F), face));
    } else {
        Color face = dimmed(colors.white, picture);
        if (picture.isHovered) face = face.mixedWith(kBlack, kHover);
        m_canvas.fillPath(outline, face.mixedWith(kBlack, colors.whiteFront));
        const Rect top{body.origin, {body.size.width, body.size.height - kLip}};
        m_canvas.fillPath(keyPath(top, kWhiteRadius),
                          downwards(top, face.mixedWith(kBlack, colors.whiteFar), face));
    }
    const Color ink = dimmed(picture.isPressed ? m_theme.onAccent : kLabel, picture);
    if (!picture.label.empty()) {
        m_canvas.drawText(
            {picture.label, themeFont(11.0F, FontWeight::SemiBold), ink, TextAlignment::Center},
            {{body.minX(), key.maxY() - kLabelUp - kLabelHeight / 2.0F},
             {body.size.width, kLabelHeight}},
            TextPlacement::Capitals);
    }
    if (picture.isMiddleC) {
        const Rect dot{{body.center().x - 2.0F, key.maxY() - kDotUp - 2.0F}, {4.0F, 4.0F}};
        m_canvas.fillPath(Path::ellipse(dot), ink);
    }
}

void KeyboardDrawing::drawBlackKey(const Rect& key, const KeyPicture& picture) const {
    const KeyColors& colors = m_isDark ? kDark : kLight;
    Rect body = m_canvas.alignedToDevice(key);
    body.size.width = deviceWidth(m_canvas, key.size.width);
    const Color accent = m_theme.accent;
    const Color side = picture.isPressed ? accent.mixedWith(kBlack, 0.35F) : kBlack;
    m_canvas.fillPath(keyPath(body, kBlackRadius), dimmed(side, picture));
    const float rim = deviceWidth(m_canvas, kBlackRim);
    const float front = picture.isPressed ? rim * 2.0F : kBlackLip;
    const Rect top{{body.minX() + rim, body.minY()},
                   {body.size.width - 2.0F * rim, body.size.height - front}};
    if (top.isEmpty()) return;
    Color far = colors.black.mixedWith(kWhite, 0.03F);
    Color near = colors.black.mixedWith(kWhite, picture.isHovered ? 0.24F : 0.16F);
    if (picture.isPressed) {
        far = accent.mixedWith(kBlack, 0.3F);
        near = accent;
    }
    m_canvas.fillPath(keyPath(top, kInnerRadius),
                      downwards(top, dimmed(far, picture), dimmed(near, picture)));
}

void KeyboardDrawing::drawEdge(const Rect& bounds) const {
    fillAligned(m_canvas, {bounds.origin, {bounds.size.width, kEdgeHeight}},
                kBlack.withAlpha(0.22F));
}

}  // namespace veltra::detail
