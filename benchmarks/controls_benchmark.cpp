// SPDX-License-Identifier: MIT
// Level meters: what it costs to draw 200 of them that have all changed, against clearing the same
// area and copying one image over it, the least that any drawing by images can do. And the
// console's window with 32 strips: how much of one processor its 60 redraws a second take.
#include "benchmarks/ratios.h"
#include "examples/console/window/console_view.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/view_widget.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using namespace veltra;

constexpr int kViews = 100;  // of two meters each
constexpr int kColumns = 25;
constexpr int kWidth = 32;
constexpr int kHeight = 120;

class Field final : public View {
public:
    Field() : View({{}, {kColumns * kWidth, kViews / kColumns * kHeight}}) {
        for (int i = 0; i < kViews; ++i) {
            const Point corner{static_cast<float>(i % kColumns * kWidth),
                               static_cast<float>(i / kColumns * kHeight)};
            m_meters.push_back(&addSubview(std::make_unique<DfStereoLevelMeterView>(
                Rect{corner, {kWidth - 2.0F, kHeight - 2.0F}})));
        }
    }
    Rect opaqueRect() const override { return bounds(); }
    void drawRect(Canvas& canvas, const Rect& dirty) override {
        canvas.fillRect(dirty, theme(effectiveAppearance()).window);
    }
    void setLevels(float level) {
        for (DfStereoLevelMeterView* meter : m_meters)
            meter->setLevelL(level, 1.0F - level, true);
    }

private:
    std::vector<DfStereoLevelMeterView*> m_meters;
};

// What Qt paints into: the widget's own dirty rectangles, as on screen.
class Screen {
public:
    explicit Screen(std::unique_ptr<View> view) {
        widget.setContentView(std::move(view));
        widget.resize(widget.sizeHint());
        widget.setAttribute(Qt::WA_DontShowOnScreen);
        widget.show();
        QApplication::processEvents();
    }
    void redraw() { QApplication::processEvents(); }

    ViewWidget widget;
};

void meters200(benchmark::State& state) {
    auto owned = std::make_unique<Field>();
    Field& field = *owned;
    Screen screen(std::move(owned));
    float level = 0.0F;
    for (auto _ : state) {
        level = level > 0.9F ? 0.0F : level + 0.07F;
        field.setLevels(level);
        screen.redraw();
    }
}
BENCHMARK(meters200);

// A widget of the same size that clears itself and draws one opaque image.
class OneImage final : public QWidget {
public:
    OneImage() : m_image(kColumns * kWidth, kViews / kColumns * kHeight, QImage::Format_RGB32) {
        setAttribute(Qt::WA_OpaquePaintEvent);  // as a surface of ours: nobody else clears it
        m_image.fill(Qt::darkGray);
        resize(m_image.size());
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::black);
        painter.drawImage(0, 0, m_image);
    }

private:
    QImage m_image;
};

void clearAndCopy(benchmark::State& state) {
    OneImage widget;
    widget.setAttribute(Qt::WA_DontShowOnScreen);
    widget.show();
    QApplication::processEvents();
    for (auto _ : state) {
        widget.update();
        QApplication::processEvents();
    }
}
BENCHMARK(clearAndCopy);

// One redraw of a console in which every meter has moved; the label says what 60 a second take.
void console32Strips(benchmark::State& state) {
    using namespace veltra::console;
    ConsoleState shown;
    for (int key = 1; key <= 32; ++key) {
        StripState strip;
        strip.key = key;
        strip.path = "/music/strip " + std::to_string(key) + ".wav";
        strip.format.rate = 48000;
        strip.format.channels = 2;
        strip.meter.framesTotal = 48000 * 300;
        strip.meter.peaks = {0.5F, 0.5F};
        shown.strips.push_back(std::move(strip));
    }
    ConsoleDelegate nobody;
    const float width =
        33.0F * (StripView::mostWidth({}) + 10.0F) + 200.0F;  // all of them in sight
    auto owned = std::make_unique<ConsoleView>(Rect{{}, {width, 460.0F}}, nobody);
    ConsoleView& view = *owned;
    Screen screen(std::move(owned));
    std::uint64_t frame = 0;
    for (auto _ : state) {
        ++frame;
        for (StripState& strip : shown.strips) {
            const float level =
                0.1F +
                0.8F *
                    static_cast<float>((frame * 7 + static_cast<std::uint64_t>(strip.key)) % 11) /
                    11.0F;
            strip.meter.peaks = {level, 1.0F - level};
            strip.meter.framesPlayed = frame * 800;
        }
        shown.outputPeaks = {0.5F, 0.6F};
        shown.seconds = static_cast<double>(frame) / 60.0;
        view.update(shown);
        screen.redraw();
    }
    // Seconds of work in a second of 60 redraws.
    state.counters["share_at_60_Hz"] =
        benchmark::Counter(static_cast<double>(state.iterations()) / 60.0,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(console32Strips);

constexpr Ratio kRatios[] = {
    {"200 changed meters / clearing and copying one image", "meters200", "clearAndCopy", 7.0},
};

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    installQtPort();
    return runRatios(argc, argv, kRatios);
}
