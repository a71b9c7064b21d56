// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/ui/theme.h"

#include <array>
#include <limits>
#include <set>

namespace veltra::testing {
namespace {

// A scale and a meter of 62 LEDs on a card: the glass lies from x 40 and y 16 on, from above.
class Strip final : public View {
public:
    explicit Strip(double decibels)
        : View({{}, {80, 300}}),
          meter(addSubview(std::make_unique<DfStereoLevelMeterView>(Rect{{40, 16}, {28, 272}}))),
          scale(addSubview(std::make_unique<LevelMeterScaleView>(Rect{{12, 8}, {28, 290}}))) {
        meter.setLevelScale(LevelMeterLevels::Decibels);
        meter.setFallBackStepTime(0.0);
        meter.setLevelL(meterPositionForDecibels(decibels), 0.0F);
        scale.setMeter(&meter.cellL());
    }
    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect&) override {
        canvas.fillRect(bounds(), theme(effectiveAppearance()).card);
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

using Lab = std::array<double, 3>;

// What is seen without one of the three kinds of cones (none missing: nothing), as CIELAB.
Lab seen(std::uint32_t rgb, bool isDeuteranope) {
    const auto linear = [rgb](int shift) {
        const double part = static_cast<double>(rgb >> shift & 0xFFU) / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    double r = linear(16), g = linear(8), b = linear(0);
    if (isDeuteranope) {
        const double red = 0.367322 * r + 0.860646 * g - 0.227968 * b;
        const double green = 0.280085 * r + 0.672501 * g + 0.047413 * b;
        b = -0.011820 * r + 0.042940 * g + 0.968881 * b;
        r = red, g = green;
    }
    const auto root = [](double value) {
        return value > 0.008856 ? std::cbrt(value) : 7.787 * value + 16.0 / 116.0;
    };
    const double x = root((0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047);
    const double y = root(0.2126 * r + 0.7152 * g + 0.0722 * b);
    const double z = root((0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

double distance(const Lab& one, const Lab& other) {
    return std::hypot(one[0] - other[0], one[1] - other[1], one[2] - other[2]);
}

TEST(Pictures, TicksStandInTheGapsOfLedsAtEveryScale) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        Drawn drawn(setting, 6.0);
        const Pixels pixels = drawn.pixels();
        const Theme& colors = theme(setting.appearance);
        const auto at = [&](float points) {
            return static_cast<std::int32_t>(std::lround(points * setting.scale));
        };
        const std::int32_t top = at(36.0F), bottom = at(36.0F + 248.0F);
        // Down the first bar: where each LED begins, and how high it is.
        std::vector<std::int32_t> begins, heights;
        std::set<std::int32_t> gaps;
        for (std::int32_t y = top; y < bottom; ++y) {
            const bool isGap = pixels.rgbAt(at(46.0F), y) == rgbOf(colors.glass);
            if (isGap) {
                gaps.insert(y);
            } else if (y == top || gaps.count(y - 1) != 0) {
                begins.push_back(y), heights.push_back(1);
            } else {
                ++heights.back();
            }
        }
        ASSERT_EQ(begins.size(), 62U);
        const auto gap = static_cast<std::int32_t>(setting.scale);
        for (std::size_t i = 0; i < begins.size(); ++i) {
            const bool isLowest = i == 4 || i == 18;  // of the red and of the amber zone
            EXPECT_EQ(begins[i], top + at(4.0F) * static_cast<std::int32_t>(i));
            EXPECT_EQ(heights[i], at(4.0F) - (isLowest ? 2 * gap : gap)) << i;
        }
        // Ticks end 2 points before the glass; the first just above the first LED.
        std::vector<std::int32_t> ticks;
        for (std::int32_t y = top - at(10.0F); y < bottom; ++y) {
            const std::uint32_t color = pixels.rgbAt(at(36.5F), y);
            if (color == rgbOf(colors.strong) || color == rgbOf(colors.label)) ticks.push_back(y);
        }
        ASSERT_EQ(ticks.size(), static_cast<std::size_t>(10 * gap));
        for (std::size_t i = 0; i < ticks.size(); ++i) {
            if (i < static_cast<std::size_t>(gap)) {
                EXPECT_EQ(ticks[i], top - gap + static_cast<std::int32_t>(i));
            } else {
                EXPECT_EQ(gaps.count(ticks[i]), 1U) << i;
            }
        }
        // Neighbouring zones can be told apart where they meet.
        for (const std::size_t lowest : {4U, 18U}) {
            const std::uint32_t above = pixels.rgbAt(at(46.0F), begins[lowest]);
            const std::uint32_t below = pixels.rgbAt(at(46.0F), begins[lowest + 1]);
            EXPECT_GE(distance(seen(above, false), seen(below, false)), 50.0);
            EXPECT_GE(distance(seen(above, true), seen(below, true)), 25.0);
        }
        // The light of the channel that has clipped has a white core.
        EXPECT_EQ(pixels.rgbAt(at(48.5F), at(24.0F)), rgbOf(colors.clipCore));
        EXPECT_EQ(pixels.rgbAt(at(59.5F), at(24.0F)), rgbOf(colors.clipOff));
        // What is muted is thin.
        drawn.strip->meter.setMuted(true);
        const Pixels muted = drawn.pixels();
        std::int32_t wide = 0, thin = 0;
        for (std::int32_t x = at(44.0F); x < at(53.0F); ++x) {
            ++wide;
            if (muted.rgbAt(x, bottom - at(2.0F)) != rgbOf(colors.muted.off)) ++thin;
        }
        EXPECT_TRUE(thin > 0 && thin * 100 <= wide * 45) << thin << " of " << wide;
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
        const Pixels one = fresh.pixels();
        const Pixels other = moved.pixels();
        std::int32_t differing = 0;
        for (std::int32_t y = 0; y < one.height(); ++y) {
            for (std::int32_t x = 0; x < one.width(); ++x)
                differing += one.rgbAt(x, y) != other.rgbAt(x, y);
        }
        EXPECT_EQ(differing, 0);
    }
}

}  // namespace
}  // namespace veltra::testing
