// SPDX-License-Identifier: MIT
// The slider of a card: upright a fader of decibels, else a pan control. Keys across it lead to the
// next strip.
#pragma once

#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/slider.h"

namespace veltra::console {

// Thread: main.
class StripSlider final : public Slider {
public:
    enum class Kind : std::uint8_t { Fader, Pan };
    explicit StripSlider(Kind kind);

    // Decibels of a fader, -1 to 1 of a pan control. Setting sends nothing.
    double level() const;
    void setLevel(double level);
    // Marks and labels beside a fader.
    void setHasScale(bool hasScale);

    bool wantsKey(const Event& event) const override;
    void keyDown(const Event& event) override;

private:
    QkSliderCell& ownCell() const noexcept { return static_cast<QkSliderCell&>(sliderCell()); }
    void setPlainValue(double value);

    const Kind m_kind;
    bool m_hasScale = true;
};

}  // namespace veltra::console
