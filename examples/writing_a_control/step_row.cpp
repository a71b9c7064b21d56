// SPDX-License-Identifier: MIT
#include "step_row.h"

#include "veltra/ui/drawing.h"

#include <cmath>
#include <string>

using namespace veltra;

namespace {
constexpr float kGap = 6.0F;  // between steps, and once more after each fourth
constexpr float kRadius = 3.0F;
}  // namespace

// A step, as a screen reader sees it.
class StepRow::Step final : public AccessibilityElement {
public:
    Step(StepRow& row, int number) : m_row(row), m_number(number) {}

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::ToggleButton; }
    std::string accessibilityName() const override {
        return "step " + std::to_string(m_number + 1);
    }
    bool accessibilityIsChecked() const override { return m_row.pattern().isOn(m_number); }
    bool accessibilityIsEnabled() const override { return m_row.isEnabled(); }
    bool accessibilityIsFocusable() const override {
        return m_row.isEnabled() && m_number == m_row.cursor();
    }
    bool accessibilityIsFocused() const override {
        return m_row.hasKeyboard() && m_number == m_row.cursor();
    }
    std::vector<AccessibilityAction> accessibilityActions() const override {
        if (!m_row.isEnabled()) return {};
        return {AccessibilityAction::Press};
    }
    bool performAccessibilityAction(AccessibilityAction action) override {
        if (action != AccessibilityAction::Press || !m_row.isEnabled()) return false;
        m_row.flip(m_number, !m_row.pattern().isOn(m_number));
        return true;
    }
    AccessibilityElement* accessibilityParent() const override { return &m_row; }
    View* accessibilityView() const override { return &m_row; }
    Rect accessibilityFrame() const override { return m_row.rectOfStep(m_number); }

private:
    StepRow& m_row;
    const int m_number;
};

StepRow::StepRow(const Rect& frame) : Control(frame) {
    setPattern(StepPattern());
}

StepRow::~StepRow() = default;

void StepRow::setPattern(const StepPattern& pattern) {
    m_pattern = pattern;
    m_cursor = std::min(m_cursor, pattern.count() - 1);
    m_steps.clear();
    for (int step = 0; step < pattern.count(); ++step)
        m_steps.push_back(std::make_unique<Step>(*this, step));
    postAccessibilityNotification(AccessibilityNotification::ChildrenChanged);
    setNeedsDisplay();
}

Rect StepRow::rectOfStep(int step) const {
    const auto count = static_cast<float>(m_pattern.count());
    const float groups = std::ceil(count / 4.0F) - 1.0F;
    const float pitch = (bounds().size.width - groups * kGap + kGap) / count;
    const float x = static_cast<float>(step) * pitch + static_cast<float>(step / 4) * kGap;
    return {{x, 0.0F}, {pitch - kGap, bounds().size.height}};
}

int StepRow::stepAt(Point point) const {
    for (int step = 0; step < m_pattern.count(); ++step) {
        if (mouseInRect(point, rectOfStep(step), isFlipped())) return step;
    }
    return -1;
}

// The one way in which the user changes a step.
void StepRow::flip(int step, bool isOn) {
    if (!m_pattern.set(step, isOn)) return;
    setNeedsDisplayInRect(rectOfStep(step));
    m_steps[static_cast<std::size_t>(step)]->postAccessibilityNotification(
        AccessibilityNotification::StateChanged);
    sendAction();  // may delete the control: nothing comes after it
}

void StepRow::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    for (int step = 0; step < m_pattern.count(); ++step) {
        const Rect rect = rectOfStep(step);
        if (!needsToDrawRect(rect)) continue;
        if (m_pattern.isOn(step)) {
            fillRounded(canvas, rect, kRadius, isEnabled() ? colors.accent : colors.line);
        } else {
            drawPlate(canvas, rect, kRadius, colors.field, isEnabled() ? colors.edge : colors.line);
        }
    }
}

void StepRow::mouseDown(const Event& event) {
    const int step = stepAt(locationOf(event));
    if (!isEnabled() || step < 0) return;
    m_painting = !m_pattern.isOn(step);
    moveCursor(step);
    flip(step, *m_painting);
}

void StepRow::mouseDragged(const Event& event) {
    const int step = stepAt(locationOf(event));
    if (!m_painting || step < 0) return;
    moveCursor(step);
    flip(step, *m_painting);
}

void StepRow::mouseUp(const Event& /*event*/) {
    m_painting.reset();
}

bool StepRow::wantsKey(const Event& event) const {
    const char16_t key = event.plainKey();
    return isEnabled() &&
           (key == kLeftArrowCharacter || key == kRightArrowCharacter || key == u' ');
}

void StepRow::keyDown(const Event& event) {
    if (!wantsKey(event)) return Control::keyDown(event);
    const char16_t key = event.plainKey();
    if (key == u' ') return flip(m_cursor, !m_pattern.isOn(m_cursor));
    const int next = m_cursor + (key == kRightArrowCharacter ? 1 : -1);
    moveCursor(std::clamp(next, 0, m_pattern.count() - 1));
}

void StepRow::moveCursor(int step) {
    if (step == m_cursor) return;
    m_cursor = step;
    setNeedsDisplay();  // the focus ring moves along
    if (!hasKeyboard()) return;
    m_steps[static_cast<std::size_t>(step)]->postAccessibilityNotification(
        AccessibilityNotification::FocusGained);
}

std::optional<View::FocusShape> StepRow::focusShape() const {
    return FocusShape{rectOfStep(m_cursor), kRadius};
}

AccessibilityRole StepRow::accessibilityRole() const {
    return AccessibilityRole::Group;
}

std::vector<AccessibilityElement*> StepRow::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children;
    for (const auto& step : m_steps)
        children.push_back(step.get());
    return children;
}
