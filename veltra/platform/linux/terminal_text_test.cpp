#include "veltra/platform/linux/terminal_text.h"

#include <array>

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(TerminalText, NeutralisesWhatATerminalWouldObey) {
    // In turn: controls; controls beyond ASCII and changes of direction; what is cut short, over
    // long, a surrogate or beyond the last code.
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E", "\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E"},
        {{"a\nb\tc\r\x07\x7F\0", 9}, "a\r\nb c^M^G^?^@"},
        {"\xC2\x9B\x33\x31m \x9B\xE2\x80\xAEx\xE2\x81\xA6", "?31m ??x?"},
        {"\xC0\x8A\xE0\x80\x8A\xED\xA0\x80\xF4\x90\x80\x80\xFF\xC3", "??????????????"},
    };
    for (const auto& [text, shown] : cases) {
        std::array<char, 64> out{};
        EXPECT_EQ(std::string_view(out.data(), terminalText(text, out)), shown);
    }
    std::array<char, 3> tight{};
    EXPECT_EQ(terminalText("ab\xC3\xA9", tight), 2U);
    EXPECT_EQ(terminalText("ab\n", tight), 2U);
}

}  // namespace
}  // namespace veltra
