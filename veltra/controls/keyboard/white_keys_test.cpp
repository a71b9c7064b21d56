// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/white_keys.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/controls/keyboard/note_name.h"

namespace veltra {
namespace {

TEST(WhiteKeys, AndNotesLeadToEachOtherFromEveryFirstNote) {
    const std::string black = ".#.#..#.#.#.";
    for (std::int32_t first = 0; first < 128; ++first) {
        std::int32_t key = -1;
        for (std::int32_t note = 0; note < 128; ++note) {
            const bool isBlack = black[static_cast<std::size_t>(note % 12)] == '#';
            EXPECT_EQ(VLIsBlackKey(note), isBlack);
            if (note >= first && !isBlack) {
                ++key;
                EXPECT_EQ(VLNoteForWhiteKey(key, first), note) << first;
            }
            EXPECT_EQ(VLWhiteKeyForNote(note, first), key) << first << ' ' << note;
        }
        EXPECT_EQ(VLWhiteKeyCount(first), key + 1);
        EXPECT_EQ(VLNoteForWhiteKey(key + 1, first), -1);
        EXPECT_EQ(VLNoteForWhiteKey(-1, first), -1);
    }
    for (const std::int32_t none : {-1, 128, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(VLNoteForWhiteKey(0, none), -1);
        EXPECT_EQ(VLWhiteKeyForNote(60, none), -1);
        EXPECT_EQ(VLWhiteKeyForNote(none, 0), -1);
        EXPECT_EQ(VLWhiteKeyCount(none), 0);
        EXPECT_FALSE(VLIsBlackKey(none));
    }
}

TEST(NoteNames, CountOctavesFromTheOneOfMiddleC) {
    EXPECT_EQ(noteName(0), "C\u22122");
    EXPECT_EQ(noteName(127), "G8");
    EXPECT_EQ(noteName(54), "F#2");
    EXPECT_EQ(noteName(59, 4), "B3");
    EXPECT_EQ(noteName(-1) + noteName(128), "");
}

}  // namespace
}  // namespace veltra
