// SPDX-License-Identifier: MIT
// A window for tools: it stays above the application's windows and never becomes the main window.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/window.h"

namespace veltra {

class Panel : public Window {
public:
    // A panel of the system, not on screen yet, with its content at `contentRect` in screen
    // coordinates. The style's isPanel is set in any case.
    explicit Panel(const Rect& contentRect, WindowStyle style = {})
        : Window(contentRect, asPanel(style)) {}

    // What its minimise button does.
    virtual void performMiniaturize() { miniaturize(); }

private:
    static WindowStyle asPanel(WindowStyle style) noexcept {
        style.isPanel = true;
        return style;
    }
};

}  // namespace veltra
