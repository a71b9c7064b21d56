// SPDX-License-Identifier: MIT
// The cell of a plain slider: a value between two limits, with or without tick marks.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/action_cell.h"

namespace veltra {

class VELTRA_EXPORT SliderCell : public ActionCell {
public:
    SliderCell();

    double minValue() const noexcept { return m_minValue; }
    double maxValue() const noexcept { return m_maxValue; }
    // The value is cut to the new limits; a maximum below the minimum counts as the minimum.
    void setMinValue(double value);
    void setMaxValue(double value);
    // Cut to the limits, and with allowsTickMarkValuesOnly() moved to the closest tick mark. Not a
    // number counts as the minimum.
    void setDoubleValue(double value) override;
    void setIntValue(std::int32_t value) override { setDoubleValue(value); }
    void setStringValue(std::string_view value) override;

    std::int32_t numberOfTickMarks() const noexcept { return m_numberOfTickMarks; }
    void setNumberOfTickMarks(std::int32_t count);  // below 0 counts as 0
    bool allowsTickMarkValuesOnly() const noexcept { return m_allowsTickMarkValuesOnly; }
    void setAllowsTickMarkValuesOnly(bool only);
    // Evenly spaced from the minimum to the maximum; a single one lies at the minimum. An index
    // outside of the marks answers the mark at that end.
    virtual double tickMarkValueAtIndex(std::int32_t index) const;
    // The value itself without tick marks; of two equally close the lower one.
    double closestTickMarkValueToValue(double value) const;

    // Set, or longer than wide in its frame of the last drawing.
    virtual bool isVertical() const;
    void setVertical(bool isVertical) { m_isVertical = isVertical; }

    // What Increment and Decrement change; 0: a tenth of the range, or one tick mark.
    double altIncrementValue() const noexcept { return m_altIncrementValue; }
    void setAltIncrementValue(double value) noexcept { m_altIncrementValue = value; }

    // Both in the coordinates of the view, of the frame drawn last.
    virtual Rect trackRect() const;
    virtual Rect knobRectFlipped(bool isFlipped) const;
    virtual float knobThickness() const;

    void drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) override;
    bool startTracking(Point point, View& view) override;
    bool continueTracking(Point last, Point current, View& view) override;
    bool prefersTrackingUntilMouseUp() const override { return true; }

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }
    AccessibilityOrientation accessibilityOrientation() const override;
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    bool setAccessibilityNumber(double value) override;
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;

private:
    double step() const;
    void setValueAt(Point point, View& view);

    double m_minValue = 0.0;
    double m_maxValue = 1.0;
    double m_altIncrementValue = 0.0;
    std::int32_t m_numberOfTickMarks = 0;
    bool m_allowsTickMarkValuesOnly = false;
    std::optional<bool> m_isVertical;
    Point m_grabbed;  // where in the knob, from its centre
};

}  // namespace veltra
