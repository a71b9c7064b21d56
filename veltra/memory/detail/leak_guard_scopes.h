// SPDX-License-Identifier: MIT
// The guard's open scopes, and the question whether a stack passes through one of them. The caller
// holds the guard's lock in every function; the array comes from and goes back to the caller, since
// nothing may be allocated under that lock.
#pragma once

#include "veltra/platform/stack_walk.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltra::detail {

struct OpenScope {
    FrameIdentity frame;
    std::uint32_t thread = 0;  // number of the thread on whose stack the frame lies
};

class OpenScopes {
public:
    constexpr OpenScopes() noexcept = default;
    OpenScopes(const OpenScopes&) = delete;
    OpenScopes& operator=(const OpenScopes&) = delete;

    std::size_t count() const noexcept { return m_count; }
    bool contain(const OpenScope& scope) const noexcept;

    // Where the scope of that frame is, the newest one first; count() when there is none. A
    // `function` of 0 stands for any.
    std::size_t find(const FrameIdentity& frame) const noexcept;

    // Moves everything into `larger`, which has room for count() + 1, and adds `scope` there.
    // Answers the array that is to be freed.
    OpenScope* append(const OpenScope& scope, OpenScope* larger) noexcept;

    // Takes one scope out and moves the rest into `smaller`, which has room for count() - 1; null:
    // they stay where they are. Answers the array that is to be freed, or null.
    OpenScope* remove(std::size_t index, OpenScope* smaller) noexcept;

private:
    friend class ScopesAround;
    OpenScope* m_scopes = nullptr;  // in the order in which they were opened
    std::size_t m_count = 0;
};

// The scopes that a stack may pass through: those of one thread whose frames lie above an address.
class ScopesAround {
public:
    ScopesAround(const OpenScopes& scopes, std::uint32_t thread, std::uintptr_t address) noexcept;

    bool isEmpty() const noexcept { return m_highest == 0; }
    std::uintptr_t highest() const noexcept { return m_highest; }

    // True while the thread has any scope at all, also below the address.
    bool hasThread() const noexcept { return m_hasThread; }

    // Whether all that may match are copied here, so that contains() alone decides.
    bool isComplete() const noexcept { return m_isComplete; }
    bool contains(const FrameIdentity& frame) const noexcept;

private:
    std::array<FrameIdentity, 16> m_frames;
    std::size_t m_count = 0;
    std::uintptr_t m_highest = 0;  // the outermost frame's address; 0 when there is none
    bool m_hasThread = false;
    bool m_isComplete = true;
};

}  // namespace veltra::detail
