// SPDX-License-Identifier: MIT
// The drawn parts of a slider, laid on whole device pixels: the slot, the marks and the caps. All
// of them are symmetrical about the middle of the slot, a cap also about its reading line.
#pragma once

#include "veltra/controls/sliders/slider_marks.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

#include <cstdint>
#include <optional>

namespace veltra::detail {

enum class CapKind : std::uint8_t { Round, Fader, Pan };
enum class CapState : std::uint8_t { Rest, Hovered, Pressed, Dragged, Disabled };

CapKind capKindOf(std::int32_t imageID) noexcept;
// Along the slot as its height when the slider is upright.
Size capSize(CapKind kind, bool isVertical) noexcept;
float capRadius(CapKind kind) noexcept;

// A part of an axis that begins and ends on borders between device pixels.
struct Band {
    float low = 0.0F;
    float length = 0.0F;

    float high() const noexcept { return low + length; }
};

// Draws on one slider.
class SliderPen {
public:
    // `middle` is that of the slot, across.
    SliderPen(Canvas& canvas, bool isVertical, float middle, Appearance appearance);

    // From one end to the other, in points along the slot.
    void drawSlot(float from, float to);
    void drawDeviation(float from, float to);

    struct MarkStyle {
        float position = 0.0F;  // of the nearer end, from the middle of the slot
        float height = 0.0F;
        std::optional<Color> color;
        bool isEnabled = true;
    };
    void drawMark(float at, SliderMark::Kind kind, const MarkStyle& style);
    // At the mark's left, or below it.
    void drawLabel(float at, const SliderMark& mark, const MarkStyle& style);
    // What stands on the side of the marks, before the caption of the first one.
    void drawUnit(float at, const std::string& unit, const MarkStyle& style);

    // `visible` is the part that is left of the colours of a disabled cap.
    void drawCap(CapKind kind, const Rect& place, CapState state, float visible);

    const Band& slot() const noexcept { return m_slot; }

private:
    float edge(float coordinate, bool isAlong) const;
    float pixels(float points) const;
    Band around(const Band& inner, float length) const;
    Band lineAt(float at, float thickness) const;
    Rect rect(const Band& along, const Band& across) const;
    // Across, counted from the middle of the slot towards the marks.
    Band acrossBand(float from, float to) const;
    bool marksAreLow() const { return m_isVertical || !m_canvas.isFlipped(); }
    void drawText(float at, const std::string& text, const MarkStyle& style, bool isStrong);

    Canvas& m_canvas;
    const bool m_isVertical;
    const Appearance m_appearance;
    const Theme& m_colors;
    const float m_scale;
    Band m_slot;  // across
};

}  // namespace veltra::detail
