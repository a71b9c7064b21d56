// SPDX-License-Identifier: MIT
// How an octave picker looks: a miniature keyboard, the marked range, and names of octaves.
#pragma once

#include "veltra/controls/keyboard/octave_range.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

#include <cstdint>

namespace veltra::detail {

enum class OctavePickerState : std::uint8_t { AtRest, Hovered, Dragged, Disabled };

inline constexpr float kOctavePickerRadius = 6.0F;

class OctavePickerDrawing {
public:
    struct Content {
        Rect bounds;
        OctaveRow row;
        KeyRange range;
        std::int32_t firstNote;
        std::int32_t octaveOfMiddleC;
        bool hasNames;
        OctavePickerState state;
    };

    // `canvas` must live as long as this. Only what meets `dirty` is drawn.
    OctavePickerDrawing(Canvas& canvas, const Content& content, const Rect& dirty,
                        Appearance appearance) noexcept;

    void drawGround() const;
    void drawKeys() const;
    void drawRange() const;
    void drawNames() const;

private:
    // A part of the bounds, its place counted from the upper left corner.
    Rect part(float x, float top, float width, float height) const noexcept;
    bool isWanted(float x, float width) const noexcept;
    float leftOf(std::uint32_t key) const noexcept;
    bool isMarked(std::uint32_t key) const noexcept;
    void drawWhiteKey(std::uint32_t key) const;
    void drawBlackKeyBehind(std::uint32_t key) const;

    Canvas& m_canvas;
    const Content& m_content;
    const Rect m_dirty;
    const Theme& m_theme;
    const bool m_isDark;
    const float m_top;     // of the keys
    const float m_height;  // of the keys
};

}  // namespace veltra::detail
