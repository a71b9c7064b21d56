// SPDX-License-Identifier: MIT
#include "key_map.h"

#include "test_layout.h"
#include "veltra/base/testing/prelude.h"

namespace veltra::console::testing {
TEST(KeyMap, KeysLieAsOnAPianoAndShowWhatTheLayoutWrites) {
    const GermanKeys layout;
    const std::string notes = "AWSEDFTGZHUJKOLP;'";
    const std::map<int, std::string> rows{{24, "QWERTZUIOP"}, {38, "ASDFGHJKL;'"}, {52, "YXCVBNM"}};
    const auto labels = labelsOfPositionKeys();
    ASSERT_EQ(labels.size(), notes.size());
    std::size_t found = 0;
    for (const auto& [first, row] : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const auto semitone =
                semitoneOfKey(static_cast<std::uint16_t>(first + static_cast<int>(i)));
            EXPECT_EQ(semitone.value_or(-1), static_cast<int>(notes.find(row[i]) + 1) - 1);
            if (!semitone) continue;
            ++found;
            EXPECT_EQ(labels[static_cast<std::size_t>(*semitone)], std::string(1, row[i]));
        }
    }
    EXPECT_EQ(found, notes.size());
    EXPECT_EQ(labelsOfOctaveKeys().down + labelsOfOctaveKeys().up, "YX");
    EXPECT_EQ(octaveOfKey(52), -1);
    EXPECT_EQ(octaveOfKey(53), 1);
    EXPECT_EQ(octaveOfKey(38), 0);
    EXPECT_FALSE(semitoneOfKey(0));
}

}  // namespace veltra::console::testing
