// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/theme.h"

namespace veltra::testing {
namespace {

// A fader of 200 points of travel, its slot's middle at 40 points.
class FaderPicture {
public:
    explicit FaderPicture(const Setting& setting)
        : m_scale(setting.scale), m_picture({64, 236}, setting.scale, setting.appearance) {
        auto ground = std::make_unique<Ground>(Rect{{}, {64, 236}});
        fader = &ground->addSubview(std::make_unique<Slider>(Rect{{}, {64, 236}}));
        setUpFader(QkSliderCell::replacedCellInSlider(*fader));
        m_picture.window().setContentView(std::move(ground));
        m_picture.window().visibilityDidChange(true);
        m_picture.window().keyStateDidChange(true);
    }
    Pixels draw() { return Pixels(m_picture.draw()); }

    // Rows of that colour in the column at `x` points.
    std::vector<std::int32_t> rows(const Pixels& pixels, float x, Color color) const {
        return pixels.inColumn(static_cast<std::int32_t>(x * m_scale), color);
    }

    Slider* fader = nullptr;

private:
    struct Ground final : View {
        using View::View;
        void drawRect(Canvas& canvas, const Rect&) override {
            canvas.fillRect(bounds(), theme(effectiveAppearance()).card);
        }
    };

    const float m_scale;
    PictureWindow m_picture;
};

TEST(Pictures, FadersShowZeroDecibelsOnOneRowAndColourOnlyWhatIsMoved) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        const Theme& colors = theme(setting.appearance);
        FaderPicture picture(setting);
        const Pixels rest = picture.draw();
        const auto line = picture.rows(rest, 35.5F, colors.text);  // of the cap, beside its middle
        ASSERT_FALSE(line.empty());
        EXPECT_EQ(picture.rows(rest, 24.5F, colors.text), line) << "the mark at the left";
        EXPECT_EQ(picture.rows(rest, 54.5F, colors.text), line) << "and at the right";
        EXPECT_NEAR(static_cast<double>(line.front() + line.back() + 1) / 2,
                    static_cast<double>(58.0F * setting.scale), 0.75);
        // The cap is symmetrical about its reading line, from edge to edge.
        const auto edges = picture.rows(rest, 46.5F, colors.capEdge);
        ASSERT_FALSE(edges.empty());
        EXPECT_EQ(line.front() - edges.front(), edges.back() - line.back());
        // Ticks: each of the nine has the same number of pixels.
        const auto ticks = picture.rows(rest, 25.5F, colors.strong);
        EXPECT_EQ(ticks.size() % 9, 0U);
        EXPECT_EQ(ticks.size() / 9, setting.scale < 2.0F ? 1U : 2U);
        const auto accents = [&](const Pixels& pixels) {
            return picture.rows(pixels, 40.0F, colors.accent).size();
        };
        EXPECT_EQ(accents(rest), 0U);
        picture.fader->setDoubleValue(0.2);
        const auto moved = accents(picture.draw());
        EXPECT_NEAR(static_cast<float>(moved), (120.0F - 18.0F) * setting.scale, 3.0F);
        picture.fader->setEnabled(false);
        EXPECT_EQ(accents(picture.draw()), 0U);
        picture.fader->setEnabled(true);
        picture.fader->setDoubleValue(0.8);
        for (int i = 0; i < 40; ++i)
            picture.fader->setFrameSize({64.0F, i % 2 == 0 ? 301.0F : 236.0F});
        const Pixels again = picture.draw();
        EXPECT_EQ(picture.rows(again, 35.5F, colors.text), line);
        EXPECT_EQ(picture.rows(again, 25.5F, colors.strong), ticks);
    }
}

}  // namespace
}  // namespace veltra::testing
