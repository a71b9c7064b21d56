// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_window.h"

namespace veltra {

DfKeyboardWindow::DfKeyboardWindow(const Rect& contentRect, const WindowStyle& style)
    : ToolbarWindow<Window>(contentRect, style) {}

DfKeyboardWindow::~DfKeyboardWindow() = default;

}  // namespace veltra
