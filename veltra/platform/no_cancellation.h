// SPDX-License-Identifier: MIT
// Keeps the calling thread from being cancelled while the guard lives. Writing and sending are
// points at which that could happen; it unwinds the stack, and a noexcept function answers by
// ending the process.
#pragma once

namespace veltra {

class NoCancellation {
public:
    NoCancellation() noexcept;
    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;
    ~NoCancellation();

private:
    int m_before = 0;
};

}  // namespace veltra
