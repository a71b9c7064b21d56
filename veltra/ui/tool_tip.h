// SPDX-License-Identifier: MIT
// Small windows with a line of text: one that follows the pointer or a knob while a value changes.
// Those that appear when the pointer rests are set with View::toolTips().
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/weak_anchor.h"
#include "veltra/export.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace veltra {

class View;
class Window;

// An object that supplies the text of a tool tip. It derives from Anchored, too.
class VELTRA_EXPORT ToolTipSource {
public:
    virtual ~ToolTipSource();
    // An empty answer shows nothing.
    virtual std::string stringForTag(std::int32_t tag) = 0;
};

// The text of `object` if it is a ToolTipSource, else none.
VELTRA_EXPORT std::string toolTipText(Anchored* object, std::int32_t tag);

// Where a tool tip stands: above what it describes, for things that move sideways, or at its right.
// On the other side where there is no room.
enum class ToolTipSide : std::uint8_t { Above, Beside };

// The one tool tip of the process that is moved by hand.
class VELTRA_EXPORT ToolTipWindow {
public:
    // The one that there is. It lives as long as the process.
    static ToolTipWindow& shared();

    // Shows the text that `object` (not retained, asked again at each update) has for `tag`, so
    // that it does not cover `position`, a point of `view`. Another one that is open is closed.
    // Does nothing when the view is in no window or there is no text.
    void showToolTipWindowForView(View& view, Anchored* object, std::int32_t tag, Point position);

    // The same, beside a rectangle of the view, which it does not cover.
    void showToolTipWindowForView(View& view, Anchored* object, std::int32_t tag,
                                  const Rect& around, ToolTipSide side);

    // Moves the open tool tip and asks for its text again. Does nothing when none is open for
    // `view`; closes it when there is no text any more.
    void updateToolTipPosition(Point position, View& view);
    void updateToolTipPosition(const Rect& around, View& view);

    // Closes the tool tip, whoever has opened it. Nothing when none is open.
    void closeToolTipWindow();

    // The view leaves its window or is hidden: closes the tool tip of it, or of a view inside it.
    void viewLeaves(const View& view);

    // Whether a tool tip is open and its view still lives.
    bool isOpen() const noexcept { return m_isOpen && m_view; }

    // Whether it is this object's, for this view: others share the tool tip.
    bool isOpenFor(const View& view, const Anchored* object) const noexcept;

    // What is shown at present, for pictures of a window.
    struct Shown {
        std::string text;                       // UTF-8
        Rect around;                            // in the coordinates of the window
        ToolTipSide side = ToolTipSide::Above;  // of `around` that was asked for
    };
    // Nothing when no tool tip is open in this window.
    std::optional<Shown> shownIn(const Window& window) const;

private:
    void place(View& view, const Rect& around);

    WeakPointer<View> m_view;
    WeakPointer<Anchored> m_object;
    std::int32_t m_tag = 0;
    Shown m_shown;
    bool m_isOpen = false;
};

}  // namespace veltra
