// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/ui/testing/sight.h"

namespace veltra::testing {
namespace {

// A scale and a meter of 62 LEDs on a card: the glass lies from x 40 and y 16 on, from above.
class Strip final : public Card {
public:
    explicit Strip(double decibels)
        : Card({{}, {80, 300}}),
          meter(addSubview(std::make_unique<DfStereoLevelMeterView>(Rect{{40, 16}, {28, 272}}))),
          scale(addSubview(std::make_unique<LevelMeterScaleView>(Rect{{12, 8}, {28, 290}}))) {
        meter.setLevelScale(LevelMeterLevels::Decibels);
        meter.setFallBackStepTime(0.0);
        meter.setLevelL(meterPositionForDecibels(decibels), 0.0F);
        scale.setMeter(&meter.cellL());
    }

    DfStereoLevelMeterView& meter;
    LevelMeterScaleView& scale;
};

struct Drawn {
    Drawn(const Setting& setting, double decibels)
        : picture({80, 300}, setting.scale, setting.appearance) {
        auto made = std::make_unique<Strip>(decibels);
        strip = made.get();
        picture.window().setContentView(std::move(made));
    }
    Pixels pixels() { return Pixels(picture.draw()); }

    PictureWindow picture;
    Strip* strip;
};

TEST(Pictures, TicksStandInTheGapsOfLedsAtEveryScale) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        Drawn drawn(setting, 6.0);
        const Pixels pixels = drawn.pixels();
        const Theme& colors = theme(setting.appearance);
        const auto at = [&](float points) {
            return static_cast<std::int32_t>(std::lround(points * setting.scale));
        };
        const std::int32_t top = at(36.0F), bottom = at(36.0F + 248.0F), pitch = at(4.0F);
        // Down the first bar: where each of 62 LEDs begins.
        const auto isGap = [&](std::int32_t y) {
            return pixels.rgbAt(at(46.0F), y) == rgbOf(colors.glass);
        };
        ASSERT_EQ(bottom - top, 62 * pitch);
        for (std::int32_t y = top; y < bottom; ++y)
            EXPECT_EQ(!isGap(y) && (y == top || isGap(y - 1)), (y - top) % pitch == 0) << y;
        // Ticks end 2 points before the glass; the first just above the first LED.
        const auto gap = static_cast<std::int32_t>(setting.scale);
        std::int32_t count = 0;
        for (std::int32_t y = top - at(10.0F); y < bottom; ++y) {
            const std::uint32_t color = pixels.rgbAt(at(36.5F), y);
            if (color != rgbOf(colors.strong) && color != rgbOf(colors.label)) continue;
            EXPECT_TRUE(count++ < gap ? y == top - gap + count - 1 : isGap(y)) << y;
        }
        EXPECT_EQ(count, 10 * gap);
        // Neighbouring zones can be told apart where they meet.
        for (const std::int32_t lowest : {4, 18}) {
            const std::uint32_t above = pixels.rgbAt(at(46.0F), top + lowest * pitch);
            const std::uint32_t below = pixels.rgbAt(at(46.0F), top + (lowest + 1) * pitch);
            for (const Sight sight : kSights)
                EXPECT_GE(distance(above, below, sight), sight == Sight::Ordinary ? 50.0 : 25.0);
        }
        // The light of the channel that has clipped has a white core.
        EXPECT_EQ(pixels.rgbAt(at(48.5F), at(24.0F)), rgbOf(colors.clipCore));
        EXPECT_EQ(pixels.rgbAt(at(59.5F), at(24.0F)), rgbOf(colors.clipOff));
    }
}

TEST(Pictures, MetersLookTheSameAfterManyLayoutsAndChangesOfScaleAndAppearance) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        // In another window before, which has all else: nothing of its pictures may stay.
        Drawn before(
            {setting.scale == 2.0F ? 1.0F : 2.0F,
             setting.appearance == Appearance::Dark ? Appearance::Light : Appearance::Dark},
            -9.0);
        before.pixels();
        before.picture.window().setAppearance(setting.appearance);
        before.pixels();
        Drawn moved(setting, -9.0);
        moved.strip = before.strip;
        moved.picture.window().setContentView(
            before.picture.window().contentView()->takeFromSuperview());
        for (int i = 1; i <= 40; ++i)
            moved.strip->meter.setFrameSize(
                {28.0F + static_cast<float>(i % 3), 272.0F - 3.0F * static_cast<float>(i % 5)});
        moved.strip->meter.setFrameSize({28.0F, 272.0F});
        Drawn fresh(setting, -9.0);
        EXPECT_EQ(fresh.pixels().differences(moved.pixels()).first, 0);
    }
}

}  // namespace
}  // namespace veltra::testing
