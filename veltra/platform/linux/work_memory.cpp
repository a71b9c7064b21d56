// SPDX-License-Identifier: MIT
#include "veltra/platform/work_memory.h"

#include <cstdlib>
#include <limits>

#include <sys/mman.h>

namespace veltra {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20U;
constexpr std::size_t kLarge = 4 * kLargePage;  // where page by page costs as much as the work

}  // namespace

WorkMemory::WorkMemory(std::size_t size) noexcept : m_address(nullptr) {
    if (size < kLarge) {
        m_address = std::malloc(size);
        return;
    }
    if (size > std::numeric_limits<std::size_t>::max() - kLargePage) return;
    const std::size_t rounded = (size + kLargePage - 1) / kLargePage * kLargePage;
    m_address = std::aligned_alloc(kLargePage, rounded);
    // Advice that a kernel may not know: then the pages are small ones.
    if (m_address != nullptr) static_cast<void>(madvise(m_address, rounded, MADV_HUGEPAGE));
}

WorkMemory::~WorkMemory() {
    std::free(m_address);
}

}  // namespace veltra
