// SPDX-License-Identifier: MIT
// DfKeyboardWindow as a panel: it stays above the application's windows and never becomes the main
// window.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/keyboard/toolbar_window.h"
#include "veltra/export.h"

namespace veltra {

class VELTRA_EXPORT DfKeyboardPanel : public ToolbarWindow<Panel> {
public:
    // The content without the strip; the strip is hidden.
    explicit DfKeyboardPanel(const Rect& contentRect, const WindowStyle& style = {});
    ~DfKeyboardPanel() override;

    // Nothing while the panel is not on screen: it would appear there as a miniature.
    void performMiniaturize() override;
};

}  // namespace veltra
