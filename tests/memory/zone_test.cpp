// SPDX-License-Identifier: MIT
// The zone of a host that links the library: a program of its own, because the rooms' tests link no
// interposer.
#include "tests/memory/real_zone.h"
#include "veltra/base/testing/prelude.h"

#include <new>

#include <dlfcn.h>
#include <malloc.h>

namespace veltra {
namespace {

char calls[64];  // a letter for each call of an entry, from any thread
std::atomic<std::size_t> callCount{0};
ZoneEntries saved;

template <char kLetter, auto kEntry, typename... Arguments>
auto note(Arguments... arguments) noexcept {
    calls[callCount++ % 63] = kLetter;
    return (saved.*kEntry)(arguments...);
}

constexpr ZoneEntries kNoting{note<'m', &ZoneEntries::allocate>,
                              note<'c', &ZoneEntries::allocateZeroed>,
                              note<'a', &ZoneEntries::allocateAligned>,
                              note<'r', &ZoneEntries::reallocate>,
                              note<'f', &ZoneEntries::free>,
                              nullptr};

void put(const ZoneEntries& entries) {
    AllocationZone& zone = AllocationZone::process();
    zone.allocate = entries.allocate;
    zone.allocateZeroed = entries.allocateZeroed;
    zone.allocateAligned = entries.allocateAligned;
    zone.reallocate = entries.reallocate;
    zone.free = entries.free;
}

std::string callsOf(void (*call)()) {
    saved = AllocationZone::process().entries();
    std::memset(calls, 0, sizeof calls);
    callCount = 0;
    put(kNoting);
    call();
    put(saved);
    return calls;
}

void* block = nullptr;

TEST(ProcessZone, SeesEveryWayToAllocate) {
    SKIP_WITHOUT_REAL_ZONE();
    const std::pair<const char*, void (*)()> cases[] = {
        {"m", [] { block = ::malloc(100); }},
        {"c", [] { block = ::calloc(3, 100); }},
        {"r", [] { block = ::realloc(nullptr, 100); }},
        {"r", [] { block = ::reallocarray(nullptr, 9, 9); }},
        {"a", [] { ::posix_memalign(&block, 256, 100); }},
        {"a", [] { block = ::aligned_alloc(256, 256); }},
        {"a", [] { block = ::memalign(256, 100); }},
        {"a", [] { block = ::valloc(100); }},
        {"a", [] { block = ::pvalloc(100); }},
        {"m", [] { block = ::operator new(100); }},
        {"a", [] { block = ::operator new (256, std::align_val_t{256}); }},
        {"m", [] { block = ::strdup("text"); }},
        {"mfm", [] { ::free(::malloc(9)), block = ::malloc(9); }},
    };
    for (const auto& [seen, call] : cases) {
        EXPECT_EQ(callsOf(call), seen) << &call - &cases[0].second;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) %
                      (*seen == 'a' ? 256 : alignof(std::max_align_t)),
                  0U);
        ::free(block);
    }
    const auto onAnotherThread = [] { std::thread([] { ::dlopen("libutil.so.1", 1); }).join(); };
    EXPECT_GE(callsOf(onAnotherThread).size(), 4U);  // the thread's state, the loader's
}

TEST(ProcessZone, RefusesWhatTheCLibraryRefuses) {
    SKIP_WITHOUT_REAL_ZONE();
    void* untouched = &block;
    errno = 7;
    for (const std::size_t alignment : {0U, 2U, 24U})
        EXPECT_EQ(::posix_memalign(&untouched, alignment, 8), EINVAL);
    EXPECT_EQ(::posix_memalign(&untouched, 64, SIZE_MAX - 1000), ENOMEM);
    EXPECT_TRUE(untouched == &block && errno == 7);
    EXPECT_TRUE(::pvalloc(SIZE_MAX) == nullptr && errno == ENOMEM);
}

#ifdef VELTRA_INTERPOSED
TEST(ProcessZone, CoversTheProcessInThisBuild) {
    EXPECT_EQ(AllocationZone::coverage(), AllocationZone::kFull);
    EXPECT_NE(std::strstr(AllocationZone::mallocOrigin(), "libveltra"), nullptr);
}
#endif

}  // namespace
}  // namespace veltra
