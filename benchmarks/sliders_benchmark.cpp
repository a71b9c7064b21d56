// SPDX-License-Identifier: MIT
// A step of a drag, from the event that arrives at the slider to its request to be drawn again,
// beside the same step of a plain slider. The framework's own slider has more to do: magnetic
// marks, fine steps and its own sending of the action.
#include "benchmarks/ratios.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/application.h"
#include "veltra/ui/picture.h"

#include <benchmark/benchmark.h>

namespace {

using namespace veltra;

struct Mixer final : Anchored {
    void changed(Slider& slider) { travel = slider.doubleValue(); }
    double travel = 0.0;
};

void drag(benchmark::State& state, bool isOurs) {
    PictureWindow picture({64, 240}, 1.0F, Appearance::Dark);
    Window& window = picture.window();
    window.setContentView(std::make_unique<Slider>(Rect{{}, {64, 240}}));
    auto& slider = static_cast<Slider&>(*window.contentView());
    if (isOurs) {
        QkSliderCell& cell = QkSliderCell::replacedCellInSlider(slider);
        setUpFader(cell);
        cell.setMovableToolTip(nullptr, 0);
    }
    Mixer mixer;
    slider.setTarget(&mixer);
    slider.setAction(action<&Mixer::changed>());
    window.visibilityDidChange(true);
    Event event;
    event.type = EventType::LeftMouseDown;
    event.locationInWindow = {40, 200};
    event.clickCount = 1;
    event.eventNumber = 1;
    event.window = &window;
    Application::current().postEvent(event);
    event.type = EventType::LeftMouseDragged;
    float y = 20.0F;
    for (auto _ : state) {
        y = y < 200.0F ? y + 1.0F : 20.0F;
        event.locationInWindow.y = y;
        Application::current().postEvent(event);
    }
    benchmark::DoNotOptimize(mixer.travel);
}

void dragStep(benchmark::State& state) {
    drag(state, true);
}
BENCHMARK(dragStep);

void plainDragStep(benchmark::State& state) {
    drag(state, false);
}
BENCHMARK(plainDragStep);

constexpr Ratio kRatios[] = {
    {"drag step : that of a plain slider", "dragStep", "plainDragStep", 2.0}};

}  // namespace

int main(int argc, char** argv) {
    return runRatios(argc, argv, kRatios);
}
