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

TEST(Pictures, ZonesCanBeToldApartWhereTheyMeet) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        const Pixels pixels = Drawn(setting, 6.0).pixels();
        for (const float top : {36.0F + 5 * 4.0F, 36.0F + 19 * 4.0F}) {  // of the lower zone
            const std::uint32_t above = pixels.rgbAt(Point{46.5F, top - 3.5F});
            const std::uint32_t below = pixels.rgbAt(Point{46.5F, top + 0.5F});
            for (const Sight sight : kSights)
                EXPECT_GE(distance(above, below, sight), sight == Sight::Ordinary ? 50.0 : 25.0);
        }
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
        EXPECT_TRUE(fresh.pixels() == moved.pixels());
    }
}

}  // namespace
}  // namespace veltra::testing
