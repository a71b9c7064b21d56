#include "veltra/diagnostics/trace.h"

#include "veltra/diagnostics/detail/indent_stack.h"
#include "veltra/diagnostics/trace_stream.h"

#include <climits>
#include <cstdint>
#include <iostream>
#include <sstream>

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

TEST(Trace, TheInnermostScopeDecidesHowManySpacesAreWritten) {
    EXPECT_EQ(indentation(), "");
    for (const auto& [delta, spaces] : {std::pair{3, 3},
                                        {4, 7},
                                        {-7, 0},
                                        {-1, 0},
                                        {2048, 2047},
                                        {1, 2048},
                                        {1, 2048},
                                        {2951, 2048}}) {
        ASSERT_TRUE(traceIndents().push(delta));
        EXPECT_EQ(indentation(), std::string(static_cast<std::size_t>(spaces), ' '));
    }
    EXPECT_EQ(traceIndents().top(), 5000);
}

TEST(Trace, TheStackDoublesAndItsDepthStopsAtTheLimitsOfAnInt) {
    IndentStack stack;
    EXPECT_EQ(stack.capacity(), 0U);
    for (const std::size_t capacity : {1U, 2U, 4U, 4U, 8U, 8U, 8U, 8U, 16U}) {
        stack.push(1);
        EXPECT_EQ(stack.capacity(), capacity);
    }
    EXPECT_EQ(stack.top(), 9);
    stack.push(INT_MAX);
    EXPECT_EQ(stack.top(), INT_MAX);
    stack.push(INT_MIN), stack.push(INT_MIN);
    EXPECT_EQ(stack.top(), INT_MIN);
}

TEST(Trace, TheOtherEntryPointsEmitAndReadNothing) {
    std::ostringstream stream;
    int counter = 1;
    bbAssert(false, "x", "f()", TAssertType::Default, &counter);
    TraceOutIndentBegin(stream, "label", "name", 4);
    TraceOutContainerBegin(stream, "label", 2, "name", 4);
    TraceOutContainerEndl(stream);
    TraceOutContainerEnd(stream);
    TraceOutIndentEnd(stream);
    QKOutputMemory("", PTRDIFF_MAX);
    QKOutputMemory(nullptr, -1);
    EXPECT_EQ(stream.str(), "");
    EXPECT_EQ(counter, 1);
}

}  // namespace
}  // namespace veltra
