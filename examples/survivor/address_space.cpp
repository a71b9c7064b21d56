// SPDX-License-Identifier: MIT
#include "address_space.h"

#include <cstdio>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

namespace veltra::survivor {

namespace {

constexpr int kLargeBlock = 131'072;

// Pages of address space in use; 0 when nobody knows.
std::size_t pagesInUse() noexcept {
    std::FILE* file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr) return 0;
    std::size_t pages = 0;
    const bool isRead = std::fscanf(file, "%zu", &pages) == 1;
    std::fclose(file);
    return isRead ? pages : 0;
}

}  // namespace

bool limitAddressSpace(std::size_t bytes) noexcept {
    const std::size_t pages = pagesInUse();
    if (pages == 0) return false;
    rlimit limit{};
    if (::getrlimit(RLIMIT_AS, &limit) != 0) return false;
    limit.rlim_cur = pages * static_cast<std::size_t>(::getpagesize()) + bytes;
    return ::setrlimit(RLIMIT_AS, &limit) == 0;
}

void returnFreedBlocks() noexcept {
    ::mallopt(M_MMAP_THRESHOLD, kLargeBlock);  // NOLINT(concurrency-mt-unsafe): one thread
}

}  // namespace veltra::survivor
