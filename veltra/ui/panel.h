// SPDX-License-Identifier: MIT
// A window for tools: it stays above the application's windows and never becomes the main window.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/window.h"

namespace veltra {

class Panel : public Window {
public:
    explicit Panel(const Rect& contentRect, WindowStyle style = {})
        : Window(contentRect, asPanel(style)) {}

    virtual void performMiniaturize() { miniaturize(); }

private:
    static WindowStyle asPanel(WindowStyle style) noexcept {
        style.isPanel = true;
        return style;
    }
};

}  // namespace veltra
