// SPDX-License-Identifier: MIT
#include "veltra/base/out_of_memory.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(OutOfMemory, AnswersForLackOfMemoryAndForNothingElse) {
    const auto run = [](auto fault) { return unlessOutOfMemory(-1, [&] { return fault(), 1; }); };
    EXPECT_EQ(run([] {}), 1);
    EXPECT_EQ(run([] { throw std::bad_alloc(); }), -1);
    EXPECT_EQ(run([] { std::string(std::string().max_size() + 1, 'x'); }), -1);
    EXPECT_THROW(run([] { throw std::runtime_error("a mistake"); }), std::runtime_error);
    EXPECT_THROW(run([] { throw std::out_of_range("another"); }), std::out_of_range);
    EXPECT_THROW(run([] { throw 7; }), int);
    EXPECT_TRUE(isDoneUnlessOutOfMemory([] {}));
    EXPECT_FALSE(isDoneUnlessOutOfMemory([] { throw std::bad_array_new_length(); }));
}

}  // namespace
}  // namespace veltra
