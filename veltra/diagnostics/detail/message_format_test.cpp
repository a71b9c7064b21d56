// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/message_format.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/processor/testing/guarded_memory.h"

namespace veltra::detail {
namespace {

std::string formatted(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    LocalTextBuffer<8> text;
    appendMessage(text, format, Objects::Yes, arguments);
    va_end(arguments);
    return std::string(text.view());
}

// printf is the judge of everything that it knows.
template <typename... Arguments>
void agrees(const char* format, Arguments... arguments) {
    char expected[512];
    const int size = std::snprintf(expected, sizeof expected, format, arguments...);
    EXPECT_EQ(formatted(format, arguments...),
              std::string_view(expected, static_cast<std::size_t>(size)))
        << format;
}

TEST(MessageFormat, AgreesWithPrintf) {
    for (const char* format :
         {"%d", "%i|", "|%+5d", "%-8dx", "%08d", "% d", "%x", "%#X", "%o", "%u", "%.0d", "%8.3d",
          "%hhd", "%hd", "%hhu", "%c", "%'d", "%d%%", "%-+ #05d"})
        for (const int value : {0, 1, -1, 65, 1000, std::numeric_limits<int>::min()})
            agrees(format, value);
    for (const char* format :
         {"%f", "%e", "%G", "%a", "%10.3f", "%-12.1e|", "%+.0f", "%#.0f", "%lf"})
        for (const double value : {0.0, -0.0, 1.5, -1e300, std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::quiet_NaN()})
            agrees(format, value);
    agrees("%ld %lu %lx", -5L, 6UL, 7UL);
    agrees("%lld %llu %qd", -5LL, ~0ULL, 1LL << 40);
    agrees("%jd %zu %td", std::intmax_t{-9}, std::size_t{10}, std::ptrdiff_t{-11});
    agrees("%hhd %hhu %hd %hX %ho", 200, 456, 70000, -1, -1);
    agrees("%Lf %.2Lg", 1.25L, -2.5L);
    agrees("%s|%10s|%-10s|%.2s|%.*s", "abc", "abc", "abc", "abc", 1, "abc");
    agrees("%ls %lc %S %C", L"wide", wint_t{L'w'}, L"wide", wint_t{L'w'});
    agrees("%p %p", static_cast<const void*>("x"), static_cast<const void*>(nullptr));
    agrees("%*d|%-*d|%*d|%.*f|%.*f|%*.*s", 6, 1, 6, 2, -6, 3, 2, 1.0, -1, 1.0, 8, 2, "abc");
    agrees("%2$s %1$s %2$.1s", "one", "two");
    agrees("%3$*1$.*2$f %3$g", 9, 3, 2.5);
    agrees("%2$d %1$s %2$d %1$s", "text", 7);
    agrees("%d %s %f %c %u %ld %g %x %s", 1, "two", 3.0, '4', 5U, 6L, 7.0, 8U, "nine");
}

TEST(MessageFormat, ObjectsNullsAndCounts) {
    const VLString* object = createString(std::string_view("\xE2\x99\xAA%d"));
    EXPECT_EQ(formatted("<%@> %d", object, 5), "<\xE2\x99\xAA%d> 5");
    EXPECT_EQ(formatted("%10.1@|%2$d", object, 5), "\xE2\x99\xAA%d|5");
    EXPECT_EQ(formatted("%@ %s %ls", nullptr, nullptr, nullptr), "(null) (null) (null)");
    int count = 7;
    EXPECT_EQ(formatted("ab%ncd%lln%d", &count, &count, 5), "abcd5");
    EXPECT_EQ(count, 7);
    releaseString(object);
}

TEST(MessageFormat, ConversionsOfPortedCodeTakeTheirArguments) {
    const char* const text = "text";
    const wchar_t* const wide = L"\u00FC\u266A";
    EXPECT_EQ(formatted("%hs %hhs %hc %hhc|%s", text, text, 'c', 'd', text), "text text c d|text");
    EXPECT_EQ(formatted("%lC|%lS|%C|%S|%d", wint_t{0xE9}, wide, wint_t{0x1F3B5}, wide, 5),
              "\xC3\xA9|\xC3\xBC\xE2\x99\xAA|\xF0\x9F\x8E\xB5|\xC3\xBC\xE2\x99\xAA|5");
    EXPECT_EQ(formatted("%D %U %O %d", -1, 2U, 9, 4), "-1 2 11 4");
}

TEST(MessageFormat, WideTextIsUtf8WhoseCharactersStayWhole) {
    const wchar_t* const wide = L"\u00FC\u266A!";
    EXPECT_EQ(formatted("%7ls|%-7ls|%.4ls|%.5ls|%.0ls", wide, wide, wide, wide, wide),
              " \xC3\xBC\xE2\x99\xAA!|\xC3\xBC\xE2\x99\xAA! |\xC3\xBC|\xC3\xBC\xE2\x99\xAA|");
    const GuardedMemory memory;  // text without an end
    auto* const two = reinterpret_cast<wchar_t*>(memory.at(Place::End, 2 * sizeof(wchar_t)));
    std::copy_n(wide, 2, two);
    EXPECT_EQ(formatted("%.5ls|%.4S|%.0ls", two, two, two + 2), "\xC3\xBC\xE2\x99\xAA|\xC3\xBC|");
    const wchar_t noCharacters[] = {static_cast<wchar_t>(0x7FFFFFFF), 0xD800, 0x10FFFF, 0};
    EXPECT_EQ(formatted("%ls %d", noCharacters, 5), "\uFFFD\uFFFD\U0010FFFF 5");
    EXPECT_EQ(formatted("%lcx", wint_t{0}).size(), 2U);
}

TEST(MessageFormat, FromWhatIsNotUnderstoodOnTheRestIsCopied) {
    EXPECT_EQ(formatted("50% |%", 5), "50% |%");
    for (const char* format :
         {"%", "%-", "%5", "%5.", "%ll", "%y %k", "%*", "%99999999999d", "%.99999999999d", "%129$d",
          "%Ls", "%l@", "%zf", "%hS", "%\n", "%2$s", "%1$*3$d", "%1$.*3$d"})
        EXPECT_EQ(formatted(format, 5), format);
    EXPECT_EQ(formatted("%d%% %y %d%%", 5, 6), "5% %y %d%%");
    EXPECT_EQ(formatted("%1$d: only %3$s, %1$d", 7, 2.5, "text"), "7: only %3$s, %1$d");
    EXPECT_EQ(formatted("%1$d %1$s %1$c", 65), "65 %1$s A") << "one argument, two types";
    EXPECT_EQ(formatted("%1$s %2$*1$d %2$.*1$d %2$d", "text", 5), "text %2$*1$d %2$.*1$d 5");
}

TEST(MessageFormat, NothingIsMadeThatIsCutOffInTheEnd) {
    const std::string mark(kCutMark);
    for (const char* format : {"%900000000d", "%0900000000d", "%.900000000d", "%900000000s",
                               "%.900000000f", "%900000000ls"}) {
        const bool isFloating = std::string_view(format).ends_with('f');
        const std::string text = isFloating ? formatted(format, 1.5) : formatted(format, nullptr);
        EXPECT_TRUE(text.size() == kLongestText && text.ends_with(mark)) << format;
    }
    EXPECT_EQ(formatted("%*d", std::numeric_limits<int>::max(), 1).size(), kLongestText);
    EXPECT_EQ(formatted("%*d|", std::numeric_limits<int>::min(), 1).size(), kLongestText);
    std::string music = "x";
    for (int count = 0; count < 400'000; ++count)
        music += "\xE2\x99\xAA";
    const std::string cut = formatted("%s%d", music.c_str(), 5);
    EXPECT_EQ(cut, music.substr(0, cut.size() - mark.size()) + mark);
    EXPECT_EQ((cut.size() - mark.size()) % 3, 1U) << "a character was split";
    EXPECT_EQ(formatted("%1048575s", "x"), std::string(1048574, ' ').append("x"));
}

}  // namespace
}  // namespace veltra::detail
