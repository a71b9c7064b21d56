// SPDX-License-Identifier: MIT
#include "veltra/ui/styled_text.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

TEST(TextThatIsTooLong, LosesItsEndBetweenCharacters) {
    const ScriptedPort port;
    const StyledText text{"Gru\u00DFformel", Font::systemFont(10.0F), {}};
    EXPECT_EQ(text.truncatedTo(55.0F).string, text.string);
    EXPECT_EQ(text.truncatedTo(40.0F).string, "Gru\u00DF\u2026");  // three bytes are the ellipsis
    EXPECT_EQ(text.truncatedTo(35.0F).string, "Gru\u2026");
    EXPECT_EQ(text.truncatedTo(0.0F).string, "\u2026");
    EXPECT_EQ(text.truncatedTo(40.0F, TextTruncation::Middle).string, "Gru\u2026el");
    const StyledText name{"abcdefghijklmnopqrstuvwxyz", Font::systemFont(10.0F), {}};
    EXPECT_EQ(name.truncatedTo(115.0F, TextTruncation::Middle).string,
              "abcdefghijk\u2026rstuvwxyz");
}

TEST(Fonts, KeepWhatTheyAreWhenTheirFamilyIsLookedUp) {
    const ScriptedPort port;
    const auto font = Font::fontWithName("Known", 12.0F, FontWeight::Bold, true);
    ASSERT_TRUE(font);
    EXPECT_EQ(*font, (Font{"Known", 12.0F, FontWeight::Bold, true}));
    EXPECT_EQ(font->withSize(9.5F).weight, FontWeight::Bold);
    EXPECT_EQ(Font::fontWithName("", 9.0F), Font::systemFont(9.0F));
    EXPECT_FALSE(Font::fontWithName("Unknown", 12.0F) || Font::fontWithName("Known", 0.0F));
}

}  // namespace
}  // namespace veltra::testing
