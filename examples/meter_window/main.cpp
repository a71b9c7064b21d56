// SPDX-License-Identifier: MIT
// A stereo meter with its scale and a peak read-out in a window of the host's own, from an audio
// callback to the screen. Shown for two seconds, so that it can run unattended.
#include "veltra/audio/level_tap.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/peak_readout.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/qt/view_widget.h"

#include <QApplication>
#include <QTimer>
#include <QVBoxLayout>
#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QWidget window;
    auto* meters = new veltra::ViewWidget(&window);
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(meters);

    auto strip = std::make_unique<veltra::View>(veltra::Rect{{}, {60, 236}});
    auto& readout =
        strip->addSubview(std::make_unique<veltra::PeakReadout>(veltra::Rect{{2, 212}, {54, 20}}));
    auto& meter = strip->addSubview(
        std::make_unique<veltra::DfStereoLevelMeterView>(veltra::Rect{{28, 8}, {28, 200}}));
    auto& scale = strip->addSubview(
        std::make_unique<veltra::LevelMeterScaleView>(veltra::Rect{{0, 0}, {28, 212}}));
    meter.setLevelScale(veltra::LevelMeterLevels::Decibels);
    scale.setMeter(&meter.cellL());
    meters->setContentView(std::move(strip));

    veltra::LevelTap left;
    veltra::LevelTap right;
    std::atomic<bool> isPlaying{true};
    std::thread audio([&] {  // stands for the callback of an audio device
        std::vector<float> block(2 * std::size_t{480});
        for (float phase = 0.0F; isPlaying; phase += 0.05F) {
            for (std::size_t i = 0; i < block.size(); ++i)
                block[i] = std::sin(phase) * (i % 2 == 0 ? 0.9F : 0.4F);
            left.add(block.data(), 480, 2);
            right.add(block.data() + 1, 480, 2);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });

    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        const auto show = [&](veltra::LevelTap& tap, veltra::QkLevelMeterCell& cell) {
            const veltra::LevelReading level = tap.take();
            if (level.frames == 0) return;  // nothing new: the meter falls to its last level
            cell.setLevel(veltra::meterPositionForAmplitude(level.peak));
            readout.raise(level.peak);
        };
        show(left, meter.cellL());
        show(right, meter.cellR());
    });
    poll.start(16);
    window.show();

    QTimer end;
    QObject::connect(&end, &QTimer::timeout, &application, &QApplication::quit);
    end.start(2000);
    QApplication::exec();
    isPlaying = false;
    audio.join();
    return meter.levelL() > 0.0F && readout.decibels() > -3.0 && !readout.isClipped() ? 0 : 1;
}
