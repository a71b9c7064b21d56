// SPDX-License-Identifier: MIT
// All strips as small meters, with a frame around those in sight: the scroll bar of strips that do
// not fit, on which an overload out of sight is seen.
#pragma once

#include "veltra/ui/control.h"

#include <vector>

namespace veltra::console {

// Sends its action when the user wants others in sight: see first(). Thread: main.
class StripBridge final : public Control {
public:
    static constexpr float kHeight = 36.0F;

    struct Column {
        int level = 0;  // 0 to kSteps
        bool hasClipped = false;
        friend bool operator==(const Column&, const Column&) = default;
    };
    static constexpr int kSteps = 44;

    StripBridge() = default;

    void setColumns(std::vector<Column> columns);
    void setSight(int first, int count);
    // That the user wants to be the leftmost.
    int first() const noexcept { return m_wanted; }
    // Its frame is under the pointer that moves it.
    bool isDragged() const noexcept { return m_isDragged; }

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    void mouseUp(const Event& /*event*/) override { m_isDragged = false; }
    bool acceptsFirstResponder() const override { return true; }
    bool wantsKey(const Event& event) const override;
    void keyDown(const Event& event) override;
    std::optional<FocusShape> focusShape() const override;

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }
    std::string accessibilityName() const override { return "Strips in sight"; }
    AccessibilityOrientation accessibilityOrientation() const override {
        return AccessibilityOrientation::Horizontal;
    }
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    std::string accessibilityValueText() const override;
    bool setAccessibilityNumber(double value) override;

private:
    int count() const noexcept { return static_cast<int>(m_columns.size()); }
    float pitch() const;
    Rect sightRect() const;
    void want(int first);

    std::vector<Column> m_columns;
    int m_first = 0;
    int m_inSight = 0;
    int m_wanted = 0;
    bool m_isDragged = false;
    float m_grab = 0.0F;  // from the frame's left side to the pointer, in columns
};

}  // namespace veltra::console
