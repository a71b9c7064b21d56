// SPDX-License-Identifier: MIT
// Memory for one piece of work, which may be large, on pages that cost as little as the system can
// make them.
#pragma once

#include "veltra/export.h"

#include <cstddef>

namespace veltra {

class WorkMemory {
public:
    // `size` bytes, aligned for any type, their content unspecified.
    explicit WorkMemory(std::size_t size) noexcept;
    WorkMemory(const WorkMemory&) = delete;
    WorkMemory& operator=(const WorkMemory&) = delete;
    ~WorkMemory();

    // Null when memory is out.
    void* get() const noexcept { return m_address; }

private:
    void* m_address;
};

}  // namespace veltra
