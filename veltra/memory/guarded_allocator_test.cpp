// SPDX-License-Identifier: MIT
#include "veltra/memory/guarded_allocator.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/memory/testing/limited_heap.h"
#include "veltra/platform/testing/cancelled_thread.h"

#include <csignal>

#include <sys/time.h>

namespace veltra {
namespace {

using testing::LimitedHeap;

TEST(GuardedAllocator, CountsWhatItHandsOutAndGetsBack) {
    Mem_SetException(kMemExceptionExit, nullptr);
    Mem_TermModule();
    EXPECT_EQ(Mem_InitModule(), 1);
    for (const void* none : {Mem_malloc(0), Mem_calloc(0, 5), Mem_calloc(65536, 65536),
                             Mem_realloc(nullptr, 0), static_cast<void*>(Mem_strdup(nullptr))})
        EXPECT_EQ(none, nullptr);
    Mem_free(nullptr);
    void* block = Mem_realloc(Mem_calloc(2, 3), 9);
    char* copy = Mem_strdup("text");
    EXPECT_EQ(std::string(static_cast<char*>(block), 6) + copy, std::string(6, '\0') + "text");
    Mem_InitModule();  // once is enough
    EXPECT_EQ(Mem_outstandingBlocks(), 2);
    EXPECT_EQ(Mem_realloc(block, 0), nullptr);
    Mem_TermModule();
    EXPECT_EQ(Mem_outstandingBlocks(), 1);
    Mem_InitModule();
    Mem_free(copy);
    EXPECT_EQ(Mem_outstandingBlocks(), -1);
}

int calls = 0;

TEST(GuardedAllocator, DoesWhatTheHandlerSaysUntilItSaysOtherwise) {
    void* block = Mem_malloc(10);
    const int before = Mem_outstandingBlocks();
    LimitedHeap::reset();
    LimitedHeap::available = 0;
    // Call again, retry, call again, give up: three calls and two requests each.
    Mem_SetException(kMemExceptionCall, [] {
        constexpr int kAnswers[] = {kMemExceptionCall, kMemExceptionRetry, kMemExceptionNull};
        return kAnswers[calls++ % 3];
    });
    for (const void* none :
         {Mem_malloc(testing::kMiB), Mem_calloc(1024, 1024), Mem_realloc(nullptr, testing::kMiB),
          Mem_realloc(block, testing::kMiB)})
        EXPECT_EQ(none, nullptr);
    EXPECT_EQ(calls, 12);
    EXPECT_EQ(LimitedHeap::requests, 8);
    Mem_SetException(kMemExceptionCall,
                     [] { return LimitedHeap::available = 1, 4; });  // makes room
    block = Mem_realloc(block, testing::kMiB);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(Mem_outstandingBlocks(), before);
    Mem_free(block);
    LimitedHeap::reset();
}

TEST(GuardedAllocator, NeverCallsAHandlerThatIsNotThereYet) {
    Mem_SetException(kMemExceptionNull, nullptr);
    LimitedHeap::reset();
    LimitedHeap::available = 0;
    std::atomic<bool> isOver{false};
    std::thread failing([&] {
        for (int round = 0; round < 2'000'000; ++round)
            EXPECT_EQ(Mem_malloc(testing::kMiB), nullptr);
        isOver = true;
    });
    while (!isOver) {
        Mem_SetException(kMemExceptionCall, [] { return int{kMemExceptionNull}; });
        Mem_SetException(kMemExceptionNull, nullptr);
    }
    failing.join();
    LimitedHeap::reset();
}

void failWith(int action, MemExceptionHandler handler) {
    const itimerval busyTime{{0, 0}, {0, 50'000}};  // of the processor, not of the clock
    ::setitimer(ITIMER_VIRTUAL, &busyTime, nullptr);
    LimitedHeap::available = 0;
    Mem_SetException(action, handler);
    Mem_malloc(testing::kMiB);
}

TEST(GuardedAllocatorDeathTest, EndsTheProcessOrNeverReturnsWhenThePolicySaysSo) {
    const ::testing::ExitedWithCode failure(1);
    EXPECT_EXIT(failWith(1, [] { return 0; }), failure, "^$");
    EXPECT_EXIT(testing::isCancelledOnlyAfter([] { failWith(3, [] { return 0; }); }), failure,
                "^Fatal error: out of memory\n$");
    const ::testing::KilledBySignal stillBusy(SIGVTALRM);
    EXPECT_EXIT(failWith(5, nullptr), stillBusy, "^$");
    EXPECT_EXIT(failWith(3, [] { return -1; }), stillBusy, "^$");
}

}  // namespace
}  // namespace veltra
