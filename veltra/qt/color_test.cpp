// SPDX-License-Identifier: MIT
// Managed colours on screen: the pixels are those that Qt's own reading of the profile makes.
#include "veltra/infrastructure/calibrated_rgb_color.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/testing/on_qt.h"

#include <QColorSpace>
#include <QColorTransform>
#include <QFile>

namespace veltra::testing {
namespace {

// Whether no channel of the two pixels differs by more than one step.
bool isSameColor(QRgb one, QRgb other) {
    return std::abs(qRed(one) - qRed(other)) <= 1 && std::abs(qGreen(one) - qGreen(other)) <= 1 &&
           std::abs(qBlue(one) - qBlue(other)) <= 1 && qAlpha(one) == qAlpha(other);
}

TEST_F(OnQt, ManagedColorsAreDrawnAsTheirProfileSays) {
    installQtPort();
    QFile file(VELTRA_PROFILE);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QColorSpace space = QColorSpace::fromIccProfile(file.readAll());
    ASSERT_TRUE(space.isValid());
    const QColorTransform transform = space.transformationToColorSpace(QColorSpace::SRgb);
    for (int step = 0; step < 6 * 6 * 6; ++step) {
        const float red = static_cast<float>(step % 6) / 5.0F;
        const float green = static_cast<float>(step / 6 % 6) / 5.0F;
        const float blue = static_cast<float>(step / 36) / 5.0F;
        const VLColor color = VLCreateRGBColor(red, green, blue, 1.0F);
        const auto image = Image::drawn({2, 1}, 1.0F, [&color](Canvas& canvas) {
            {
                const Canvas::StateScope scope(canvas);
                set(color, canvas);
                canvas.fillRect({{0, 0}, {1, 1}});
                canvas.strokeLine({1, 0.5F}, {2, 0.5F}, 1.0F);
            }
            EXPECT_EQ(canvas.fillColor(), kBlack);
            EXPECT_EQ(canvas.strokeColor(), kBlack);
        });
        const QRgb expected = transform.map(QColor::fromRgbF(red, green, blue)).rgba();
        EXPECT_PRED2(isSameColor, image->pixelAt(0, 0), expected) << step;
        EXPECT_PRED2(isSameColor, image->pixelAt(1, 0), expected) << step;
    }
}

}  // namespace
}  // namespace veltra::testing
