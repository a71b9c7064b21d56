// SPDX-License-Identifier: MIT
// A stereo meter in a window of the host's own. Shown for two seconds, so that it can run
// unattended.
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/qt/view_widget.h"

#include <QApplication>
#include <QTimer>
#include <QVBoxLayout>
#include <cmath>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QWidget window;
    auto* meters = new veltra::ViewWidget(&window);
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(meters);

    auto view = std::make_unique<veltra::DfStereoLevelMeterView>(veltra::Rect{{}, {32, 200}});
    veltra::DfStereoLevelMeterView& meter = *view;
    meters->setContentView(std::move(view));

    float phase = 0.0F;  // stands for what the audio thread measured since the last time
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        const float peak = std::abs(std::sin(phase += 0.05F));
        meter.setLevelL(veltra::meterPositionForAmplitude(peak),
                        veltra::meterPositionForAmplitude(0.5F * peak));
    });
    poll.start(16);
    window.show();

    QTimer end;
    QObject::connect(&end, &QTimer::timeout, &application, &QApplication::quit);
    end.start(2000);
    QApplication::exec();
    return meter.levelL() > 0.0F ? 0 : 1;
}
