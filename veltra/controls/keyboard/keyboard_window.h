// SPDX-License-Identifier: MIT
// A window for an on-screen keyboard, with a strip for tools that can be shown and hidden. Whether
// it goes on working beside a modal window, setWorksWhenModal() says.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/keyboard/toolbar_window.h"
#include "veltra/export.h"

namespace veltra {

class VELTRA_EXPORT DfKeyboardWindow : public ToolbarWindow<Window> {
public:
    // The content without the strip; the strip is hidden.
    explicit DfKeyboardWindow(const Rect& contentRect, const WindowStyle& style = {});
    ~DfKeyboardWindow() override;
};

}  // namespace veltra
