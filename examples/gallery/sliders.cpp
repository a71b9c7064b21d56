// SPDX-License-Identifier: MIT
#include "sheets.h"
#include "user.h"
#include "veltra/controls/sliders/fader_scale.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/theme.h"

namespace veltra::gallery {

namespace {

using SetUp = std::function<void(QkSliderCell&)>;

// A slider in a view that leaves room for its tip.
class Roomy final : public View {
public:
    Roomy(const Rect& frame, std::unique_ptr<Slider> slider) : View(frame) {
        addSubview(std::move(slider));
    }
};

// The content of a specimen's window holds its Roomy view, which holds the slider.
Slider& sliderIn(Window& window) {
    const View& roomy = *window.contentView()->subviews().front();
    return static_cast<Slider&>(*roomy.subviews().front());
}

QkSliderCell& cellIn(Window& window) {
    return static_cast<QkSliderCell&>(sliderIn(window).sliderCell());
}

Point knobIn(Window& window) {
    return sliderIn(window).convertPointToView(cellIn(window).knobRectFlipped(false).center(),
                                               nullptr);
}

void hoverKnob(Window& window) {
    hover(window, knobIn(window));
}

void pressKnob(Window& window) {
    cellIn(window).setMovableToolTip(nullptr, 0);  // the state without its tip
    press(window, knobIn(window));
}

// By so many points from where the knob is.
std::function<void(Window&)> dragKnob(Point by) {
    return [by](Window& window) {
        const Point knob = knobIn(window);
        press(window, knob);
        drag(window, knob + by);
    };
}

Specimen slider(std::string caption, Size size, const SetUp& setUp,
                std::function<void(Window&)> drive = {}, Size room = {}) {
    const Size whole{size.width + room.width, size.height + room.height};
    return {std::move(caption), whole,
            [=] {
                auto made = std::make_unique<Slider>(Rect{{0.0F, room.height / 2}, size});
                setUp(QkSliderCell::replacedCellInSlider(*made));
                return std::make_unique<Roomy>(Rect{{}, whole}, std::move(made));
            },
            std::move(drive)};
}

SetUp fader(double decibels, bool isEnabled = true) {
    return [=](QkSliderCell& cell) {
        setUpFader(cell);
        cell.setDoubleValue(FaderScale::travelForDecibels(decibels));
        cell.setEnabled(isEnabled);
    };
}

SetUp pan(double position, bool isEnabled = true) {
    return [=](QkSliderCell& cell) {
        setUpPan(cell);
        cell.setDoubleValue(position);
        cell.setEnabled(isEnabled);
    };
}

// The plain cell, which hosts give marks and a look of their own.
Specimen plain(std::string caption, Size size, const std::function<void(Slider&)>& set,
               const std::function<void(Window&)>& drive = {}) {
    return {std::move(caption), size,
            [=] {
                auto made = std::make_unique<Slider>(Rect{{}, size});
                made->sliderCell().setMaxValue(100.0);
                made->setDoubleValue(30.0);
                if (set) set(*made);
                return made;
            },
            drive};
}

// Marks on a curve, at which the knob stops.
SetUp stops(std::int32_t curve, double value) {
    return [=](QkSliderCell& cell) {
        cell.setMaxValue(100.0);
        cell.setNumberOfTickMarks(9);
        cell.setAllowsTickMarkValuesOnly(true);
        cell.setLogTickMarks(curve);
        cell.setMinSideInset(24.0F);
        cell.setMaxSideInset(24.0F);
        cell.setEndLabels("0", "100");
        cell.setLabelClickSetsMinMaxValue(true);
        cell.setLogSliderValue(value);
    };
}

// In a view whose y axis points down, where it looks the same.
class Downward final : public Slider {
public:
    using Slider::Slider;
    bool isFlipped() const override { return true; }
};

// Every length set, names at both ends and marks of the host's own.
template <typename S>
Specimen labelled(std::string caption, Size size, bool isEnabled = true) {
    return {std::move(caption),
            size,
            [=] {
                auto made = std::make_unique<S>(Rect{{}, size});
                QkSliderCell& cell = QkSliderCell::replacedCellInSlider(*made);
                const bool isUpright = size.height > size.width;
                cell.setMaxValue(100.0);
                cell.setEndLabels("min", "max");
                cell.setMinSideInset(isUpright ? 14.0F : 28.0F);
                cell.setMaxSideInset(isUpright ? 18.0F : 34.0F);
                cell.setMinSideSliderInset(2.0F);
                cell.setMaxSideSliderInset(6.0F);
                cell.setTrackYInset(isUpright ? 18.0F : 4.0F);
                cell.setLabelsYInset(isUpright ? 18.0F : 4.0F);
                cell.setTickMarkYPosition(10.0F, 4.0F);
                cell.setTickMarkDisabledColor(theme(Appearance::Dark).alert);
                cell.setKnobRectInset({1.0F, 2.0F});
                if (isEnabled) {
                    using enum SliderMark::Kind;
                    cell.setMarks({{0.0}, {30.0, Minor}, {50.0, Reference, "mid"}, {100.0}}, "%");
                } else {
                    cell.setNumberOfTickMarks(5);
                }
                cell.setDefaultValue(50.0);
                cell.setDoubleValue(80.0);
                cell.setEnabled(isEnabled);
                return made;
            },
            {}};
}

}  // namespace

Sheet sliderSheet() {
    const Size tall{64.0F, 186.0F};
    const Size flat{84.0F, 28.0F};
    const Size wide{200.0F, 32.0F};
    const Size lying{100.0F, 24.0F};
    const Size upright{24.0F, 100.0F};
    const Size tallLabels{56.0F, 150.0F};
    const Size wideLabels{170.0F, 72.0F};
    const auto marks = [](Slider& made) { made.sliderCell().setNumberOfTickMarks(5); };
    const auto disabled = [](Slider& made) { made.setEnabled(false); };
    return {
        "sliders",
        "Faders, pan controls, sliders",
        {{slider("at rest", tall, fader(0.0)), slider("hover", tall, fader(-6.0), hoverKnob),
          slider("pressed", tall, fader(-6.0), pressKnob),
          slider("dragging", tall, fader(0.0), dragKnob({0.0F, -36.0F}), {64.0F, 0.0F}),
          slider("focused", tall, fader(3.0), focus),
          slider("disabled", tall, fader(-20.0, false))},
         {slider("at rest", flat, pan(0.0)), slider("hover", flat, pan(-0.4), hoverKnob),
          slider("pressed", flat, pan(-0.4), pressKnob),
          slider("dragging", flat, pan(0.0), dragKnob({11.0F, 0.0F}), {0.0F, 64.0F}),
          slider("focused", flat, pan(0.7), focus), slider("disabled", flat, pan(0.3, false))},
         {slider("even stops", wide, stops(0, 50.0)), slider("dense below", wide, stops(1, 50.0)),
          slider("dense above", wide, stops(2, 50.0), focus)},
         {plain("plain", lying, {}), plain("marks", lying, marks),
          plain("focused", lying, {}, focus), plain("disabled", lying, disabled),
          plain("upright", upright, {}), plain("marks", upright, marks)},
         {labelled<Slider>("labels", tallLabels), labelled<Downward>("y downward", tallLabels),
          labelled<Slider>("labels", wideLabels), labelled<Downward>("y downward", wideLabels),
          labelled<Slider>("disabled", wideLabels, false)}}};
}

}  // namespace veltra::gallery
