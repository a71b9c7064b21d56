// SPDX-License-Identifier: MIT
// A slider: a knob on a bar that the user moves with the pointer, the wheel or the keyboard.
//
//   auto& volume = view.addSubview(std::make_unique<Slider>(Rect{{8, 8}, {160, 20}}));
//   volume.sliderCell().setMaxValue(10.0);
//   volume.setTarget(&mixer);
//   volume.setAction(action<&Mixer::volumeChanged>());
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/control.h"
#include "veltra/ui/slider_cell.h"

#include <memory>

namespace veltra {

class VELTRA_EXPORT Slider : public Control {
public:
    // Without a cell it gets a plain SliderCell.
    explicit Slider(const Rect& frame = {}, std::unique_ptr<SliderCell> cell = nullptr);

    // Its cell, where limits and tick marks are set. It lives until replaceCell() or setCell() puts
    // another in its place, which must be a SliderCell, too.
    SliderCell& sliderCell() const noexcept { return static_cast<SliderCell&>(*cell()); }
    // Puts another cell in the place of the one before, with its value, limits, tick marks,
    // orientation, step, target, action and settings. Null is passed over.
    void replaceCell(std::unique_ptr<SliderCell> cell);

    bool acceptsFirstResponder() const override { return isEnabled(); }
    // Arrows, Page keys, Home and End move the knob: see SliderCell::performKey().
    void keyDown(const Event& event) override;
    // The wheel goes to the cell. A gesture of a pad that began elsewhere goes on there, up the
    // chain of responders: a list that is scrolled does not move the sliders that come under the
    // pointer. So does the wheel of a slider that is disabled.
    void scrollWheel(const Event& event) override;
    void mouseMoved(const Event& event) override;
    void mouseExited(const Event& event) override;
    void windowStateDidChange() override { setNeedsDisplay(); }
    // The knob's.
    std::optional<FocusShape> focusShape() const override;

private:
    bool m_isGestureMine = false;
};

}  // namespace veltra
