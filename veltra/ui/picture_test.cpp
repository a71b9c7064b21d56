// SPDX-License-Identifier: MIT
#include "veltra/ui/picture.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

TEST(Pictures, ShowTheWholeWindowAtTheirScaleAndTheme) {
    const ScriptedPort port;
    class Sheet final : public View {
    public:
        using View::View;
        void drawRect(Canvas& canvas, const Rect&) override {
            canvas.fillRect({{0, 0}, {10, 5}}, systemColor(SystemColor::Label));
        }
    };
    PictureWindow picture({100, 50}, 1.5F, Appearance::Dark);
    picture.window().setContentView(std::make_unique<Sheet>(Rect{{}, {100, 50}}));
    const auto image = std::dynamic_pointer_cast<const RecordedImage>(picture.draw());
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (Size{100, 50}));
    ASSERT_EQ(image->canvas.calls.size(), 1U);
    EXPECT_EQ(image->canvas.calls[0].rect, (Rect{{0, 45}, {10, 5}}));
    EXPECT_EQ(image->canvas.calls[0].color, systemColor(SystemColor::Label, Appearance::Dark));
}

}  // namespace
}  // namespace veltra::testing
