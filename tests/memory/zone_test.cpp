// The zone of a host that links the library: a program of its own, because the rooms' tests link no
// interposer.
#include "tests/memory/real_zone.h"
#include "veltra/platform/allocation_zone.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {
namespace {

// allocate, allocateZeroed, allocateAligned, reallocate, free
using Counts = std::array<int, 5>;

ZoneEntries saved;
std::array<std::atomic<int>, 5> counts;

void wrapAll() {
    AllocationZone& zone = AllocationZone::process();
    saved = zone.entries();
    for (auto& count : counts)
        count = 0;
    zone.allocate = [](std::size_t size) noexcept { return ++counts[0], saved.allocate(size); };
    zone.allocateZeroed = [](std::size_t count, std::size_t size) noexcept {
        return ++counts[1], saved.allocateZeroed(count, size);
    };
    zone.allocateAligned = [](std::size_t alignment, std::size_t size) noexcept {
        return ++counts[2], saved.allocateAligned(alignment, size);
    };
    zone.reallocate = [](void* block, std::size_t size) noexcept {
        return ++counts[3], saved.reallocate(block, size);
    };
    zone.free = [](void* block) noexcept { ++counts[4], saved.free(block); };
}

Counts unwrapAll() {
    AllocationZone& zone = AllocationZone::process();
    zone.allocate = saved.allocate;
    zone.allocateZeroed = saved.allocateZeroed;
    zone.allocateAligned = saved.allocateAligned;
    zone.reallocate = saved.reallocate;
    zone.free = saved.free;
    return {counts[0], counts[1], counts[2], counts[3], counts[4]};
}

void* volatile block = nullptr;  // what the compiler may not leave out

TEST(ProcessZone, SeesEveryWayToAllocate) {
    SKIP_WITHOUT_REAL_ZONE();
    struct Case {
        const char* name;
        void* (*call)();
        Counts seen;
    };
    const Case cases[] = {
        {"malloc", [] { return ::malloc(100); }, {1, 0, 0, 0, 0}},
        {"calloc", [] { return ::calloc(3, 100); }, {0, 1, 0, 0, 0}},
        {"realloc", [] { return ::realloc(nullptr, 100); }, {0, 0, 0, 1, 0}},
        {"reallocarray", [] { return ::reallocarray(nullptr, 9, 9); }, {0, 0, 0, 1, 0}},
        {"posix_memalign",
         [] {
             void* taken = nullptr;
             return ::posix_memalign(&taken, 256, 100) == 0 ? taken : nullptr;
         },
         {0, 0, 1, 0, 0}},
        {"aligned_alloc", [] { return ::aligned_alloc(256, 256); }, {0, 0, 1, 0, 0}},
        {"memalign", [] { return ::memalign(256, 100); }, {0, 0, 1, 0, 0}},
        {"valloc", [] { return ::valloc(100); }, {0, 0, 1, 0, 0}},
        {"pvalloc", [] { return ::pvalloc(100); }, {0, 0, 1, 0, 0}},
        {"new", [] { return ::operator new(100); }, {1, 0, 0, 0, 0}},
        {"aligned new",
         [] { return ::operator new (256, std::align_val_t{256}); },
         {0, 0, 1, 0, 0}},
        {"strdup", [] { return static_cast<void*>(::strdup("text")); }, {1, 0, 0, 0, 0}},
        {"free", [] { return ::free(::malloc(100)), ::malloc(1); }, {2, 0, 0, 0, 1}},
    };
    for (const Case& one : cases) {
        wrapAll();
        block = one.call();
        const Counts seen = unwrapAll();
        EXPECT_EQ(seen, one.seen) << one.name;
        EXPECT_NE(block, nullptr) << one.name;
        if (one.seen[2] != 0) {
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 256, 0U) << one.name;
        }
        ::free(block);
    }
}

TEST(ProcessZone, SeesOtherThreadsAndTheLoader) {
    SKIP_WITHOUT_REAL_ZONE();
    wrapAll();
    std::thread([] { block = ::malloc(100); }).join();
    EXPECT_GE(unwrapAll()[0], 2);  // and the thread's own state
    ::free(block);
    wrapAll();
    void* library = ::dlopen("libutil.so.1", RTLD_NOW);
    const Counts seen = unwrapAll();
    ASSERT_NE(library, nullptr);
    EXPECT_GT(seen[0] + seen[1], 0);
    ::dlclose(library);
}

TEST(ProcessZone, RefusesWhatTheCLibraryRefuses) {
    SKIP_WITHOUT_REAL_ZONE();
    int mark = 0;
    void* untouched = &mark;
    errno = 7;
    for (const std::size_t alignment : {std::size_t{0}, std::size_t{4}, std::size_t{24}})
        EXPECT_EQ(::posix_memalign(&untouched, alignment, 8), EINVAL);
    volatile std::size_t huge = SIZE_MAX - 1000;
    EXPECT_EQ(::posix_memalign(&untouched, 64, huge), ENOMEM);
    EXPECT_EQ(untouched, &mark);
    EXPECT_EQ(errno, 7);
    block = ::calloc(huge, 2);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(::pvalloc(huge), nullptr);
    errno = 0;
    EXPECT_EQ(::pvalloc(SIZE_MAX), nullptr);
    EXPECT_EQ(errno, ENOMEM);
}

TEST(ProcessZone, StaysWholeWhileItIsWrappedAmongThreadsAndForks) {
    SKIP_WITHOUT_REAL_ZONE();
    std::atomic<bool> stop{false};
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed)
        threads.emplace_back([&stop, seed] {
            unsigned random = seed;
            std::vector<char*> blocks(64, nullptr);
            while (!stop) {
                random = random * 1664525 + 1013904223;
                char*& one = blocks[random >> 8 & 63];
                const std::size_t size = (random >> 14 & 4095) + 1;
                if (one != nullptr && *one != 'x') std::abort();
                one = static_cast<char*>(::realloc(one, size));
                *one = 'x';
            }
            for (char* one : blocks)
                ::free(one);
        });
    int failures = 0;
    for (int round = 0; round < 50; ++round) {
        wrapAll();
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(20);
            block = ::malloc(1000);
            ::free(block);
            ::_exit(block != nullptr ? 0 : 1);
        }
        unwrapAll();
        int status = -1;
        ::waitpid(child, &status, 0);
        failures += status != 0;
    }
    stop = true;
    EXPECT_EQ(failures, 0);
}

#ifdef VELTRA_INTERPOSED
TEST(ProcessZone, CoversTheProcessInThisBuild) {
    EXPECT_EQ(AllocationZone::coverage(), AllocationZone::kFull);
    EXPECT_NE(std::strstr(AllocationZone::mallocOrigin(), "libveltra"), nullptr);
}
#endif

}  // namespace
}  // namespace veltra
