// SPDX-License-Identifier: MIT
#include "veltra/ui/keyed_coder.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/cell.h"

namespace veltra::testing {
namespace {

TEST(KeyedArchive, GivesBackWhatWasPutIn) {
    KeyedCoder coder;
    coder.encodeColor(Color{0.25F, 0.5F, 1.0F, 0.5F}, "color");
    coder.encodeColor(std::nullopt, "none");
    coder.encodeRect({{1, 2}, {3, 4}}, "rect");
    coder.encodeInt64(INT64_MIN, "low");
    const KeyedCoder read(coder.archive());
    EXPECT_EQ(read.decodeColor("color"), (Color{0.25F, 0.5F, 1.0F, 0.5F}));
    EXPECT_EQ(read.decodeColor("none", kWhite), std::nullopt);
    EXPECT_EQ(read.decodeColor("rect.", kWhite), kWhite);
    EXPECT_EQ(read.decodeRect("rect"), (Rect{{1, 2}, {3, 4}}));
    EXPECT_EQ(read.decodeInt64("low"), INT64_MIN);
    EXPECT_EQ(read.decodeRect("color", {{9, 9}, {9, 9}}).size.width, 1.0F);
    coder.encodeValue(PropertyValue::Array{1, 2, 3}, "three");
    coder.encodeValue(PropertyValue::Array{1, 2, 3, "four"}, "text");
    for (const char* key : {"three", "text", "low", "missing"})
        EXPECT_EQ(coder.decodeRect(key, {{9, 9}, {9, 9}}), (Rect{{9, 9}, {9, 9}})) << key;
}

TEST(KeyedArchive, KeepsObjectsAndFontsApartFromTheirSurroundings) {
    Cell left("12");
    Cell right("abc");
    left.setFont({"Known", 11.5F, FontWeight::Bold, true});
    KeyedCoder coder;
    coder.encodeObject(left, "left");
    coder.encodeObject(right, "right");
    const KeyedCoder read(coder.archive());
    Cell other("x");
    read.decodeObject(other, "left");
    EXPECT_EQ(other.stringValue(), "12");
    EXPECT_EQ(other.font(), left.font());
    read.decodeObject(other, "right");
    EXPECT_EQ(other.stringValue(), "abc");
    read.decodeObject(other, "missing");
    EXPECT_EQ(other.stringValue(), "abc");

    const Font fallback = Font::systemFont(9.0F, FontWeight::Medium);
    coder.encodeValue(PropertyValue::Dictionary{{"SIZE", -3.0}, {"WEIGHT", 99}}, "odd");
    for (const char* key : {"odd", "missing"})
        EXPECT_EQ(coder.decodeFont(key, fallback), fallback);
    coder.encodeInt64(2, "right end");
    EXPECT_EQ(coder.decodeEnum("right end", TextAlignment::Left, TextAlignment::Right),
              TextAlignment::Right);
}

}  // namespace
}  // namespace veltra::testing
