// SPDX-License-Identifier: MIT
// How the keys of an on-screen keyboard look.
#pragma once

#include "veltra/controls/keyboard/keyboard_geometry.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

#include <cstdint>
#include <string>

namespace veltra::detail {

struct KeyPicture {
    bool isPressed = false;
    bool isHovered = false;
    bool isEnabled = true;
    bool isMiddleC = false;
    std::string label{};
};

class KeyboardDrawing {
public:
    // The canvas must be flipped, and live as long as this.
    KeyboardDrawing(Canvas& canvas, Appearance appearance) noexcept;

    // `bounds` is what the keys lie on.
    void drawBed(const Rect& bounds) const;
    void drawWhiteKey(const Rect& key, const KeyPicture& picture) const;
    void drawBlackKey(const Rect& key, const KeyPicture& picture) const;
    // Over all keys: the shadow of what they disappear under.
    void drawEdge(const Rect& bounds) const;

private:
    Color dimmed(Color color, const KeyPicture& picture) const noexcept;

    Canvas& m_canvas;
    const Theme& m_theme;
    const bool m_isDark;
};

}  // namespace veltra::detail
