// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_meter_scale.h"

#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

using testing::RecordingCanvas;

constexpr float kScales[] = {1.0F, 1.25F, 1.5F, 1.75F, 2.0F};
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

    // What was filled after the ground, from the low end: as areas of pixels above it.
    struct Fill {
        float low, high, width;
        Color color;
    };
    static std::vector<Fill> fills(const std::shared_ptr<const Image>& image, float scale) {
        const auto recorded = std::dynamic_pointer_cast<const testing::RecordedImage>(image);
        std::vector<Fill> all;
        const float height = image->size().height * scale;
        for (const auto& call : recorded->canvas.calls) {
            all.push_back({height - call.rect.maxY() * scale, height - call.rect.minY() * scale,
                           call.rect.size.width * scale, call.color});
        }
        all.erase(all.begin());
        return all;
    }
};

// At every scale: a pitch of 4 points, all LEDs alike but the two where a zone begins, each above
// its gap, and the colours of a zone from its first LED to its last.
TEST_F(MeterLookTest, ZonesBeginBetweenLeds) {
    const auto look = drawnLevelMeterLook({});
    const Theme& colors = theme(Appearance::Dark);
    for (const float scale : kScales) {
        const float pitch = 4.0F * scale;
        const float gap = std::floor(scale);
        const LevelMeterPictureRequest request{.length = static_cast<std::int32_t>(62 * pitch) + 1,
                                               .thickness = static_cast<std::int32_t>(8 * scale),
                                               .scale = scale,
                                               .appearance = Appearance::Dark,
                                               .ledPitch = static_cast<std::int32_t>(pitch),
                                               .levels = LevelMeterLevels::Decibels};
        EXPECT_EQ(look->fittingLength(request), static_cast<std::int32_t>(62 * pitch));
        LevelMeterPictureRequest fitting = request;
        fitting.length = look->fittingLength(request);
        const LevelMeterPicture picture = look->bar(fitting);
        ASSERT_EQ(picture.ledCount, 62U);
        const auto on = fills(picture.on, scale);
        const auto off = fills(picture.off, scale);
        ASSERT_EQ(on.size(), 62U);
        for (std::size_t i = 0; i < on.size(); ++i) {
            const bool isEdge = i == 43 || i == 57;  // 0.7 and 0.925 of 62
            EXPECT_NEAR(on[i].high, pitch * static_cast<float>(i + 1), 0.01F);
            EXPECT_NEAR(on[i].high - on[i].low, pitch - (isEdge ? 2 * gap : gap), 0.01F) << i;
            EXPECT_EQ(off[i].color, i < 43   ? colors.green.off
                                    : i < 57 ? colors.amber.off
                                             : colors.red.off);
        }
        EXPECT_EQ(on[0].color, colors.green.low);
        EXPECT_EQ(on[61].color, colors.red.high);
        fitting.isMuted = true;
        const auto muted = fills(look->bar(fitting).on, scale);  // unlit, then lit, and so on
        ASSERT_EQ(muted.size(), 124U);
        EXPECT_LE(muted[1].width, 0.45F * muted[0].width);
        EXPECT_EQ(muted[1].color, colors.muted.low);
        EXPECT_EQ(muted[123].color, colors.muted.high);
        EXPECT_EQ(muted[0].color, colors.muted.off);
    }
}

