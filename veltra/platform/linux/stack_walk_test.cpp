#include "veltra/platform/stack_walk.h"

#include "veltra/platform/detail/zone_code.h"
#include "veltra/platform/linux/stack_walkers.h"

#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include <alloca.h>
#include <gtest/gtest.h>

namespace veltra {
namespace {

using Frames = std::vector<StackFrame>;

struct Both {
    Frames byUnwinder;
    Frames byTables;
    TableWalk walk;
};

bool keep(void* context, const StackFrame& frame) noexcept {
    static_cast<Frames*>(context)->push_back(frame);
    return true;
}

// Called from one place, so that both walks see the same return addresses.
[[gnu::noinline]] VELTRA_ZONE_CODE void walkBoth(Both& both) {
    for (const bool isByTables : {false, true}) {
        if (isByTables) {
            both.walk = walkByTables(keep, &both.byTables);
        } else {
            walkByUnwinder(keep, &both.byUnwinder, 0);
        }
    }
}

Both* current = nullptr;

void fromHere() {
    walkBoth(*current);
    asm volatile("");
}

[[gnu::noinline]] void fromRecursion(int depth) {
    depth > 0 ? fromRecursion(depth - 1) : fromHere();
    asm volatile("");
}

[[gnu::noinline]] void fromAlignedFrame(std::size_t size) {
    alignas(64) char aligned[64];
    void* dynamic = alloca(size);
    asm volatile("" : : "r"(aligned), "r"(dynamic) : "memory");
    fromRecursion(3);
    asm volatile("" : : "r"(aligned), "r"(dynamic) : "memory");
}

void fromSort() {
    int numbers[] = {2, 1};
    std::qsort(numbers, 2, sizeof(int), [](const void*, const void*) {
        if (current->byTables.empty()) fromAlignedFrame(1000);
        return 0;
    });
}

TEST(StackWalk, BothWaysVisitTheSameFrames) {
    struct Case {
        const char* name;
        std::function<void()> walk;
        std::size_t atLeast;
    };
    const Case cases[] = {
        {"plain", fromHere, 3},
        {"deep", [] { fromRecursion(200); }, 200},
        {"aligned and dynamic", [] { fromAlignedFrame(300); }, 6},
        {"through the C library", fromSort, 8},
        {"thread", [] { std::thread([] { fromAlignedFrame(8); }).join(); }, 6},
        {"exception handler",
         [] {
             try {
                 throw 1;
             } catch (int) {
                 fromHere();
             }
         },
         3},
    };
    for (const Case& one : cases)
        for (int round = 0; round < 2; ++round) {  // without and with the cache
            Both both;
            current = &both;
            one.walk();
            EXPECT_GE(both.byUnwinder.size(), one.atLeast) << one.name;
#if defined(__x86_64__)
            ASSERT_TRUE(both.walk.isDone) << one.name;
            ASSERT_EQ(both.byTables.size(), both.byUnwinder.size()) << one.name;
#endif
            for (std::size_t i = 0; i < both.byTables.size(); ++i) {
                EXPECT_EQ(both.byTables[i].identity, both.byUnwinder[i].identity) << one.name << i;
                EXPECT_EQ(both.byTables[i].returnAddress, both.byUnwinder[i].returnAddress);
            }
        }
}

}  // namespace
}  // namespace veltra
