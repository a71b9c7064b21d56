// SPDX-License-Identifier: MIT
// What the tool tip of a value that is being changed looks like and where it stands: a small plate
// with an arrow to the knob, and a shadow. A port draws it in a window of its own, a picture in
// itself.
//
// Coordinates are points with the y axis pointing down.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/geometry.h"
#include "veltra/ui/tool_tip.h"

#include <string>

namespace veltra {

struct VELTRA_EXPORT ValueTip {
    // The tip of a text that stands on `side` of `around` and leaves that free: on the other side
    // where `room` ends, and never beyond the room as long as it fits at all.
    static ValueTip placed(const std::string& text, const Rect& around, const Rect& room,
                           ToolTipSide side);

    Rect plate;      // with the text in its middle
    Rect reach;      // with arrow and shadow
    Point arrow[3];  // its corners

    // The same tip in other coordinates: `offset` is added to every point.
    ValueTip movedBy(Point offset) const;

    // Draws shadow, plate, arrow and text on a flipped canvas, in the colours of the appearance.
    // The text is that which the tip was placed for.
    void draw(Canvas& canvas, const std::string& text, Appearance appearance) const;
};

}  // namespace veltra