TEST_F(MeterLookTest, AContinuousBarHasItsZonesAtTheSamePlaces) {
    LevelMeterStyle style;
    style.isContinuous = true;
    const auto look = drawnLevelMeterLook(style);
    const LevelMeterPicture picture = look->bar({.length = 248,
                                                 .thickness = 9,
                                                 .appearance = Appearance::Light,
                                                 .ledPitch = 4,
                                                 .levels = LevelMeterLevels::Decibels});
    EXPECT_EQ(picture.ledCount, 0U);
    EXPECT_EQ(picture.rows, 62);
    const auto off = fills(picture.off, 1.0F);
    ASSERT_EQ(off.size(), 3U);
    const std::pair<float, float> kZones[] = {{1, 172}, {174, 228}, {230, 248}};
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(std::pair(off[i].low, off[i].high), kZones[i]);
    ASSERT_EQ(picture.gaps.size(), 2U);
    EXPECT_EQ(std::pair(picture.gaps[1].low, picture.gaps[1].high), std::pair(228, 230));
    const auto on = fills(picture.on, 1.0F);
    EXPECT_EQ(on.size(), 171U + 54U + 18U);
    EXPECT_EQ(on.back().color, theme(Appearance::Light).red.high);
    const auto fine = drawnLevelMeterLook({})->bar({.length = 8, .thickness = 9, .ledCount = 8});
    EXPECT_EQ(fills(fine.off, 1.0F).size(), 8U) << "LEDs of a pixel have no gaps";
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

TEST_F(MeterLookTest, TheScaleStandsWhereTheMeterIsAndFollowsIt) {
    auto all = std::make_unique<View>(Rect{{}, {100, 300}});
    auto& meter =
        all->addSubview(std::make_unique<DfStereoLevelMeterView>(Rect{{28, 20}, {28, 272}}));
    auto& scale = all->addSubview(std::make_unique<LevelMeterScaleView>(Rect{{0, 10}, {28, 285}}));
    meter.setLevelScale(LevelMeterLevels::Decibels);
    scale.setMeter(&meter.cellL());
    testing::HostedView host(std::move(all));
    const auto draw = [&](RecordingCanvas::What what) {
        scale.setNeedsDisplay();
        std::vector<RecordingCanvas::Call> calls;
        for (auto& call : host.drawn(what)) {
            if (call.clip.maxX() <= 28.0F) calls.push_back(call);
        }
        return calls;
    };
    // The glass ends at 292 from below, 8 from above: the levels begin 20 points further down.
    const auto ticks = draw(RecordingCanvas::What::FillRect);
    ASSERT_EQ(ticks.size(), 10U);
    EXPECT_EQ(ticks[0].rect, (Rect{{20, 27}, {6, 1}}));
    EXPECT_EQ(ticks[3].rect, (Rect{{20, 28 + 76 - 1}, {6, 1}}));  // -12: 19 of 62 LEDs
    EXPECT_EQ(ticks[4].rect.size.width, 4.0F);
    const auto texts = draw(RecordingCanvas::What::Text);
    EXPECT_EQ(texts.front().text, "0");
    EXPECT_EQ(texts.front().rect.center().y, 27.5F);
    EXPECT_EQ(texts.back().text, "dB");
    EXPECT_EQ(texts.back().rect.center().y, 15.5F);

    host.port.invalid.clear();
    meter.setLEDPitch(8.0F);
    const Rect whole{{0, 5}, {28, 285}};
    EXPECT_THAT(host.port.invalid, ::testing::Contains(whole));
    host.port.invalid.clear();
    meter.setFrame({{28, 20}, {28, 172}});
    EXPECT_THAT(host.port.invalid, ::testing::Contains(whole));
    EXPECT_EQ(draw(RecordingCanvas::What::FillRect)[0].rect.maxY(), 128.0F);
    meter.setFrameOrigin({28, 40});
    host.display();
    EXPECT_THAT(host.port.invalid, ::testing::Contains(whole));
    // Lying, the ticks and then the labels are below it, in the middle of each other.
    meter.setFrame({{0, 40}, {100, 28}});
    scale.setFrame({{0, 5}, {100, 30}});
    host.port.invalid.clear();
    scale.setNeedsDisplay();
    const auto lying = host.display();
    const Rect tick = RecordingCanvas::only(RecordingCanvas::What::FillRect, lying).at(0).rect;
    const Rect label = RecordingCanvas::only(RecordingCanvas::What::Text, lying).at(0).rect;
    EXPECT_EQ(label.center().x, tick.center().x);
    EXPECT_GE(label.minY(), tick.maxY());
    meter.removeFromSuperview();
    EXPECT_TRUE(draw(RecordingCanvas::What::FillRect).empty());
    EXPECT_EQ(scale.meter(), nullptr);
}

}  // namespace
}  // namespace veltra
