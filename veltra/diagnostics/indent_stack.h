// SPDX-License-Identifier: MIT
// The depths of the open trace scopes, innermost last.
#pragma once

#include <cstddef>
#include <memory>

namespace veltra {

class IndentStack {
public:
    bool isEmpty() const noexcept { return m_count == 0; }
    std::size_t capacity() const noexcept { return m_capacity; }  // 0, then doubling from 1

    // REQUIRES: not empty.
    int top() const noexcept { return m_depths[m_count - 1]; }

    // Opens a scope `delta` deeper than the innermost one, or than 0; the depth stops at the limits
    // of an int. False, and nothing opened, when memory is out.
    bool push(int delta) noexcept;

private:
    std::unique_ptr<int[]> m_depths;
    std::size_t m_count = 0;
    std::size_t m_capacity = 0;
};

// The one of the process. Main thread only.
IndentStack& traceIndents() noexcept;

}  // namespace veltra
