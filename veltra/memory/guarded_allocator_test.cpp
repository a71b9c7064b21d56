#include "veltra/memory/guarded_allocator.h"

#include "veltra/memory/detail/outstanding_blocks.h"
#include "veltra/memory/testing/limited_heap.h"

#include <csignal>
#include <cstring>

#include <gtest/gtest.h>
#include <sys/time.h>

namespace veltra {
namespace {

using testing::LimitedHeap;

class GuardedAllocator : public ::testing::Test {
protected:
    GuardedAllocator() { Mem_InitModule(); }
    ~GuardedAllocator() override {
        LimitedHeap::reset();
        Mem_SetException(kMemExceptionNull, nullptr);
    }
    // How many large requests reached the heap, and the change of the count.
    template <typename Call>
    static std::pair<int, int> effectOf(Call call) {
        const int requests = LimitedHeap::largeRequests, blocks = outstandingBlocks();
        call();
        return {LimitedHeap::largeRequests - requests, outstandingBlocks() - blocks};
    }
};

constexpr std::uint32_t kMuch = 1'000'000;

TEST_F(GuardedAllocator, CountsWhatItHandsOutAndGetsBack) {
    char* block = nullptr;
    char* copy = nullptr;
    EXPECT_EQ(effectOf([&] { block = static_cast<char*>(Mem_calloc(2, 3)); }), std::pair(0, 1));
    EXPECT_EQ(std::memcmp(block, "\0\0\0\0\0\0", 6), 0);
    EXPECT_EQ(effectOf([&] { block = static_cast<char*>(Mem_realloc(block, 9)); }),
              std::pair(0, 0));
    EXPECT_EQ(effectOf([&] { EXPECT_EQ(Mem_realloc(block, 0), nullptr); }), std::pair(0, -1));
    EXPECT_EQ(effectOf([&] { copy = Mem_strdup("text"); }), std::pair(0, 1));
    EXPECT_STREQ(copy, "text");
    EXPECT_EQ(effectOf([&] { Mem_free(copy); }), std::pair(0, -1));
    EXPECT_EQ(effectOf([&] { block = static_cast<char*>(Mem_realloc(nullptr, kMuch)); }),
              std::pair(1, 1));
    Mem_InitModule();  // once is enough
    EXPECT_EQ(outstandingBlocks(), 1);
    Mem_TermModule();
    EXPECT_EQ(outstandingBlocks(), 1);
    EXPECT_EQ(Mem_InitModule(), 1);
    EXPECT_EQ(outstandingBlocks(), 0);
    Mem_free(block);
    EXPECT_EQ(outstandingBlocks(), -1);
}

TEST_F(GuardedAllocator, AnswersNullForNothingWithoutAskingTheHeap) {
    LimitedHeap::available = 0;
    Mem_SetException(kMemExceptionExit, nullptr);
    const auto effect = effectOf([] {
        EXPECT_EQ(Mem_malloc(0), nullptr);
        EXPECT_EQ(Mem_calloc(0, 5), nullptr);
        EXPECT_EQ(Mem_calloc(65536, 65536), nullptr);
        EXPECT_EQ(Mem_realloc(nullptr, 0), nullptr);
        EXPECT_EQ(Mem_strdup(nullptr), nullptr);
        Mem_free(nullptr);
    });
    EXPECT_EQ(effect, std::pair(0, 0));
}

int calls = 0;

TEST_F(GuardedAllocator, DoesWhatTheHandlerSaysUntilItSaysOtherwise) {
    void* block = Mem_malloc(10);
    LimitedHeap::available = kMuch - 1;
    const auto refused = [block] {
        calls = 0;
        EXPECT_EQ(Mem_malloc(kMuch), nullptr);
        EXPECT_EQ(Mem_calloc(10, kMuch), nullptr);
        EXPECT_EQ(Mem_realloc(nullptr, kMuch), nullptr);
    };
    EXPECT_EQ(effectOf(refused), std::pair(3, 0));
    // Call again, retry, call again, give up: two requests a call.
    Mem_SetException(kMemExceptionCall, [] {
        constexpr int kAnswers[] = {kMemExceptionCall, kMemExceptionRetry, kMemExceptionNull};
        return kAnswers[calls++ % 3];
    });
    EXPECT_EQ(effectOf(refused), std::pair(6, 0));
    EXPECT_EQ(calls, 9);
    LimitedHeap::smallRefusals = 2;
    Mem_SetException(kMemExceptionRetry, nullptr);
    EXPECT_EQ(effectOf([&] { block = Mem_realloc(block, 20); }), std::pair(0, 0));
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(LimitedHeap::smallRefusals, 0);
    // The handler makes room.
    Mem_SetException(kMemExceptionCall, [] {
        LimitedHeap::available = kMuch;
        return int{kMemExceptionRetry};
    });
    void* large = nullptr;
    EXPECT_EQ(effectOf([&] { large = Mem_malloc(kMuch); }), std::pair(2, 1));
    Mem_free(large);
    Mem_free(block);
}

using GuardedAllocatorDeathTest = GuardedAllocator;

TEST_F(GuardedAllocatorDeathTest, EndsTheProcessWhenThePolicySaysSo) {
    LimitedHeap::available = 0;
    const auto failWith = [](int action) {
        Mem_SetException(action, [] { return int{kMemExceptionReport}; });
        Mem_malloc(kMuch);
    };
    EXPECT_EXIT(failWith(0), ::testing::ExitedWithCode(1), "^Fatal error: out of memory\n$");
    EXPECT_EXIT(failWith(1), ::testing::ExitedWithCode(1), "^$");
    EXPECT_EXIT(failWith(3), ::testing::ExitedWithCode(1), "^Fatal error: out of memory\n$");
}

TEST_F(GuardedAllocatorDeathTest, NeverLeavesAnInvalidAction) {
    LimitedHeap::available = 0;
    const auto spinWith = [](int action, MemExceptionHandler handler) {
        const itimerval busyTime{{0, 0}, {0, 50'000}};  // of the processor, not of the clock
        ::setitimer(ITIMER_VIRTUAL, &busyTime, nullptr);
        Mem_SetException(action, handler);
        Mem_malloc(kMuch);
    };
    const ::testing::KilledBySignal stillBusy(SIGVTALRM);
    EXPECT_EXIT(spinWith(5, nullptr), stillBusy, "^$");
    EXPECT_EXIT(spinWith(-1, nullptr), stillBusy, "^$");
    EXPECT_EXIT(spinWith(3, [] { return 2147483647; }), stillBusy, "^$");
}

}  // namespace
}  // namespace veltra
