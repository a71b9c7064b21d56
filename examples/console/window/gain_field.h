// SPDX-License-Identifier: MIT
// A gain in decibels as a number among other settings: dragged up and down, turned with the wheel,
// stepped with the arrows, or typed after a double click.
#pragma once

#include "veltra/ui/control.h"

#include <string>

namespace veltra::console {

// Sends its action when the user has changed the value. Thread: main.
class GainField final : public Control {
public:
    GainField() = default;

    // Kept within kSilentDecibels and kMost.
    double decibels() const noexcept { return m_decibels; }
    void setDecibels(double decibels);
    static constexpr double kMost = 10.0;

    bool isEditing() const noexcept { return m_isEditing; }

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    void mouseUp(const Event& /*event*/) override {}
    void scrollWheel(const Event& event) override;
    void mouseEntered(const Event& event) override;
    void mouseExited(const Event& event) override;
    bool acceptsFirstResponder() const override { return true; }
    bool resignFirstResponder() override;
    bool wantsKey(const Event& event) const override;
    void keyDown(const Event& event) override;
    Cursor cursorAt(Point /*point*/) const override {
        return m_isEditing ? Cursor::IBeam : Cursor::ResizeUpDown;
    }

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    std::string accessibilityValueText() const override;
    bool setAccessibilityNumber(double value) override;

private:
    void startEditing();
    void stopEditing(bool commits);
    void change(double decibels);
    bool typeKey(char16_t key);

    double m_decibels = 0.0;
    float m_dragRest = 0.0F;  // of a step
    bool m_isEditing = false;
    bool m_isHovered = false;
    std::string m_typed;
};

}  // namespace veltra::console
