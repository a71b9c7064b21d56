// SPDX-License-Identifier: MIT
#include "veltra/ui/slider.h"

#include "veltra/ui/keyed_coder.h"

#include <utility>

namespace veltra {

Slider::Slider(const Rect& frame, std::unique_ptr<SliderCell> cell)
    : Control(frame, cell ? std::move(cell) : std::make_unique<SliderCell>()) {}

void Slider::replaceCell(std::unique_ptr<SliderCell> cell) {
    if (!cell) return;
    KeyedCoder properties;
    sliderCell().encodeWithCoder(properties);
    cell->decodeWithCoder(properties);
    cell->sendActionOn(sliderCell().sendActionOn({}));  // asked the way that subclasses override
    cell->targetAction() = sliderCell().targetAction();
    setCell(std::move(cell));
}

void Slider::keyDown(const Event& event) {
    const WeakPointer<Slider> self(this);
    if (!sliderCell().performKey(event) && self) Control::keyDown(event);
}

void Slider::scrollWheel(const Event& event) {
    if (event.scrollPhase == ScrollPhase::Began) m_isGestureMine = isEnabled();
    const bool isMine = event.scrollPhase == ScrollPhase::None || m_isGestureMine;
    if (isMine && isEnabled()) return sliderCell().scrollWheel(event);
    if (Responder* const next = nextResponder()) next->scrollWheel(event);
}

void Slider::mouseMoved(const Event& event) {
    sliderCell().pointerMoved(locationOf(event));
    Control::mouseMoved(event);
}

void Slider::mouseExited(const Event& /*event*/) {
    sliderCell().pointerMoved(std::nullopt);
}

std::optional<View::FocusShape> Slider::focusShape() const {
    return FocusShape{sliderCell().knobRectFlipped(isFlipped()), sliderCell().knobRadius()};
}

}  // namespace veltra
