// SPDX-License-Identifier: MIT
// Gives errno back at the end of a scope as it was at its beginning. For functions that are called
// where nobody expects errno to change: log lines, and freeing memory.
// Thread: any. Realtime-safe: yes.
#pragma once

#include <cerrno>

namespace veltra {

class ErrnoKeeper {
public:
    ErrnoKeeper() noexcept = default;
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { errno = m_before; }

private:
    const int m_before = errno;
};

}  // namespace veltra
