// SPDX-License-Identifier: MIT
// The cell of a plain slider: a value between two limits, with or without tick marks.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/action_cell.h"

namespace veltra {

class VELTRA_EXPORT SliderCell : public ActionCell {
public:
    // From 0 to 1 at 0, without tick marks.
    SliderCell();

    // The limits of the value; the maximum is never below the minimum. At first 0 and 1.
    double minValue() const noexcept { return m_minValue; }
    double maxValue() const noexcept { return m_maxValue; }
    // The value is kept within the new limits, without setDoubleValue(). A maximum below the
    // minimum counts as the minimum. NaN is passed over. Limits are kept within half of what a
    // double can hold, so that their distance is always a number.
    void setMinValue(double value);
    void setMaxValue(double value);
    // Kept within the limits, and with allowsTickMarkValuesOnly() moved to the closest tick mark.
    // NaN counts as the minimum.
    void setDoubleValue(double value) override;
    void setIntValue(std::int32_t value) override { setDoubleValue(value); }
    void setStringValue(std::string_view value) override;

    // How many tick marks there are, 0 at first.
    std::int32_t numberOfTickMarks() const noexcept { return m_numberOfTickMarks; }
    // Kept within 0 and kMaximumTickMarks.
    static constexpr std::int32_t kMaximumTickMarks = 65536;
    void setNumberOfTickMarks(std::int32_t count);
    bool allowsTickMarkValuesOnly() const noexcept { return m_allowsTickMarkValuesOnly; }
    void setAllowsTickMarkValuesOnly(bool only);
    // Evenly spaced from the minimum to the maximum; a single one lies at the minimum. An index
    // outside of the marks returns the mark at that end.
    virtual double tickMarkValueAtIndex(std::int32_t index) const;
    // The value itself without tick marks; of two equally close the lower one.
    double closestTickMarkValueToValue(double value) const;

    // As set with setVertical(), otherwise whether the frame drawn last is higher than wide.
    virtual bool isVertical() const;
    void setVertical(std::optional<bool> isVertical) {
        m_isVertical = isVertical;
        setNeedsDisplay();
    }
    // What was set; nothing when the frame decides.
    std::optional<bool> explicitlyVertical() const noexcept { return m_isVertical; }

    // By how much the arrow keys and a screen reader's Increment and Decrement change the value.
    // 0: by one tick mark, or a tenth of the range.
    double altIncrementValue() const noexcept { return m_altIncrementValue; }
    void setAltIncrementValue(double value) noexcept { m_altIncrementValue = value; }

    // Both in the coordinates of the view, of the frame drawn last.
    virtual Rect trackRect() const;
    virtual Rect knobRectFlipped(bool isFlipped) const;
    virtual float knobThickness() const;
    // Of the knob's corners: what a focus ring follows.
    virtual float knobRadius() const { return knobThickness() * 0.5F; }
    // Empty for an index outside of the marks.
    virtual Rect rectOfTickMarkAtIndex(std::int32_t index, bool isFlipped) const;

    // The interior: the bar, the tick marks, then the knob.
    virtual void drawBar(Canvas& canvas, const Rect& track, View& view);
    virtual void drawTickMarks(Canvas& canvas, View& view);
    virtual void drawKnob(Canvas& canvas, const Rect& knob, View& view);
    void drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) override;
    bool startTracking(Point point, View& view) override;
    bool continueTracking(Point last, Point current, View& view) override;
    // A drag without a release, as when the pointer is lost, sends the action of the release.
    void stopTracking(Point last, Point stop, View& view, bool mouseIsUp) override;
    bool prefersTrackingUntilMouseUp() const override { return true; }

    // The wheel moves the value by a hundredth of the range for each notch, or by one step
    // where there are no values between tick marks; then the action is sent.
    void scrollWheel(const Event& event) override;
    // The pointer has moved over the view with no button held; nothing: it has left the view.
    virtual void pointerMoved(std::optional<Point> /*point*/) {}
    // Arrows move by one step, Page keys by ten, Home and End to the ends; then the action is sent
    // if that has changed the value. Returns false for any other key.
    virtual bool performKey(const Event& event);
    bool wantsKey(const Event& event) const override;

    // The limits, the tick marks, the orientation and the step, too.
    void encodeWithCoder(KeyedCoder& coder) const override;
    void decodeWithCoder(const KeyedCoder& coder) override;

    // A slider whose orientation is that on screen, and whose step is that of the arrow keys.
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }
    AccessibilityOrientation accessibilityOrientation() const override;
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    bool setAccessibilityNumber(double value) override;
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;

protected:
    // By how much a key or a screen reader changes the value.
    virtual double step() const;
    // The value that lies so far above the present one. Where there are no values between the tick
    // marks it is the value of a mark, and any way leads at least to the next one. NaN leads
    // nowhere.
    double valueAfter(double way) const;
    // How many steps a key leads; Home and End lead to the ends, with any number of steps. Nothing
    // for a key that is none of the slider's.
    static std::optional<double> stepsOfKey(char16_t key);

private:
    double limited(double value) const;
    void keepInLimits();
    void changeAndSend(double value);
    void setValueAt(Point point, View& view);

    double m_minValue = 0.0;
    double m_maxValue = 1.0;
    double m_altIncrementValue = 0.0;
    std::int32_t m_numberOfTickMarks = 0;
    bool m_allowsTickMarkValuesOnly = false;
    std::optional<bool> m_isVertical;
    Point m_grabbed;         // where in the knob, from its centre
    double m_wheeled = 0.0;  // notches that have not made a whole step yet
};

}  // namespace veltra
