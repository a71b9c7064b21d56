// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/controls/number_editor/number_display.h"

namespace veltra::testing {
namespace {

constexpr float kMargin = 8.0F;

// Three groups on glass, in a window with a margin of 8 points around it.
struct Shown : CardPicture {
    explicit Shown(const Setting& setting)
        : CardPicture({164.0F + 2 * kMargin, 40.0F + 2 * kMargin}, setting),
          display(add<NumberDisplay>(Rect{{kMargin, kMargin}, {164, 40}})) {
        DfNumberEditorControl& editor = display.editor();
        editor.setEditorCellCount(3);
        for (std::int32_t i = 0; i < 3; ++i) {
            editor.setPlaceHolderStringOfEditorCellAtIndex(i == 1 ? "0" : "0000", i);
            editor.setLeadingZerosOfEditorCellAtIndex(i == 1 ? 0 : 4, i);
            editor.setShadowEightsOfEditorCellAtIndex(i == 1 ? 1 : 4, i);
        }
        display.layOut();
    }
    DfNumberEditorControl& editor() { return display.editor(); }

    NumberDisplay& display;
};

TEST(NumberEditorPictures, DigitsThatChangeMoveNothingElse) {
    for (const Setting& setting : settings()) {
        Shown shown(setting);
        QkNumberEditorCell& ticks = *shown.editor().editorCellAtIndex(2);
        const Rect frame = shown.editor().convertRectToView(ticks.cellFrame(), nullptr);
        const auto left = static_cast<std::int32_t>(std::floor(frame.minX() * setting.scale));
        ticks.setIntValue(456);
        const Pixels before = shown.draw();
        ticks.setIntValue(1111);
        const Pixels after = shown.draw();
        const auto [changed, leftmost] = before.differences(after);
        EXPECT_GT(changed, 20);
        EXPECT_GE(leftmost, left) << setting.scale;
    }
}

// The ground of editing has sharp sides, and the ring runs around the glass in whole pixels.
TEST(NumberEditorPictures, GroundAndRingAreSharpAtEveryScale) {
    for (const Setting& setting : settings()) {
        Shown shown(setting);
        shown.window.keyboardArrives(true);
        ASSERT_TRUE(shown.editor().showsFocus());
        const Theme& colors = theme(setting.appearance);
        const auto columnsOf = [&](Color color) {
            return shown.draw().inRow(20.0F + kMargin, color);
        };
        const auto ring = columnsOf(colors.accent);
        const auto width = static_cast<std::size_t>(std::round(2 * setting.scale - 0.01F));
        ASSERT_EQ(ring.size(), 2 * width) << setting.scale;
        EXPECT_EQ(ring.front(), std::lround(4 * setting.scale)) << setting.scale;
        EXPECT_EQ(ring.back() + 1, std::lround((164 + 12) * setting.scale)) << setting.scale;

        shown.editor().startEditingForCell(shown.editor().editorCellAtIndex(1));
        const auto line = columnsOf(systemColor(SystemColor::Grid, setting.appearance));
        const Rect frame = shown.editor().convertRectToView(
            shown.editor().editorCellAtIndex(1)->cellFrame(), nullptr);
        ASSERT_FALSE(line.empty()) << setting.scale;
        EXPECT_EQ(line.front(), std::lround((frame.minX() + 1.5F) * setting.scale));
        EXPECT_EQ(line.back() + 1, std::lround((frame.maxX() - 1.5F) * setting.scale));
    }
}

}  // namespace
}  // namespace veltra::testing
