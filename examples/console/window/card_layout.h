// SPDX-License-Identifier: MIT
// Where the parts of a card stand, of a strip's and of the output's alike: all rows of a window are
// at the same height, and nothing moves when a part is missing.
//
// Lengths are points from the card's upper left corner. The glass of a meter begins at a multiple
// of 4, and its height and the pitch of the LEDs are some, too: their edges fall on device pixels
// at every quarter of a scale.
//
// Thread: any.
#pragma once

#include "veltra/ui/geometry.h"

#include <cstdint>

namespace veltra::console {

inline constexpr float kGrid = 4.0F;  // points, in whose steps cards grow

// What a card has room for.
enum class CardKind : std::uint8_t {
    Mini,  // name, peak, meter, switches
    Low,   // with the format
    Mid,   // with a low waveform, the pan control and labels beside the fader
    Full,  // with the axis of the waveform
};
CardKind cardKind(float height) noexcept;

struct CardLayout {
    // The meter has `bars`, `bar` points wide each; with 0 they grow with the card, up to 16. They
    // are narrower where there is no room.
    static CardLayout make(Size card, int bars, float bar = 0.0F);

    // Of a card that is not tall, so that so many bars find room beside a fader, or without one.
    static float widthFor(int bars, bool hasFader) noexcept;

    bool isTall() const noexcept { return kind >= CardKind::Mid; }

    CardKind kind = CardKind::Full;
    Rect name;
    Rect more;     // the button beside it
    Rect format;   // empty: none, and so on
    Rect picture;  // with its axis
    Rect switches[2];
    Rect pan;
    Rect panText;
    Rect gain;
    Rect peak;
    Rect fader;
    Rect scale;
    Rect meter;  // the glass, with the names below
    Rect footer;
    float bar = 9.0F;  // width of a bar of the meter
    float barGap = 2.0F;

    static constexpr float kNames = 16.0F;  // height below the glass
    static constexpr float kPitch = 4.0F;   // of the LEDs
    static constexpr float kGlass = 4.0F;   // edge of glass around the bars
    static constexpr float kAxis = 18.0F;   // height below a waveform
};

}  // namespace veltra::console
