// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/process_zone.h"

#include <cerrno>
#include <cstdlib>

#include <malloc.h>

namespace veltra {

namespace {

void* allocateAligned(std::size_t alignment, std::size_t size) noexcept {
    void* block = nullptr;
    if (alignment < sizeof(void*)) alignment = sizeof(void*);
    const int error = ::posix_memalign(&block, alignment, size);
    if (error == 0) return block;
    errno = error;
    return nullptr;
}

constexpr ZoneEntries kBase{::malloc,  ::calloc, allocateAligned,
                            ::realloc, ::free,   ::malloc_usable_size};

}  // namespace

constinit AllocationZone processZone(kBase);

ZoneEntries baseEntries() noexcept {
    return kBase;
}

}  // namespace veltra
