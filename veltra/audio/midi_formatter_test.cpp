// SPDX-License-Identifier: MIT
#include "veltra/audio/midi_formatter.h"

#include "veltra/audio/midi_formatter_c.h"
#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(MIDIFormatter, EachStyleWritesEveryKindOfNumberAndNothingElse) {
    const PropertyValue values[] = {-5, 0, 5, 14, 15, 16, 59, 60, 61, 127, true, -7.9, "60", {}};
    const char* const texts[] = {
        "-5|0|5|14|15|16|59|60|61|127|1|-7|||",
        "-5|\u00B1 0|+5|+14|+15|+16|+59|+60|+61|+127|+1|-7|||",
        "0x0FFFFFFFB|0x00|0x05|0x0E|0x F|0x10|0x3B|0x3C|0x3D|0x7F|0x01|0x0FFFFFFF9|||",
        "G-3|C-2|F-2|D-1|D#-1|E-1|B2|C3|C#3|G8|C#-2|F-3|||", "||||||||||||||"};
    EXPECT_EQ(QKMIDIFormatter().noteStyle(), QKMIDIFormatter::kDecimal);
    for (std::int32_t style = 0; style < 5; ++style) {
        QKMIDIFormatter formatter;
        formatter.setNoteStyle(style);
        std::string text;
        for (const PropertyValue& value : values)
            text += formatter.stringForObjectValue(value) + "|";
        char ofC[16];
        for (const std::int32_t value : {-5, 0, 15, 60}) {
            const std::string whole = formatter.stringForObjectValue(value);
            EXPECT_EQ(VLMIDIText(value, style, ofC, sizeof ofC), whole.size());
            EXPECT_EQ(ofC, whole);
        }
        EXPECT_EQ(text, texts[style]);
    }
    char cut[] = "????";
    EXPECT_EQ(VLMIDIText(0, kVLMIDISigned, cut, 2), 4U);  // no half of a character
    EXPECT_STREQ(cut, "");
    EXPECT_EQ(VLMIDIText(0, kVLMIDISigned, nullptr, 0), 4U);
    EXPECT_EQ(QKMIDIFormatter().stringForObjectValue(1e300), "2147483647");
    EXPECT_EQ(QKMIDIFormatter().stringForObjectValue(4294967295U), "-1");
}

}  // namespace
}  // namespace veltra
