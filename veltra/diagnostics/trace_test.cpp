// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/trace.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/indent_stack.h"
#include "veltra/diagnostics/trace_stream.h"

namespace veltra {
namespace {

TEST(Trace, TheInnermostScopeDecidesHowManySpacesAreWrittenAndItsDepthStopsAtTheLimitsOfAnInt) {
    EXPECT_EQ(testing::printed(IndentToCout), "");
    const std::pair<int, std::size_t> steps[] = {
        {3, 3},       {4, 7},          {-7, 0},      {-1, 0},      {2048, 2047}, {2, 2048},
        {2951, 2048}, {INT_MAX, 2048}, {INT_MIN, 0}, {INT_MIN, 0}, {INT_MAX, 0}};
    for (const auto& [delta, spaces] : steps) {
        ASSERT_TRUE(traceIndents().push(delta));
        EXPECT_EQ(testing::printed(IndentToCout), std::string(spaces, ' '));
    }
    EXPECT_EQ(traceIndents().top(), -1);
    EXPECT_EQ(traceIndents().capacity(), 16U);
}

}  // namespace
}  // namespace veltra
