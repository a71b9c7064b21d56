#include "veltra/audio/midi_formatter.h"

#include <tuple>

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(MIDIFormatter, EachStyleWritesEveryKindOfNumberAndNothingElse) {
    const std::tuple<std::int32_t, PropertyValue, const char*> cases[] = {
        {0, -5, "-5"},
        {0, true, "1"},
        {0, 1e300, "2147483647"},
        {0, -7.9, "-7"},
        {0, 4294967295U, "-1"},
        {1, 0, "\u00B1 0"},
        {1, 5, "+5"},
        {1, -5, "-5"},
        {2, 0, "0x00"},
        {2, 14, "0x0E"},
        {2, 15, "0x F"},
        {2, 16, "0x10"},
        {2, 127, "0x7F"},
        {2, 4096, "0x1000"},
        {2, -1, "0x0FFFFFFFF"},
        {3, 0, "C-2"},
        {3, 23, "B-1"},
        {3, 60, "C3"},
        {3, 61, "C#3"},
        {3, 127, "G8"},
        {3, -1, "B-3"},
        {4, 60, ""},
        {-1, 60, ""},
        {0, "60", ""},
        {0, PropertyValue(), ""},
    };
    EXPECT_EQ(QKMIDIFormatter().stringForObjectValue(60), "60");
    for (const auto& [style, value, text] : cases) {
        QKMIDIFormatter formatter;
        formatter.setNoteStyle(style);
        EXPECT_EQ(formatter.noteStyle(), style);
        EXPECT_EQ(formatter.stringForObjectValue(value), text) << style;
    }
}

}  // namespace
}  // namespace veltra
