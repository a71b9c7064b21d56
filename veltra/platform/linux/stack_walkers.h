// SPDX-License-Identifier: MIT
// Two ways up the stack that visit the same frames.
#pragma once

#include "veltra/platform/stack_walk.h"

#include <cstddef>

namespace veltra {

struct TableWalk {
    bool isDone = false;     // the outermost frame was reached, or the visitor ended the walk
    std::size_t passed = 0;  // so many frames, and the rest is up to the unwinder
    std::uintptr_t wanted = kNextFrame;  // what the visitor said last
};

// By the unwinder of the compiler's runtime: goes everywhere. Goes on where `before` gave up.
void walkByUnwinder(FrameVisitor visit, void* context, const TableWalk& before) noexcept;

// By the unwinding tables and a cache of what they said: several times faster. Gives up where it
// meets anything unusual, a signal's frame among others, and at once on other processors than
// x86-64 and 64-bit ARM.
TableWalk walkByTables(FrameVisitor visit, void* context) noexcept;

// Which frames are outside the zone's code, innermost first.
class ZoneExit {
public:
    bool isOutside(std::uintptr_t returnAddress) noexcept {
        if (m_isOutside) return true;
        const bool isInZone = isZone(returnAddress);
        m_isOutside = m_wasInZone && !isInZone;
        m_wasInZone = isInZone;
        return m_isOutside;
    }

private:
    static bool isZone(std::uintptr_t returnAddress) noexcept;
    bool m_wasInZone = false;
    bool m_isOutside = false;
};

}  // namespace veltra
