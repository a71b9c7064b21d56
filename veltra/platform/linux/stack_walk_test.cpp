// SPDX-License-Identifier: MIT
#include "veltra/platform/stack_walk.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/linux/stack_walkers.h"
#include "veltra/platform/zone_code.h"

#include <csignal>

#include <alloca.h>

namespace veltra {
namespace {

using Frames = std::vector<StackFrame>;

bool keep(void* context, const StackFrame& frame) noexcept {
    static_cast<Frames*>(context)->push_back(frame);
    return true;
}

Frames byUnwinder;
Frames byTables;
Frames rest;
TableWalk tableWalk;

[[gnu::noinline]] VELTRA_ZONE_CODE void walkBoth() {
    byUnwinder.clear();
    byTables.clear();
    rest.clear();
    walkByUnwinder(keep, &byUnwinder, 0);
    walkByUnwinder(keep, &rest, 2);
    tableWalk = walkByTables(keep, &byTables);
}

[[gnu::noinline]] void recursive(int depth) {
    depth > 0 ? recursive(depth - 1) : walkBoth();
    asm volatile("");
}

[[gnu::noinline]] void inAlignedFrame(std::size_t size) {
    alignas(64) char aligned[64];
    void* dynamic = alloca(size);
    asm volatile("" : : "r"(aligned), "r"(dynamic) : "memory");
    recursive(3);
    asm volatile("" : : "r"(aligned), "r"(dynamic) : "memory");
}

void inSort() {
    int numbers[] = {2, 1};
    std::qsort(numbers, 2, sizeof(int),
               [](const void*, const void*) { return inAlignedFrame(1000), 0; });
}

void inHandler() {
    try {
        throw 1;
    } catch (int) {
        recursive(1);
    }
}

#if defined(__aarch64__)
#define SIGNED [[gnu::noinline, gnu::target("branch-protection=pac-ret")]]
#else
#define SIGNED [[gnu::noinline]]
#endif

SIGNED void inSignedFrame() {
    inAlignedFrame(100);
    asm volatile("");
}

void inSignal() {
    const auto before = std::signal(SIGUSR2, [](int) { inSignedFrame(); });
    std::raise(SIGUSR2);
    std::signal(SIGUSR2, before);
}

TEST(StackWalk, BothWaysVisitTheSameFrames) {
    using Case = std::pair<void (*)(), std::size_t>;
    for (const auto& [walk, atLeast] :
         {Case{[] { recursive(200); }, 202}, Case{[] { inAlignedFrame(300); }, 7}, Case{inSort, 9},
          Case{inHandler, 4}, Case{inSignedFrame, 8}, Case{inSignal, 9},
          Case{[] { std::thread([] { inAlignedFrame(8); }).join(); }, 6}})
        for (const char* cache : {"empty", "filled"}) {
            walk();
            ASSERT_GE(byUnwinder.size(), atLeast) << cache;
            EXPECT_TRUE(rest == Frames(byUnwinder.begin() + 2, byUnwinder.end())) << cache;
#if defined(__x86_64__) || defined(__aarch64__)
            // In front of a signal's frame the tables hand over to the unwinder.
            EXPECT_EQ(tableWalk.isDone, walk != inSignal) << cache;
            EXPECT_EQ(tableWalk.visited, byTables.size()) << cache;
            ASSERT_GE(byTables.size(), walk == inSignal ? 5U : byUnwinder.size()) << cache;
            EXPECT_TRUE(std::equal(byTables.begin(), byTables.end(), byUnwinder.begin())) << cache;
#endif
        }
}

}  // namespace
}  // namespace veltra
