// SPDX-License-Identifier: MIT
// The steps of a rhythm as a row of switches. A press flips a step, and a drag paints the others
// alike; the arrow keys choose a step, and Space flips it.
#pragma once

#include "step_pattern.h"
#include "veltra/ui/control.h"

#include <memory>
#include <optional>
#include <vector>

class StepRow final : public veltra::Control {
public:
    explicit StepRow(const veltra::Rect& frame);
    ~StepRow() override;

    const StepPattern& pattern() const { return m_pattern; }
    void setPattern(const StepPattern& pattern);
    int cursor() const { return m_cursor; }  // the step that the keys flip
    veltra::Rect rectOfStep(int step) const;

    void drawRect(veltra::Canvas& canvas, const veltra::Rect& dirty) override;

    void mouseDown(const veltra::Event& event) override;
    void mouseDragged(const veltra::Event& event) override;
    void mouseUp(const veltra::Event& event) override;

    bool acceptsFirstResponder() const override { return isEnabled(); }
    bool wantsKey(const veltra::Event& event) const override;
    void keyDown(const veltra::Event& event) override;
    std::optional<FocusShape> focusShape() const override;

    veltra::AccessibilityRole accessibilityRole() const override;
    std::vector<veltra::AccessibilityElement*> accessibilityChildren() const override;

private:
    class Step;

    int stepAt(veltra::Point point) const;
    void flip(int step, bool isOn);
    void moveCursor(int step);

    StepPattern m_pattern;
    int m_cursor = 0;
    std::optional<bool> m_painting;  // what a drag paints
    std::vector<std::unique_ptr<Step>> m_steps;
};
