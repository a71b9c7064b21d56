// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/application.h"
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

// The columns, or the rows, of that colour along a line through `at`.
std::vector<std::int32_t> along(const Pixels& pixels, float scale, Point at, bool isRow,
                                Color color) {
    std::vector<std::int32_t> found;
    const auto x = static_cast<std::int32_t>(at.x * scale);
    const auto y = static_cast<std::int32_t>(at.y * scale);
    for (std::int32_t i = 0; i < (isRow ? pixels.width() : pixels.height()); ++i) {
        if ((isRow ? pixels.rgbAt(i, y) : pixels.rgbAt(x, i)) == rgbOf(color)) found.push_back(i);
    }
    return found;
}

TEST(Pictures, PansColourTheWayFromTheirMiddleToEitherSideAlike) {
    for (const Setting& setting : settings()) {
        SCOPED_TRACE(setting.scale);
        const Theme& colors = theme(setting.appearance);
        PictureWindow picture({84, 28}, setting.scale, setting.appearance);
        picture.window().setContentView(std::make_unique<Slider>(Rect{{}, {84, 28}}));
        auto& pan = static_cast<Slider&>(*picture.window().contentView());
        setUpPan(QkSliderCell::replacedCellInSlider(pan));
        const auto columns = [&](double position, Color color) {
            pan.setDoubleValue(position);
            return along(Pixels(picture.draw()), setting.scale, {0, 14}, true, color);
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
        PictureWindow picture({160, 236}, setting.scale, setting.appearance);
        Window& window = picture.window();
        window.setContentView(std::make_unique<View>(Rect{{}, {160, 236}}));
        auto& fader =
            window.contentView()->addSubview(std::make_unique<Slider>(Rect{{}, {64, 236}}));
        setUpFader(QkSliderCell::replacedCellInSlider(fader));
        Event press;
        press.type = EventType::LeftMouseDown;
        press.clickCount = 1;
        press.locationInWindow = {40, 236 - 58};  // the middle of the cap
        press.window = &window;
        Application::current().postEvent(press);
        const Pixels pixels(picture.draw());
        const auto across = along(pixels, setting.scale, {0, 48}, true, colors.tip);
        ASSERT_FALSE(across.empty());
        EXPECT_EQ(across.front() >= std::lround(52 * setting.scale), true) << "beside the cap";
        // Between its sides and the text, and no rows but those of the plate.
        for (const auto column : {static_cast<float>(across.front()) / setting.scale + 4.5F,
                                  static_cast<float>(across.back()) / setting.scale - 4.5F}) {
            const auto rows = along(pixels, setting.scale, {column, 0}, false, colors.tip);
            ASSERT_EQ(rows.size(), static_cast<std::size_t>(std::lround(24 * setting.scale)));
            EXPECT_EQ(rows.back() - rows.front() + 1, std::lround(24 * setting.scale));
            EXPECT_NEAR(rows.front() + rows.back() + 1, 2 * 58 * setting.scale, 2.01);
        }
        press.type = EventType::LeftMouseUp;
        Application::current().postEvent(press);
        EXPECT_TRUE(
            along(Pixels(picture.draw()), setting.scale, {0, 48}, true, colors.tip).empty());
    }
}

}  // namespace
}  // namespace veltra::testing
