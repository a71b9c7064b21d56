// SPDX-License-Identifier: MIT
// The colours and letters of the framework's own controls, dark and light. Text stands out from
// what lies behind it by at least 4.5 : 1, lines that carry meaning by at least 3 : 1.
//
// What the user sets lies on paper: `card` and `control`. What is recessed is a `field`. What the
// machine reports from moment to moment lies on `glass`, dark in both appearances.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/color.h"
#include "veltra/ui/font.h"

namespace veltra {

// A zone of levels: from its low to its high end while lit, and while not.
struct SignalColors {
    Color low;   // lit, at the zone's low end
    Color high;  // lit, at its high end
    Color off;   // not lit
};

struct Theme {
    // Grounds.
    Color window;
    Color card;
    Color control;
    Color controlHover;
    Color controlPressed;
    Color field;  // slots, the ground of waveforms and of number fields
    Color glass;

    // Lines: around cards, around buttons, and those that must be seen, such as ticks.
    Color line;
    Color edge;
    Color strong;

    // Text: what is read first, labels, labels of scales.
    Color text;
    Color label;
    Color caption;

    Color accent;      // focus, what is on, what has been played
    Color onAccent;    // text on it
    Color accentSoft;  // the ground of what is in an accented state
    Color alert;       // what has gone wrong
    Color alertSoft;   // the ground of a text about it
    Color wave;        // a waveform that has not been played yet

    // Caps of faders and sliders.
    Color cap;
    Color capHover;
    Color capEdge;

    // What floats above the window.
    Color tip;
    Color tipText;
    Color floating;
    float shadow;  // alpha of the strongest part of its shadow

    // On glass.
    Color glassText;
    Color glassCaption;
    Color glassZero;   // leading zeros and separators
    Color glassGhost;  // segments that are not lit

    // Signals, on glass.
    SignalColors green;
    SignalColors amber;
    SignalColors red;
    SignalColors muted;
    Color clip;
    Color clipCore;
    Color clipOff;
    Color clipText;  // on `clip`

    // Switches that are on, and the text on them.
    Color mute;
    Color solo;
    Color arm;
    Color onSwitch;
};

// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT const Theme& theme(Appearance appearance) noexcept;

// The letters of the controls, with figures of one width: Inter where it is installed, else the
// system's font. The minus sign that goes with them is U+2212.
// Thread: main. Realtime-safe: no.
VELTRA_EXPORT Font themeFont(float size, FontWeight weight = FontWeight::Regular);

}  // namespace veltra
