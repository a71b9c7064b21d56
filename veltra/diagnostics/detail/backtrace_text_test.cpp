// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/backtrace_text.h"

#include "veltra/base/testing/prelude.h"

#include <gmock/gmock.h>

namespace veltra::detail {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string linesOf(const std::vector<std::string>& names) {
    LocalTextBuffer<64> text;
    BacktraceLines lines(text);
    for (const std::string& name : names)
        if (!lines.add(name)) break;
    return std::string(text.view());
}

std::string repeated(int count, const std::string& text) {
    return count == 0 ? "" : text + repeated(count - 1, text);
}

TEST(BacktraceLines, BeginAfterWhatOnlyRaisesAndEndWithMain) {
    const std::string raising[] = {
        "+[NSException raise:format:]",
        "-[NSAssertionHandler handleFailureInMethod:]",
        "veltra::raiseException(int)",
        "veltra::Exception::raise()",
        "veltra::VLBacktracingException::raise()",
    };
    for (const std::string& first : raising)
        for (const std::string& second : raising)
            EXPECT_EQ(linesOf({first, second, "f()", first, "g()"}),
                      "\tf()\n\t" + first + "\n\tg()\n");
    for (const std::string like : {"-[NSException raise]", "+[NSExceptionX", "x +[NSException ",
                                   "veltra::ExceptionFactory()", "raiseException(int)"})
        EXPECT_EQ(linesOf({like}), "\t" + like + "\n");
    EXPECT_EQ(linesOf({"f", "main", "g"}), "\tf\n\tmain\n");
    EXPECT_EQ(linesOf({"NSApplicationMain", "g"}), "\tNSApplicationMain\n");
    EXPECT_EQ(linesOf({"host::main", "main()", "mainly"}), "\thost::main\n\tmain()\n\tmainly\n");
    EXPECT_EQ(linesOf({raising[0], raising[4]}), "");
}

TEST(BacktraceLines, AreAHundredAndFiftyWithoutWhatWasLeftOut) {
    std::vector<std::string> names(7, "veltra::Exception::raise()");
    names.insert(names.end(), 150, "f");
    EXPECT_EQ(linesOf(names), repeated(150, "\tf\n"));
    for (const char* more : {"main", "g"}) {
        names.emplace_back(more);
        EXPECT_EQ(linesOf(names), repeated(150, "\tf\n") + "\t...more...\n");
    }
}

TEST(Calls, AreReadBackFromTheirText) {
    const auto parsed = [](std::string_view text) {
        Calls calls;
        calls.parse(text);
        const auto found = calls.addresses();
        return std::vector<std::uintptr_t>(found.begin(), found.end());
    };
    const std::uintptr_t some[] = {1, 0xABCDEF, UINTPTR_MAX};
    LocalTextBuffer<64> text;
    appendStack(text, some);
    EXPECT_THAT(parsed(text.view()), ElementsAre(1u, 0xABCDEFu, UINTPTR_MAX));
    EXPECT_THAT(parsed("0x10   0x20    0x30  "), ElementsAre(0x10u, 0x20u, 0x30u));
    EXPECT_THAT(parsed("0x10  --help  0x  0xg  0x-1  12  0x1ffffffffffffffff  0x2"),
                ElementsAre(0x10u, 2u));
    for (const char* nothing : {"", " ", "  ", "   ", "0x10 0x20", "-e/bin/sh"})
        EXPECT_THAT(parsed(nothing), IsEmpty()) << nothing;
    EXPECT_EQ(parsed(repeated(600, "0x1  ")).size(), Calls::kMost);
}

}  // namespace
}  // namespace veltra::detail
