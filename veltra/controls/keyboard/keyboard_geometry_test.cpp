// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_geometry.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/controls/keyboard/white_keys.h"

namespace veltra {
namespace {

TEST(KeyboardGeometry, EveryNoteIsFoundWhereItLiesFromEveryFirstNote) {
    for (const std::int32_t first : {0, 21, 53, 61}) {
        for (const KeyRange range : {KeyRange{0, 15}, KeyRange{3, 1}, KeyRange{8, 22}}) {
            const KeyboardGeometry geometry{{868, 210}, range, first};
            float end = 0.0F;
            for (std::int32_t note = 0; note < 128; ++note) {
                const Rect key = geometry.rectOfNote(note);
                const bool isShown =
                    note >= geometry.lowestNote() && note <= geometry.highestNote();
                EXPECT_EQ(key.isEmpty(), !isShown) << note;
                if (!isShown) continue;
                const Point foot{key.center().x, key.maxY() - 1.0F};
                EXPECT_EQ(geometry.noteAt(foot), note);
                if (VLIsBlackKey(note)) {
                    EXPECT_GT(key.maxX(), end);  // over the border of two white keys
                    EXPECT_LT(key.minX(), end);
                } else {
                    EXPECT_NEAR(key.minX(), end, 0.01F);
                    end = key.maxX();
                }
            }
            EXPECT_NEAR(end, 868.0F, 0.01F);
            EXPECT_EQ(geometry.noteAt({-1, 5}), -1);
            EXPECT_EQ(geometry.noteAt({868, 5}), -1);
            EXPECT_EQ(geometry.noteAt({std::nextafter(868.0F, 0.0F), 209}), geometry.highestNote());
            EXPECT_EQ(geometry.noteAt({5, 210}), -1);
        }
    }
}

TEST(KeyboardGeometry, BlackKeysAreShorterAndAllAreStruckHarderFurtherDown) {
    const KeyboardGeometry geometry{
        {700, 100}, {35, 7}, 0};  // an octave from middle C, keys of 100
    EXPECT_EQ(geometry.noteAt({100, 61}), 61);
    EXPECT_EQ(geometry.noteAt({100, 63}), 62);
    EXPECT_EQ(geometry.velocityAt(60, {5, 0}), 1);
    EXPECT_EQ(geometry.velocityAt(60, {5, 100}), 127);
    EXPECT_EQ(geometry.velocityAt(61, {100, 31}), 64);
    EXPECT_EQ(geometry.velocityAt(5, {0, 0}), 1);
    const KeyboardGeometry none{{700, 100}, {0, 0}, 0};
    EXPECT_EQ(none.noteAt({5, 5}), -1);
    for (const KeyRange range : {KeyRange{7, 0}, KeyRange{1, INT32_MAX}})
        EXPECT_EQ((KeyboardGeometry{{700, 100}, range, 0}.highestNote()), -1);
}

}  // namespace
}  // namespace veltra
