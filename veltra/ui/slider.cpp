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
    cell->sendActionOn(sliderCell().sendActionMask());
    cell->targetAction() = sliderCell().targetAction();
    setCell(std::move(cell));
}

void Slider::keyDown(const Event& event) {
    const WeakPointer<Slider> self(this);
    if (!sliderCell().performKey(event) && self) Control::keyDown(event);
}

}  // namespace veltra
