// SPDX-License-Identifier: MIT
// The memory reserve, and the leak guard, on the process's own zone.
#include "tests/memory/real_zone.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/testing/ended_child.h"
#include "veltra/memory/testing/leak_guard_host.h"
#include "veltra/memory/testing/zone_stress.h"

#include <fstream>
#include <new>

#include <malloc.h>
#include <unistd.h>

namespace veltra {
namespace {

// The levels at each callback, in order; fixed memory, because it is written when memory is out.
char levels[16];
std::atomic<std::size_t> levelCount{0};

void noteLevel(void*) {
    levels[levelCount++ % 15] = static_cast<char>('0' + QKMemoryReserveGetLowMemoryLevel());
}

void* takeMebibytes(std::size_t count) {
    return ::operator new(count << 20, std::nothrow);
}

// False when a request failed that the reserve should have saved, or cost more than it may.
bool exhaust(std::size_t threadCount) {
    std::array<void*, 24> blocks{takeMebibytes(300), takeMebibytes(600)};
    bool isSaved = blocks[0] != nullptr && blocks[1] == nullptr && std::string_view(levels) == "1";
    std::atomic<std::size_t> next{2}, taken{0};
    std::vector<std::jthread> threads(threadCount);
    for (std::jthread& thread : threads)
        thread = std::jthread([&] {
            while (QKMemoryReserveGetLowMemoryLevel() == 1 && next < 20)
                taken += (blocks[next++] = takeMebibytes(50)) != nullptr;
        });
    threads.clear();
    isSaved &=
        taken >= 7;  // of 800 MiB 500 are left at level 1; threads and their stacks have some
    for (void* block : blocks)
        ::operator delete(block);
    QKMemoryReserveTryReserveReallocation();
    std::free(std::malloc(1));
    return isSaved;
}

TEST(RealMemoryReserve, CarriesTheProcessThroughExhaustionAndBack) {
    SKIP_WITHOUT_REAL_ZONE();
    for (const std::size_t threadCount : {1U, 4U}) {
        const testing::EndedChild ended = testing::endedChild([threadCount] {
            // No address space for the arenas of threads.
            ::mallopt(M_ARENA_MAX, 1);  // NOLINT(concurrency-mt-unsafe): one thread
            std::size_t pages = 0;
            std::ifstream("/proc/self/statm") >> pages;
            const auto size = pages * static_cast<std::size_t>(::getpagesize());
            const rlimit limit{size + (std::size_t{800} << 20), RLIM_INFINITY};
            ::setrlimit(RLIMIT_AS, &limit);
            std::free(QKMemoryReserveEnter(noteLevel, nullptr));
            const bool isSaved = exhaust(threadCount);
            QKMemoryReserveExit();
            std::fputs(isSaved ? levels : "not saved", stderr);
        });
        EXPECT_TRUE(ended.hasExited(0));
        EXPECT_EQ(ended.log,
                  "QKMemReserve: starting in Marquee mode\n"
                  "QKMemReserve: allocating in Marquee mode\n"
                  "QKMemReserve: reallocating in Marquee mode\n"
                  "120");
    }
}

constexpr ZoneEntries kCalls{::malloc,  ::calloc, ::memalign,
                             ::realloc, ::free,   ::malloc_usable_size};

TEST(RealMemoryReserve, MayComeAndGoAmongThreadsAndForks) {
    SKIP_WITHOUT_REAL_ZONE();
    EXPECT_EQ(testing::stressReserve(AllocationZone::process(), kCalls), 0);
    EXPECT_GT(QKMemoryReserveDidLowMemoryLevelChange(1), 0);
}

TEST(LeakGuardOnTheProcess, StaysWholeAmongThreadsAndForks) {
    SKIP_WITHOUT_REAL_ZONE();
    testing::guarded(nullptr, [](auto&) { testing::allocateAmongThreadsAndForks(kCalls); });
}

}  // namespace
}  // namespace veltra
