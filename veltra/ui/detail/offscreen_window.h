// SPDX-License-Identifier: MIT
// The place of a window that appears nowhere.
#pragma once

#include "veltra/ui/port.h"

namespace veltra::detail {

class OffscreenWindow final : public WindowPort {
public:
    explicit OffscreenWindow(float scale = 1.0F) noexcept : m_scale(scale > 0.0F ? scale : 1.0F) {}

    void invalidate(const Rect& /*surfaceRect*/) override {}
    void displayIfNeeded() override {}
    bool passKeyboard(bool /*forward*/) override { return false; }
    void setCursor(Cursor /*cursor*/) override {}
    float scale() const override { return m_scale; }

private:
    const float m_scale;
};

}  // namespace veltra::detail
