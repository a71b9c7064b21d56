// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_panel.h"

namespace veltra {

DfKeyboardPanel::DfKeyboardPanel(const Rect& contentRect, const WindowStyle& style)
    : ToolbarWindow<Panel>(contentRect, style) {}

DfKeyboardPanel::~DfKeyboardPanel() = default;

void DfKeyboardPanel::performMiniaturize() {
    if (isVisible()) ToolbarWindow<Panel>::performMiniaturize();
}

}  // namespace veltra
