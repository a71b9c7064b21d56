// SPDX-License-Identifier: MIT
// The leak guard on the process's own zone.
#include "veltra/memory/testing/leak_guard_host.h"

#include "tests/memory/real_zone.h"

#include <cstdlib>

#include <malloc.h>

namespace veltra {
namespace {

using testing::guarded;

void* volatile sink = nullptr;

TEST(LeakGuardOnTheProcess, SeesEveryWayToAllocate) {
    SKIP_WITHOUT_REAL_ZONE();
    guarded(nullptr, [](auto&) {
        void* const before = std::malloc(10);
        {
            const QKLeakGuard guard;
            sink = std::calloc(2, 5);
            sink = std::realloc(before, 100);
            sink = ::operator new(1000);
            sink = std::aligned_alloc(4096, 8192);
            sink = ::strdup("four");
            std::free(std::malloc(5));
        }
        EXPECT_EQ(QKLeakGuard::ResetHistory(false), 10 + 100 + 1000 + 8192 + 5);
    });
}

TEST(LeakGuardOnTheProcess, StaysWholeAmongThreadsAndForks) {
    SKIP_WITHOUT_REAL_ZONE();
    guarded(nullptr, [](auto&) {
        testing::allocateAmongThreadsAndForks(
            {std::malloc, std::calloc, ::memalign, std::realloc, std::free, ::malloc_usable_size});
    });
}

}  // namespace
}  // namespace veltra
