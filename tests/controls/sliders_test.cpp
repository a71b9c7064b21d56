// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/application.h"

namespace veltra::testing {
namespace {

TEST(Pictures, FadersShowZeroDecibelsOnOneRowAndColourOnlyWhatIsMoved) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        const Theme& colors = theme(setting.appearance);
        // 200 points of travel, the slot's middle at 40 points.
        CardPicture picture({64, 236}, setting);
        auto& fader = picture.add<Slider>(Rect{{}, {64, 236}});
        setUpFader(QkSliderCell::replacedCellInSlider(fader));
        const Pixels rest = picture.draw();
        const auto line = rest.inColumn(35.5F, colors.text);  // of the cap, beside its middle
        ASSERT_FALSE(line.empty());
        EXPECT_EQ(rest.inColumn(24.5F, colors.text), line) << "the mark at the left";
        EXPECT_EQ(rest.inColumn(54.5F, colors.text), line) << "and at the right";
        EXPECT_NEAR(static_cast<double>(line.front() + line.back() + 1) / 2,
                    static_cast<double>(58.0F * setting.scale), 0.75);
        // The cap is symmetrical about its reading line, from edge to edge.
        const auto edges = rest.inColumn(46.5F, colors.capEdge);
        ASSERT_FALSE(edges.empty());
        EXPECT_EQ(line.front() - edges.front(), edges.back() - line.back());
        // Ticks: each of the nine has the same number of pixels.
        const auto ticks = rest.inColumn(25.5F, colors.strong);
        EXPECT_EQ(ticks.size() % 9, 0U);
        EXPECT_EQ(ticks.size() / 9, setting.scale < 2.0F ? 1U : 2U);
        const auto accents = [&](const Pixels& pixels) {
            return pixels.inColumn(40.0F, colors.accent).size();
        };
        EXPECT_EQ(accents(rest), 0U);
        fader.setDoubleValue(0.2);
        const auto moved = accents(picture.draw());
        EXPECT_NEAR(static_cast<float>(moved), (120.0F - 18.0F) * setting.scale, 3.0F);
        fader.setEnabled(false);
        EXPECT_EQ(accents(picture.draw()), 0U);
    }
}

TEST(Pictures, PansColourTheWayFromTheirMiddleToEitherSideAlike) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        const Theme& colors = theme(setting.appearance);
        CardPicture picture({84, 28}, setting);
        auto& pan = picture.add<Slider>(Rect{{}, {84, 28}});
        setUpPan(QkSliderCell::replacedCellInSlider(pan));
        const auto columns = [&](double position, Color color) {
            pan.setDoubleValue(position);
            return picture.draw().inRow(14.0F, color);
        };
        EXPECT_TRUE(columns(0.0, colors.accent).empty());
        const auto edges = columns(0.0, colors.capEdge);
        ASSERT_GE(edges.size(), 2U);
        EXPECT_NEAR(edges.front() + edges.back() + 1, 84 * setting.scale, 1.01);
        const auto left = columns(-0.5, colors.accent), right = columns(0.5, colors.accent);
        // From the middle to the cap, which is 18 points away and 12 wide.
        ASSERT_FALSE(left.empty() || right.empty());
        EXPECT_NEAR(static_cast<double>(left.size()), 12.0 * setting.scale, 1.5);
        EXPECT_NEAR(static_cast<double>(right.size()), 12.0 * setting.scale, 1.5);
        EXPECT_NEAR(left.back() + 1, 42 * setting.scale, 1.01);
        EXPECT_NEAR(right.front(), 42 * setting.scale, 1.01);
    }
}

TEST(Pictures, ValueTipsAreSharpBesideTheCapAndDoNotTouchTheirText) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        const Theme& colors = theme(setting.appearance);
        CardPicture picture({160, 236}, setting);
        auto& fader = picture.add<Slider>(Rect{{}, {64, 236}});
        setUpFader(QkSliderCell::replacedCellInSlider(fader));
        Event press;
        press.type = EventType::LeftMouseDown;
        press.clickCount = 1;
        press.locationInWindow = {40, 236 - 58};  // the middle of the cap
        press.window = &picture.window;
        Application::current().postEvent(press);
        const Pixels pixels = picture.draw();
        const auto across = pixels.inRow(48.0F, colors.tip);
        ASSERT_FALSE(across.empty());
        EXPECT_GE(across.front(), std::lround(52 * setting.scale)) << "beside the cap";
        // Between its sides and the text, and no rows but those of the plate.
        for (const auto column : {static_cast<float>(across.front()) / setting.scale + 4.5F,
                                  static_cast<float>(across.back()) / setting.scale - 4.5F}) {
            const auto rows = pixels.inColumn(column, colors.tip);
            ASSERT_EQ(rows.size(), static_cast<std::size_t>(std::lround(24 * setting.scale)));
            EXPECT_EQ(rows.back() - rows.front() + 1, std::lround(24 * setting.scale));
            EXPECT_NEAR(rows.front() + rows.back() + 1, 2 * 58 * setting.scale, 2.01);
        }
        press.type = EventType::LeftMouseUp;
        Application::current().postEvent(press);
        EXPECT_TRUE(picture.draw().inRow(48.0F, colors.tip).empty());
    }
}

}  // namespace
}  // namespace veltra::testing
