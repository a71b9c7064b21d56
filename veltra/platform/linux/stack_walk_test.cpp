// SPDX-License-Identifier: MIT
#include "veltra/platform/stack_walk.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/linux/stack_walkers.h"
#include "veltra/platform/zone_code.h"

#include <csignal>

#include <alloca.h>
#include <dlfcn.h>

namespace veltra {
namespace {

#if defined(__x86_64__) || defined(__aarch64__)
constexpr bool kHasTableWalk = true;
#else
constexpr bool kHasTableWalk = false;
#endif

using Frames = std::vector<StackFrame>;

std::uintptr_t keep(void* context, const StackFrame& frame) noexcept {
    static_cast<Frames*>(context)->push_back(frame);
    return kNextFrame;
}

Frames byUnwinder;
Frames byTables;
Frames rest;
Frames thirds;  // every third one, by both
TableWalk tableWalk;

std::uintptr_t keepThird(void* context, const StackFrame& frame) noexcept {
    keep(context, frame);
    const auto at = std::find(byUnwinder.begin(), byUnwinder.end(), frame);
    return byUnwinder.end() - at > 3 ? at[3].identity.cfa : kNoMoreFrames;
}

bool areThirdsRight() {
    Frames expected;
    std::uintptr_t wanted = kNextFrame;
    for (const StackFrame& frame : byUnwinder)
        if (frame.identity.cfa >= wanted) wanted = keepThird(&expected, frame);
    return thirds == expected && expected.size() > 1;
}

[[gnu::noinline]] VELTRA_ZONE_CODE void walkBoth() {
    for (Frames* frames : {&byUnwinder, &byTables, &rest, &thirds})
        frames->clear();
    walkByUnwinder(keep, &byUnwinder, {});
    walkByUnwinder(keep, &rest, {.passed = 2});
    tableWalk = walkByTables(keep, &byTables);
    walkCallers(keepThird, &thirds);
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
    for (const char* cache : {"empty", "filled", "filled by others"})
        for (const auto& [walk, atLeast] :
             {Case{[] { recursive(200); }, 202}, Case{[] { inAlignedFrame(300); }, 7},
              Case{inSort, 9}, Case{inHandler, 4}, Case{inSignedFrame, 8}, Case{inSignal, 9},
              Case{[] { std::thread([] { inAlignedFrame(8); }).join(); }, 6}}) {
            walk();
            ASSERT_GE(byUnwinder.size(), atLeast) << cache;
            EXPECT_TRUE(rest == Frames(byUnwinder.begin() + 2, byUnwinder.end())) << cache;
            EXPECT_TRUE(areThirdsRight()) << cache;
            if (!kHasTableWalk) continue;
            // In front of a signal's frame the tables hand over to the unwinder.
            EXPECT_EQ(tableWalk.isDone, walk != inSignal) << cache;
            EXPECT_EQ(tableWalk.passed, byTables.size()) << cache;
            ASSERT_GE(byTables.size(), walk == inSignal ? 5U : byUnwinder.size()) << cache;
            EXPECT_TRUE(std::equal(byTables.begin(), byTables.end(), byUnwinder.begin())) << cache;
        }
}

TEST(StackWalk, SeesWhatLiesWhereAModuleWas) {
    void* before = nullptr;
    for (const char* file : {VELTRA_SMALL_FRAME, VELTRA_LARGE_FRAME, VELTRA_SMALL_FRAME}) {
        void* const module = ::dlopen(file, RTLD_NOW);
        ASSERT_NE(module, nullptr) << ::dlerror();
        void* const function = ::dlsym(module, "callThrough");
        if (before == nullptr) before = function;
        if (function != before) GTEST_SKIP() << "modules are never loaded where others were";
        for (int i = 0; i < 2; ++i) {
            reinterpret_cast<void (*)(void (*)())>(function)([] { recursive(2); });
            EXPECT_EQ(byTables == byUnwinder, kHasTableWalk) << file;
        }
        ::dlclose(module);
    }
}

}  // namespace
}  // namespace veltra
