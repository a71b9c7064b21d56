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
#include <string>

namespace veltra {

class View;

// An object that supplies the text of a tool tip. It derives from Anchored, too.
class VELTRA_EXPORT ToolTipSource {
public:
    virtual ~ToolTipSource();
    // An empty answer shows nothing.
    virtual std::string stringForTag(std::int32_t tag) = 0;
};

// The text of `object` if it is a ToolTipSource, else none.
VELTRA_EXPORT std::string toolTipText(Anchored* object, std::int32_t tag);

// The one tool tip of the process that is moved by hand.
class VELTRA_EXPORT ToolTipWindow {
public:
    static ToolTipWindow& shared();

    // Shows the text that `object` (not retained, asked again at each update) has for `tag`, so
    // that it does not cover `position`, a point of `view`. Another one that is open is closed.
    // Does nothing when the view is in no window or there is no text.
    void showToolTipWindowForView(View& view, Anchored* object, std::int32_t tag, Point position);

    // Moves the open tool tip and asks for its text again. Does nothing when none is open for
    // `view`; closes it when there is no text any more.
    void updateToolTipPosition(Point position, View& view);

    void closeToolTipWindow();

    // The view leaves its window or is hidden: closes the tool tip of it, or of a view inside it.
    void viewLeaves(const View& view);

    bool isOpen() const noexcept { return m_isOpen && m_view; }

private:
    bool place(View& view, Point position);

    WeakPointer<View> m_view;
    WeakPointer<Anchored> m_object;
    std::int32_t m_tag = 0;
    bool m_isOpen = false;
};

}  // namespace veltra
