// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_image.h"

#include "veltra/qt/qt_port.h"
#include "veltra/qt/testing/on_qt.h"

#include <filesystem>

namespace veltra::testing {
namespace {

TEST_F(OnQt, PicturesKeepTheirPixelsAndScale) {
    installQtPort();
    const auto draw = [](Canvas& canvas) {
        canvas.fillRect({{0, 0}, {1, 1}}, Color::fromRgb(0x336699));
    };
    const auto image = Image::drawn({2, 1}, 2.0F, draw);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixelAt(1, 1), 0xFF336699U);
    EXPECT_EQ(image->pixelAt(2, 0), 0U);
    EXPECT_EQ(toQImage(*image).format(), QImage::Format_ARGB32_Premultiplied);
    const auto opaque = Image::drawn({1, 1}, 2.0F, draw);
    EXPECT_EQ(toQImage(*opaque).format(), QImage::Format_RGB32);
    EXPECT_EQ(fromQImage(toQImage(*opaque))->size(), (Size{1, 1}));
    const auto foot = Image::drawn({1, 2}, 1.0F, [](Canvas& canvas) {
        canvas.fillRect({{0, 1}, {1, 1}}, kBlack);
    });
    EXPECT_EQ(foot->pixelAt(0, 0), 0U) << "clear in its first row alone";
    const std::string path = ::testing::TempDir() + "picture.png";
    ASSERT_TRUE(image->writePng(path));
    const auto read = Image::load(path, 4.0F);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->size(), (Size{1, 0.5F}));
    EXPECT_EQ(read->pixelAt(1, 1), 0xFF336699U);
    std::filesystem::remove(path);
    EXPECT_EQ(Image::load(path), nullptr);
}

}  // namespace
}  // namespace veltra::testing
