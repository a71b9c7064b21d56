// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/detail/object_format.h"

#include "veltra/base/string_object_text.h"

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace veltra {
namespace {

std::string formatted(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    LocalTextBuffer<8> text;
    appendObjectFormat(text, format, arguments);
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

TEST(ObjectFormat, AgreesWithPrintf) {
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

TEST(ObjectFormat, ObjectsNullsAndCounts) {
    const VLString* object = createString(std::string_view("\xE2\x99\xAA%d"));
    EXPECT_EQ(formatted("<%@> %d", object, 5), "<\xE2\x99\xAA%d> 5");
    EXPECT_EQ(formatted("%10.1@|%2$d", object, 5), "\xE2\x99\xAA%d|5");
    EXPECT_EQ(formatted("%@ %s %ls", nullptr, nullptr, nullptr), "(null) (null) (null)");
    int count = 7;
    EXPECT_EQ(formatted("ab%ncd%d", &count, 5), "abcd5");
    EXPECT_EQ(count, 7);
    releaseString(object);
}

TEST(ObjectFormat, WhatIsNoConversionIsCopiedAndTakesNoArgument) {
    EXPECT_EQ(formatted("50% |%", 5), "50% |%");
    for (const char* format : {"%", "%-", "%5", "%5.", "%ll", "%y %k", "%*", "%1$", "%99999999999d",
                               "%.99999999999d", "%65$d", "%hs", "%Ls", "%l@", "%zf", "%\n"})
        EXPECT_EQ(formatted(format, 5), format);
    EXPECT_EQ(formatted("%y %d", 5), "%y 5");
    EXPECT_EQ(formatted("%1$d %1$s", 5), "5 %1$s") << "one argument, two types";
    std::string many;
    for (int index = 0; index < 66; ++index)
        many += "%65$d";
    EXPECT_EQ(formatted(many.c_str()), many);
    const wchar_t noCharacter[] = {static_cast<wchar_t>(0x7FFFFFFF), 0};
    EXPECT_EQ(formatted("%ls %d", noCharacter, 5), "%ls 5");
}

}  // namespace
}  // namespace veltra
