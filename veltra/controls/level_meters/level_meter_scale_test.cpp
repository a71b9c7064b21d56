// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_meter_scale.h"

#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/ui/testing/scripted_port.h"

#include <functional>

namespace veltra {
namespace {

using testing::RecordingCanvas;

constexpr LevelMeterLevels kBoth[] = {LevelMeterLevels::Amplitude, LevelMeterLevels::Decibels};

std::string labels(const LevelMeterScale& scale) {
    std::string all;
    for (const LevelMeterTick& tick : scale.ticks()) {
        if (tick.isLabelled) all += LevelMeterScale::label(tick.decibels) + ' ';
    }
    return all;
}

TEST(LevelMeterScaleTest, KeepsTheLabelsThatMatterMost) {
    const std::pair<int, std::string> kRows[] = {{62, "0 −3 −6 −12 −18 −24 −30 −40 −60 "},
                                                 {24, "0 −12 −24 −40 "},
                                                 {12, "0 −12 −40 "},
                                                 {6, "0 −30 "},
                                                 {5, "0 "},
                                                 {0, "0 "}};
    for (const auto& [leds, expected] : kRows) {
        const auto length = static_cast<float>(4 * leds);
        EXPECT_EQ(labels({length, leds, 1.0F, LevelMeterLevels::Decibels}), expected) << leds;
    }
}

TEST(LevelMeterScaleTest, TicksAreEdgesOfLedsAndLabelsNeverTouch) {
    for (std::int32_t leds = 0; leds < 120; ++leds) {
        for (const LevelMeterLevels levels : kBoth) {
            const float length = leds > 0 ? 4.0F * static_cast<float>(leds) : 97.0F;
            const LevelMeterScale scale(length, leds, 2.0F, levels);
            const auto& ticks = scale.ticks();
            EXPECT_EQ(ticks[0].edge, 0.0F);
            for (std::size_t i = 0; i < ticks.size(); ++i) {
                const float step = leds > 0 ? 4.0F : 0.5F;
                EXPECT_EQ(std::fmod(ticks[i].edge, step), 0.0F);
                EXPECT_NEAR(ticks[i].edge,
                            (1.0F - meterPositionOfDecibels(ticks[i].decibels, levels)) * length,
                            step / 2 + 0.01F);
                if (!ticks[i].isLabelled) continue;
                EXPECT_TRUE(i == 0 || length - ticks[i].edge >= 8.0F);
                for (std::size_t j = i + 1; j < ticks.size(); ++j) {
                    EXPECT_TRUE(!ticks[j].isLabelled || ticks[j].edge - ticks[i].edge >= 15.0F);
                }
            }
        }
    }
    EXPECT_EQ(levelMeterRowsBelow(NAN, 10, LevelMeterLevels::Decibels), 0);
    EXPECT_EQ(levelMeterRowsBelow(6.0, 10, LevelMeterLevels::Decibels), 10);
}

class MeterLookTest : public ::testing::Test {
protected:
    testing::ScriptedPort port;
};

TEST_F(MeterLookTest, LedsOfAPixelHaveNoGaps) {
    const auto fine = drawnLevelMeterLook({})->bar({.length = 8, .thickness = 9, .ledCount = 8});
    const auto image = std::dynamic_pointer_cast<const testing::RecordedImage>(fine.off);
    EXPECT_EQ(image->canvas.calls.size(), 1U + 8U) << "on their ground";
}

// The held maximum is never lost in the gap under a zone.
TEST_F(MeterLookTest, TheHeldMaximumOfAContinuousBarStandsBesideTheGaps) {
    testing::Shown<DfStereoLevelMeterView> host(Rect{{}, {28, 272}});
    host.view.setImageIDs(kLevelMeterImageBar, kLevelMeterImageBar);
    host.view.setLevelScale(LevelMeterLevels::Decibels);
    host.view.setFallBackStepTime(0.0);
    for (int pixel = 60; pixel <= 248; ++pixel) {
        host.view.cellL().maxtimerAction(nullptr);
        host.view.setLevelL(static_cast<float>(pixel) / 248.0F, 0.0F);
        host.view.setLevelL(0.1F, 0.0F);
        host.view.setNeedsDisplay();
        const auto calls = host.drawn(RecordingCanvas::What::Image);
        ASSERT_EQ(calls.size(), 4U) << pixel;  // unlit, lit, maximum; the other channel
        const float low = 268.0F - calls[2].rect.maxY();
        const auto place = static_cast<float>(pixel);
        EXPECT_EQ(calls[2].rect.size.height, 2.0F) << pixel;
        EXPECT_TRUE(low >= place - 2.0F && low <= place + 3.0F) << pixel;
        EXPECT_FALSE((low > 170.0F && low < 174.0F) || (low > 226.0F && low < 230.0F)) << pixel;
    }
}

TEST_F(MeterLookTest, TheScaleFollowsItsMeterAndStandsWhereItIs) {
    auto all = std::make_unique<View>(Rect{{}, {100, 300}});
    auto& meter =
        all->addSubview(std::make_unique<DfStereoLevelMeterView>(Rect{{28, 20}, {28, 272}}));
    auto& scale = all->addSubview(std::make_unique<LevelMeterScaleView>(Rect{{0, 10}, {28, 285}}));
    meter.setLevelScale(LevelMeterLevels::Decibels);
    scale.setMeter(&meter.cellL());
    testing::HostedView host(std::move(all));
    const auto ticks = [&] {
        scale.setNeedsDisplay();
        return host.drawn(RecordingCanvas::What::FillRect);
    };
    // The glass ends at 292 from below, 8 from above: the levels begin 20 points further down.
    EXPECT_EQ(ticks().at(0).rect, (Rect{{20, 27}, {6, 1}}));
    const std::function<void()> changes[] = {[&] { meter.setLEDPitch(8.0F); },
                                             [&] {
                                                 meter.setFrame({{28, 20}, {28, 172}});
                                             },
                                             [&] {
                                                 meter.setFrameOrigin({28, 40});
                                                 host.display();
                                             }};
    for (const auto& change : changes) {
        host.port.invalid.clear();
        change();
        EXPECT_THAT(host.port.invalid, ::testing::Contains(Rect{{0, 5}, {28, 285}}));
    }
    EXPECT_EQ(ticks().at(0).rect.maxY(), 108.0F);
    meter.removeFromSuperview();
    EXPECT_TRUE(ticks().empty());
    EXPECT_EQ(scale.meter(), nullptr);
}

}  // namespace
}  // namespace veltra
