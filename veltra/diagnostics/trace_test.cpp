// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/trace.h"

#include "veltra/diagnostics/indent_stack.h"
#include "veltra/diagnostics/trace_stream.h"

#include <climits>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace veltra {
namespace {

std::string indentation() {
    std::ostringstream captured;
    std::streambuf* const before = std::cout.rdbuf(captured.rdbuf());
    IndentToCout();
    std::cout.rdbuf(before);
    return captured.str();
}

TEST(Trace, TheInnermostScopeDecidesHowManySpacesAreWrittenAndItsDepthStopsAtTheLimitsOfAnInt) {
    EXPECT_EQ(indentation(), "");
    const std::pair<int, std::size_t> steps[] = {
        {3, 3},       {4, 7},          {-7, 0},      {-1, 0},      {2048, 2047}, {2, 2048},
        {2951, 2048}, {INT_MAX, 2048}, {INT_MIN, 0}, {INT_MIN, 0}, {INT_MAX, 0}};
    for (const auto& [delta, spaces] : steps) {
        ASSERT_TRUE(traceIndents().push(delta));
        EXPECT_EQ(indentation(), std::string(spaces, ' '));
    }
    EXPECT_EQ(traceIndents().top(), -1);
    EXPECT_EQ(traceIndents().capacity(), 16U);
}

}  // namespace
}  // namespace veltra
