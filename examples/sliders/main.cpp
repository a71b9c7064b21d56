// SPDX-License-Identifier: MIT
// A volume fader and a list of ratios, driven without a display: what a mixer does with them.
#include "veltra/controls/sliders/fader_scale.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/platform/notification_center.h"

#include <cstdio>

namespace {

struct Mixer final : veltra::Anchored {
    void volumeChanged(veltra::Slider& fader) {
        gain = veltra::FaderScale::gainForTravel(fader.doubleValue());
    }
    double gain = 1.0;
};

void gestureBegins(void* count, const veltra::VLString* /*name*/, const void* /*cell*/) {
    ++*static_cast<int*>(count);
}

}  // namespace

int main() {
    Mixer mixer;
    veltra::Slider fader({{8, 8}, {64, 236}});
    veltra::QkSliderCell& cell = veltra::QkSliderCell::replacedCellInSlider(fader);
    veltra::setUpFader(cell);
    fader.setTarget(&mixer);
    fader.setAction(veltra::action<&Mixer::volumeChanged>());

    int gestures = 0;  // one step of undo for each
    auto& center = veltra::NotificationCenter::local();
    center.addObserver(&gestures, gestureBegins, veltra::kSliderStartTracking, &cell);

    for (int i = 0; i < 3; ++i)
        cell.performAccessibilityAction(veltra::AccessibilityAction::Decrement);
    std::printf("%s, gain %.3f, %d gesture\n", cell.stringForTag(0).c_str(), mixer.gain, gestures);
    const bool isFaderRight = gestures == 1 && mixer.gain > 0.841 && mixer.gain < 0.842;
    center.removeObserver(&gestures);

    veltra::QkLogSliderCell ratio;  // many stops at small ratios, few at large ones
    ratio.setMaxValue(100.0);
    ratio.setNumberOfTickMarks(5);
    ratio.setAllowsTickMarkValuesOnly(true);
    ratio.setLogTickMarks(1);
    ratio.setLogSliderValue(50.0);  // the stop in the middle
    std::printf("stop %d stands at %.3f\n", ratio.closestIndexOfValue(ratio.doubleValue()),
                ratio.doubleValue());
    return isFaderRight && ratio.closestIndexOfValue(ratio.doubleValue()) == 2 ? 0 : 1;
}
