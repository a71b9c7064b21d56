// SPDX-License-Identifier: MIT
// The cell of a slider whose tick marks lie on a curve: where the knob stops only at marks, the
// stops are close together at one end, while the client works with a value that is linear in the
// stops. The direction of the values can be turned round.
//
//   auto cell = std::make_unique<QkLogSliderCell>();
//   cell->setMaxValue(100.0);
//   cell->setNumberOfTickMarks(5);
//   cell->setAllowsTickMarkValuesOnly(true);
//   cell->setLogTickMarks(1);
//   cell->setLogSliderValue(50.0);   // the third stop: doubleValue() is 19.375
//
// doubleValue() is where the knob stands; sliderValue() is the same as the client counts it, and
// logSliderValue() counts stops.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/slider_cell.h"

#include <cstdint>

namespace veltra {

class VELTRA_EXPORT QkLogSliderCell : public SliderCell {
public:
    // A plain slider's cell, without a curve and not inverted.
    using SliderCell::SliderCell;

    // 0, as at first: marks at equal distances. 2: close together at the maximum. Any other number
    // (1 is the usual one): close together at the minimum. The value is moved to the closest mark.
    std::int32_t logTickMarks() const noexcept { return m_logTickMarks; }
    void setLogTickMarks(std::int32_t mode);
    // Whether the client's value runs from the maximum to the minimum. At first not. The knob stays
    // where it is.
    bool invertValues() const noexcept { return m_invertValues; }
    void setInvertValues(bool invert);

    double tickMarkValueAtIndex(std::int32_t index) const override;
    // The first mark with the value of the mark that is closest to `value`; 0 when there is none.
    std::int32_t closestIndexOfValue(double value) const;

    // Linear in the stops when only marks are allowed, else sliderValue(). With fewer than two
    // marks it is doubleValue(), never inverted. A value that is set is kept within the limits and
    // selects the nearest stop.
    double logSliderValue() const;
    void setLogSliderValue(double value);
    // The same as an integer, halves rounded away from zero.
    std::int32_t logSliderIntValue() const;
    void setLogSliderIntValue(std::int32_t value) { setLogSliderValue(value); }

    // doubleValue(), counted from the other end when values are inverted.
    double sliderValue() const;
    void setSliderValue(double value);
    // Without the fraction. Setting the integer that it is already changes nothing.
    std::int32_t sliderIntValue() const;
    void setSliderIntValue(std::int32_t value);

    // Both settings, too.
    void encodeWithCoder(KeyedCoder& coder) const override;
    void decodeWithCoder(const KeyedCoder& coder) override;

    // A screen reader is told logSliderValue(); Increment makes it larger.
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    bool setAccessibilityNumber(double value) override;
    bool performAccessibilityAction(AccessibilityAction action) override;

protected:
    // Whether values go by stops: only marks are allowed, and there are two or more of them.
    bool stopsOnly() const { return allowsTickMarkValuesOnly() && numberOfTickMarks() > 1; }

private:
    std::int32_t m_logTickMarks = 0;
    bool m_invertValues = false;
};

}  // namespace veltra
