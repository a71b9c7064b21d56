// SPDX-License-Identifier: MIT
#include "veltra/qt/painter_canvas.h"

#include "veltra/qt/testing/on_qt.h"

namespace veltra {
namespace {

using testing::OnQt;

constexpr std::uint32_t kRed = 0xFFFF0000;

std::shared_ptr<const Image> drawn(float scale, const std::function<void(Canvas&)>& draw) {
    return Image::drawn({20.0F, 20.0F}, scale, draw);
}

// Of red pixels, and of those that are red in part.
std::pair<std::int32_t, std::int32_t> counts(const Image& image) {
    std::pair<std::int32_t, std::int32_t> result;
    for (std::int32_t i = 0; i < 1600; ++i) {
        const std::uint32_t pixel = image.pixelAt(i % 40, i / 40);
        result.first += pixel == kRed;
        result.second += pixel != kRed && pixel != 0;
    }
    return result;
}

class CanvasOfQt : public OnQt {
protected:
    CanvasOfQt() { host(std::make_unique<testing::Probe>(Rect{{}, {10, 10}})); }
};

TEST_F(CanvasOfQt, AlignedRectanglesHaveNoSoftEdgeAtAnyScale) {
    for (const float scale : {1.0F, 1.25F, 1.5F, 1.75F, 2.0F}) {
        const Rect rect{{3.3F, 4.6F}, {9.1F, 0.2F}};
        Rect aligned;
        const auto image = drawn(scale, [&](Canvas& canvas) {
            aligned = canvas.alignedToDevice(rect);
            canvas.fillRect(aligned, Color::fromRgb(0xFF0000));
        });
        const auto [red, soft] = counts(*image);
        EXPECT_EQ(soft, 0) << scale;
        const auto width = std::lround(12.4F * scale) - std::lround(3.3F * scale);
        EXPECT_EQ(red, width) << scale;  // one row: never thinner than a pixel
        EXPECT_NEAR(aligned.size.height * scale, 1.0F, 1e-4F);
    }
}

TEST_F(CanvasOfQt, LinesFillWholePixelsAndRoundShapesHaveSoftEdges) {
    const Color red = Color::fromRgb(0xFF0000);
    for (const float scale : {1.0F, 1.25F, 1.5F, 1.75F, 2.0F}) {
        const float pixel = 1.0F / scale;
        const Rect rect{{2 * pixel, 3 * pixel}, {10 * pixel, 6 * pixel}};
        const auto lines = drawn(scale, [&](Canvas& canvas) {
            canvas.strokePath(Path::rect(rect.inset(pixel, pixel)), red, 2 * pixel);
        });
        EXPECT_EQ(counts(*lines), std::pair(10 * 6 - 6 * 2, 0)) << scale;
        const std::function<void(Canvas&)> rounds[] = {
            [&](Canvas& canvas) { canvas.fillPath(Path::ellipse(rect), red); },
            [&](Canvas& canvas) { canvas.strokePath(Path::ellipse(rect), red, pixel); }};
        for (const auto& round : rounds)
            EXPECT_GT(counts(*drawn(scale, round)).second, 4) << scale;
    }
}

TEST_F(CanvasOfQt, StatesKeepClipAndSmoothing) {
    const auto image = drawn(1.0F, [](Canvas& canvas) {
        {
            const Canvas::StateScope scope(canvas);
            canvas.enter({{5, 5}, {10, 10}}, false);
            canvas.fillRect({{-5, 0}, {10, 2}}, Color::fromRgb(0xFF0000));  // at the foot
        }
        canvas.fillRect({{0, 0}, {1, 1}}, Color::fromRgb(0xFF0000));
    });
    EXPECT_EQ(image->pixelAt(0, 0), kRed);
    EXPECT_EQ(image->pixelAt(5, 14), kRed);
    EXPECT_EQ(image->pixelAt(9, 13), kRed);
    for (const auto& [x, y] : {std::pair{4, 14}, {10, 14}, {5, 12}, {5, 15}})
        EXPECT_EQ(image->pixelAt(x, y), 0U) << x << ' ' << y;
}

TEST_F(CanvasOfQt, PartsOfImagesAreCopiedPixelByPixel) {
    const auto stripes = drawn(2.0F, [](Canvas& canvas) {
        for (int i = 0; i < 40; i += 2)
            canvas.fillRect({{0.5F * static_cast<float>(i), 0}, {0.5F, 20}},
                            Color::fromRgb(0xFF0000));
    });
    const auto image = drawn(2.0F, [&](Canvas& canvas) {
        canvas.drawImage(*stripes, {{3, 0}, {4, 4}}, {{6, 2}, {4, 4}});
        canvas.drawImage(*stripes, {{18, 0}, {4, 1}}, {{6, 10}, {4, 1}});  // half of it is outside
    });
    for (std::int32_t x = 0; x < 40; ++x) {
        const bool isIn = x >= 12 && x < 20;
        EXPECT_EQ(image->pixelAt(x, 6), isIn && x % 2 == 0 ? kRed : 0U) << x;
        EXPECT_EQ(image->pixelAt(x, 20), x >= 12 && x < 16 && x % 2 == 0 ? kRed : 0U) << x;
    }
}

// Of another port than Qt's.
struct Grey final : Image {
    Size size() const noexcept override { return {2, 2}; }
    float scale() const noexcept override { return 1.0F; }
    std::uint32_t pixelAt(std::int32_t, std::int32_t) const noexcept override { return 0xFF808080; }
    bool writePng(const std::string&) const override { return false; }
};

TEST_F(CanvasOfQt, ForeignImagesAreStretchedMovedAndFaded) {
    const auto image = drawn(1.0F, [](Canvas& canvas) {
        canvas.drawImage(Grey(), {{}, {2, 2}}, {{4, 4}, {8, 8}}, 0.5F);
        canvas.drawImage(Grey(), {{}, {2, 2}}, {{0.5F, 0.5F}, {2, 2}});
    });
    const auto alphaAt = [&](std::int32_t x, std::int32_t y) {
        return image->pixelAt(x, y) >> 24U;
    };
    EXPECT_NEAR(alphaAt(8, 8), 128, 1);
    EXPECT_EQ(image->pixelAt(1, 1), 0xFF808080U);
    EXPECT_EQ(alphaAt(3, 3) + alphaAt(12, 12), 0U);
}

TEST_F(CanvasOfQt, WhereNoClipIsLeftNothingIsDrawn) {
    const auto image = drawn(1.0F, [](Canvas& canvas) {
        for (const float x : {0.0F, 10.0F})
            canvas.clipTo({{x, 0}, {10, 20}});
        const Rect rect{{0.5F, 0.5F}, {19, 19}};
        const Path path = Path::roundedRect(rect, 2.0F);
        canvas.fillRect({{}, {20, 20}}, kBlack);
        canvas.fillRect(rect, kBlack);
        canvas.fillPath(path, kBlack);
        canvas.fillPath(path, LinearGradient{kBlack, kWhite, {0, 0}, {20, 20}});
        canvas.strokePath(path, kBlack, 2.0F);
        canvas.drawImage(Grey(), {{}, {2, 2}}, rect);
        canvas.drawText({"MM", Font::systemFont(12.0F), kBlack}, rect, TextPlacement::Center);
    });
    for (std::int32_t i = 0; i < 400; ++i)
        EXPECT_EQ(image->pixelAt(i % 20, i / 20), 0U) << i;
}

TEST_F(CanvasOfQt, TextsStandWhereTheyArePlacedAndEndWithTheirRoom) {
    const auto rows = [](TextPlacement placement, float width) {
        StyledText text{"HHH", Font::systemFont(10.0F), kBlack};
        const auto image = drawn(2.0F, [&](Canvas& canvas) {
            canvas.drawText(text, {{4, 2}, {width, text.size().height}}, placement);
        });
        std::vector<std::uint32_t> all;
        all.reserve(1600);
        for (std::int32_t i = 0; i < 1600; ++i)
            all.push_back(image->pixelAt(i % 40, i / 40));
        return all;
    };
    const auto whole = rows(TextPlacement::Top, 16.0F);
    EXPECT_EQ(whole, rows(TextPlacement::Center, 16.0F)) << "there is no more than its height";
    const auto cut = rows(TextPlacement::Top, 6.0F);
    for (std::size_t i = 0; i < 1600; ++i)
        EXPECT_EQ(cut[i], i % 40 < 20 ? whole[i] : 0U) << i;
    EXPECT_NE(cut, whole);
}

// Capitals stand in the middle, with their foot on a border between pixels.
TEST_F(CanvasOfQt, CapitalsAreCenteredAndStandOnAPixel) {
    for (int halves = 20; halves < 32; ++halves) {
        const float size = static_cast<float>(halves) / 2.0F;
        const auto image = drawn(2.0F, [size](Canvas& canvas) {
            canvas.drawText({"H", Font::systemFont(size, FontWeight::Bold), kBlack}, {{}, {20, 20}},
                            TextPlacement::Capitals);
        });
        std::int32_t top = 40;
        std::int32_t foot = 0;
        std::uint32_t darkest = 0;  // of the lowest row
        for (std::int32_t y = 0; y < 40; ++y) {
            std::uint32_t row = 0;
            for (std::int32_t x = 0; x < 40; ++x)
                row = std::max(row, image->pixelAt(x, y) >> 24U);
            if (row < 16) continue;
            top = std::min(top, y);
            foot = y + 1;
            darkest = row;
        }
        EXPECT_NEAR(top + foot, 40.0, 2.01) << size;
        EXPECT_GT(darkest, 230U) << size;
    }
}

}  // namespace
}  // namespace veltra
