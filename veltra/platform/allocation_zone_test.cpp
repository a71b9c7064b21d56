// SPDX-License-Identifier: MIT
#include "veltra/platform/allocation_zone.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(AllocationZone, OfAProcessWithoutTheInterposerAllocatesAsTheCLibraryDoes) {
    const AllocationZone& zone = AllocationZone::process();
    for (const std::size_t alignment : {1U, 2U, 16U, 64U, 4096U}) {
        void* block = zone.allocateAligned.load()(alignment, 100);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0U);
        std::memcpy(block, "text", 5);
        block = zone.reallocate.load()(block, 100'000);
        EXPECT_STREQ(static_cast<const char*>(block), "text");
        EXPECT_GE(zone.size.load()(block), 100'000U);
        zone.free.load()(block);
    }
#ifndef VELTRA_SANITIZED  // a sanitizer ends the process
    errno = 0;
    EXPECT_EQ(zone.allocateAligned.load()(64, SIZE_MAX - 1000), nullptr);
    EXPECT_EQ(errno, ENOMEM);
#endif
}

}  // namespace
}  // namespace veltra
