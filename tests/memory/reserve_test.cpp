// SPDX-License-Identifier: MIT
// The memory reserve on the process's own zone.
#include "tests/memory/real_zone.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/memory/testing/zone_stress.h"

#include <malloc.h>

namespace veltra {
namespace {

TEST(RealMemoryReserve, MayComeAndGoAmongThreadsAndForks) {
    SKIP_WITHOUT_REAL_ZONE();
    const ZoneEntries calls{::malloc, ::calloc, ::memalign, ::realloc, ::free, nullptr};
    EXPECT_EQ(testing::stressReserve(AllocationZone::process(), calls), 0);
    EXPECT_GT(QKMemoryReserveDidLowMemoryLevelChange(1), 0);
}

}  // namespace
}  // namespace veltra
