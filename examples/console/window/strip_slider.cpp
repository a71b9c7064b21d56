// SPDX-License-Identifier: MIT
#include "strip_slider.h"

#include "../console_state.h"
#include "veltra/controls/sliders/fader_scale.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kHaloRoom = 4.0F;  // beside the track, for the cap's halo

char16_t keyOf(const Event& event) {
    return event.charactersIgnoringModifiers.empty() ? u'\0'
                                                     : event.charactersIgnoringModifiers.front();
}

bool isSideways(char16_t key) {
    return key == kLeftArrowCharacter || key == kRightArrowCharacter;
}

}  // namespace

StripSlider::StripSlider(Kind kind) : m_kind(kind) {
    QkSliderCell& cell = QkSliderCell::replacedCellInSlider(*this);
    if (kind == Kind::Fader) {
        setUpFader(cell);
        cell.setAccessibilityName("fader");
    } else {
        setUpPan(cell);
        cell.setMinSideSliderInset(kHaloRoom);
        cell.setMaxSideSliderInset(kHaloRoom);
    }
}

double StripSlider::level() const {
    if (m_kind == Kind::Pan) return sliderCell().doubleValue();
    return std::max(FaderScale::decibelsForTravel(sliderCell().doubleValue()), kSilentDecibels);
}

// No mark captures what the console has set.
void StripSlider::setPlainValue(double value) {
    const double delta = ownCell().magneticMarkDelta();
    ownCell().setMagneticMarkDelta(0.0);
    ownCell().setDoubleValue(value);
    ownCell().setMagneticMarkDelta(delta);
}

void StripSlider::setLevel(double level) {
    constexpr double kSame = 1e-3;
    if (std::fabs(level - this->level()) < kSame) return;
    setPlainValue(m_kind == Kind::Pan ? level : FaderScale::travelForDecibels(level));
    setNeedsDisplay();
}

void StripSlider::setHasScale(bool hasScale) {
    if (hasScale == m_hasScale || m_kind == Kind::Pan) return;
    m_hasScale = hasScale;
    const double value = sliderCell().doubleValue();
    setUpFader(ownCell(), hasScale);
    setPlainValue(value);
    frameDidChange();
    setNeedsDisplay();
}

bool StripSlider::wantsKey(const Event& event) const {
    return !isSideways(event.plainKey()) && Slider::wantsKey(event);
}

// Sideways with Alternate is the slider's own movement, without it leads on.
void StripSlider::keyDown(const Event& event) {
    if (isSideways(event.plainKey())) {
        if (Responder* const next = nextResponder()) next->keyDown(event);
        return;
    }
    if (isSideways(keyOf(event)) && event.modifierFlags.contains(kAlternateKeyMask)) {
        Event plain = event;
        plain.modifierFlags &= ~ModifierFlags(kAlternateKeyMask);
        return Slider::keyDown(plain);
    }
    Slider::keyDown(event);
}

}  // namespace veltra::console
