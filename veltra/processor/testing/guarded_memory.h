// SPDX-License-Identifier: MIT
// Memory between two pages that nobody may touch: what reads or writes one byte too many crashes.
#pragma once

#include <cstddef>

#include <sys/mman.h>

namespace veltra {

enum class Place { Start, End };

class GuardedMemory {
public:
    GuardedMemory()
        : m_pages(static_cast<unsigned char*>(
              ::mmap(nullptr, 3 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        ::mprotect(m_pages + kPage, kPage, PROT_READ | PROT_WRITE);
    }
    ~GuardedMemory() { ::munmap(m_pages, 3 * kPage); }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    // `size` bytes, `gap` bytes away from the page in front or behind.
    unsigned char* at(Place place, std::size_t size, std::size_t gap = 0) const {
        return m_pages + kPage + (place == Place::Start ? gap : kPage - gap - size);
    }

private:
    static constexpr std::size_t kPage = 0x10000;  // a multiple of any page in use

    unsigned char* const m_pages;
};

}  // namespace veltra
