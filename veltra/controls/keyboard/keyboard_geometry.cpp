// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_geometry.h"

#include "veltra/controls/keyboard/white_keys.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace veltra {

namespace {

constexpr float kBlackWidth = 0.58F;   // of a white key's
constexpr float kBlackLength = 0.62F;  // of a white key's

// How far a black key is off the middle between its neighbours, in its own width; by semitones.
constexpr std::array<float, 12> kOffsets{0.0F,   -0.10F, 0.0F, 0.10F, 0.0F,  0.0F,
                                         -0.13F, 0.0F,   0.0F, 0.0F,  0.13F, 0.0F};

}  // namespace

std::int32_t KeyboardGeometry::lowestNote() const noexcept {
    if (range.length == 0) return -1;
    return VLNoteForWhiteKey(static_cast<std::int32_t>(range.location), firstNote);
}

std::int32_t KeyboardGeometry::highestNote() const noexcept {
    if (range.length == 0) return -1;
    return VLNoteForWhiteKey(static_cast<std::int32_t>(range.end() - 1), firstNote);
}

float KeyboardGeometry::whiteKeyWidth() const noexcept {
    return range.length > 0 ? size.width / static_cast<float>(range.length) : 0.0F;
}

float KeyboardGeometry::blackKeyWidth() const noexcept {
    return std::round(whiteKeyWidth() * kBlackWidth);
}

Rect KeyboardGeometry::rectOfNote(std::int32_t note) const noexcept {
    if (lowestNote() < 0 || note < lowestNote() || note > highestNote()) return {};
    const std::int32_t key = VLWhiteKeyForNote(note, firstNote);
    const float left =
        whiteKeyWidth() * (static_cast<float>(key) - static_cast<float>(range.location));
    if (!VLIsBlackKey(note)) return {{left, 0.0F}, {whiteKeyWidth(), size.height}};
    const float width = blackKeyWidth();
    const float offset = kOffsets[static_cast<std::size_t>(note % 12)] * width;
    return {{left + whiteKeyWidth() - width / 2.0F + offset, 0.0F},
            {width, size.height * kBlackLength}};
}

std::int32_t KeyboardGeometry::noteAt(Point point) const noexcept {
    if (lowestNote() < 0 || !pointInRect(point, {{}, size})) return -1;
    const auto key =
        std::min(static_cast<std::uint32_t>(point.x / whiteKeyWidth()), range.length - 1);
    const std::int32_t white =
        VLNoteForWhiteKey(static_cast<std::int32_t>(range.location + key), firstNote);
    for (const std::int32_t black : {white - 1, white + 1}) {
        if (VLIsBlackKey(black) && pointInRect(point, rectOfNote(black))) return black;
    }
    return white;
}

std::int32_t KeyboardGeometry::velocityAt(std::int32_t note, Point point) const noexcept {
    const Rect key = rectOfNote(note);
    if (key.isEmpty()) return 1;
    const float place = std::clamp(point.y / key.size.height, 0.0F, 1.0F);
    return 1 + static_cast<std::int32_t>(std::lround(place * 126.0F));
}

}  // namespace veltra
