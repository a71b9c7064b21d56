// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/slider_presets.h"

#include "veltra/base/number_text.h"
#include "veltra/controls/sliders/fader_scale.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

constexpr double kTravelOfATenth = 0.002;  // of a decibel, between -20 and 10 dB
constexpr float kRoomOfScale = 16.0F;      // more at the left than at the right

// Alt-clicks go to the default, which holds the cap.
void setUp(QkSliderCell& cell, double minimum, double maximum, double normal, double hold) {
    cell.setMaxValue(std::max(cell.maxValue(), maximum));
    cell.setMinValue(minimum);
    cell.setMaxValue(maximum);
    cell.setNumberOfTickMarks(0);
    cell.setAllowsTickMarkValuesOnly(false);
    cell.setDefaultValue(normal);
    cell.setAltClickSetsDefaultValue(true);
    cell.resetMagneticMarks();
    cell.setMagneticMarkAt(normal);
    cell.setMagneticMarkDelta(hold);
    cell.setMovableToolTip(&cell, 0);
    cell.setDoubleValue(normal);
}

}  // namespace

void setUpFader(QkSliderCell& cell, bool hasScale) {
    cell.setVertical(true);
    cell.setImageIDs(kSliderKnobFader, kSliderTrackSlot);
    cell.setTickMarkYPosition(12.0F, 5.0F);
    cell.setTrackYInset(hasScale ? kRoomOfScale : 0.0F);
    if (hasScale) {
        cell.setMarks(FaderScale::marks(), "dB");
    } else {
        cell.setMarks({{FaderScale::kZeroTravel, SliderMark::Kind::Reference}});
    }
    cell.setFineValueControlStep(kTravelOfATenth);
    cell.setAltIncrementValue(5.0 * kTravelOfATenth);
    cell.setFormatter(
        [](double travel) { return FaderScale::text(FaderScale::decibelsForTravel(travel)); });
    setUp(cell, 0.0, 1.0, FaderScale::kZeroTravel, 4.0 * kTravelOfATenth);
}

void setUpPan(QkSliderCell& cell) {
    cell.setVertical(false);
    cell.setImageIDs(kSliderKnobPan, kSliderTrackSlot);
    cell.setTickMarkYPosition(5.0F, 3.0F);
    cell.setMarks({{0.0, SliderMark::Kind::Centre}, {-1.0}, {1.0}});
    cell.setFineValueControlStep(0.01);
    cell.setAltIncrementValue(0.01);
    cell.setFormatter(panText);
    setUp(cell, -1.0, 1.0, 0.0, 0.03);
}

std::string panText(double position) {
    const double percent = std::round(100.0 * std::abs(position));
    if (!(percent > 0.0)) return "C";
    return (position < 0.0 ? "L " : "R ") + std::string(NumberText::fixed(percent, 0).view());
}

}  // namespace veltra
