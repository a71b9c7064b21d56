#include "veltra/platform/linux/terminal_text.h"

#include <array>
#include <utility>

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(TerminalText, NeutralisesWhatATerminalWouldObey) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"plain \xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E",
         "plain \xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E"},
        {"a\nb\tc\r\x07\x7F", "a\r\nb c^M^G^?"},
        {std::string_view("\0", 1), "^@"},
        {"\xC2\x9B"
         "31m \x9B",
         "?31m ?"},  // control characters beyond ASCII
        {"\xE2\x80\xAE"
         "x\xE2\x81\xA6",
         "?x?"},                                           // turn the direction
        {"\xC3", "?"},                                     // cut short
        {"\xC0\x8A\xE0\x80\x8A", "?????"},                 // over-long line feeds
        {"\xED\xA0\x80\xF4\x90\x80\x80\xFF", "????????"},  // surrogate, beyond the last code
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
