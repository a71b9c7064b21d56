// SPDX-License-Identifier: MIT
// The leak guard on the process's own zone.
#include "veltra/memory/testing/leak_guard_host.h"

#include "tests/memory/real_zone.h"

#include <malloc.h>

namespace veltra {
namespace {

using testing::guarded;

TEST(LeakGuardOnTheProcess, StaysWholeAmongThreadsAndForks) {
    SKIP_WITHOUT_REAL_ZONE();
    guarded(nullptr, [](auto&) {
        testing::allocateAmongThreadsAndForks(
            {std::malloc, std::calloc, ::memalign, std::realloc, std::free, ::malloc_usable_size});
    });
}

}  // namespace
}  // namespace veltra
