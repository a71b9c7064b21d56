// SPDX-License-Identifier: MIT
// The guard's open scopes, and the question whether a stack passes through one of them. The caller
// holds the guard's lock in every function; the array comes from and goes back to the caller, since
// nothing may be allocated under that lock.
#pragma once

#include "veltra/platform/stack_walk.h"

#include <atomic>
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

    // Another after every change. May be read without the lock.
    std::uint64_t version() const noexcept { return m_version.load(std::memory_order_relaxed); }
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

    // Relaxed: who reads it reads nothing else that the lock covers.
    void change() noexcept { m_version.fetch_add(1, std::memory_order_relaxed); }

    OpenScope* m_scopes = nullptr;  // in the order in which they were opened
    std::size_t m_count = 0;
    std::atomic<std::uint64_t> m_version{1};
};

// The scopes that a stack may pass through: those of one thread whose frames lie above an address.
class ScopesAround {
public:
    ScopesAround(const OpenScopes& scopes, std::uint32_t thread, std::uintptr_t address) noexcept;

    // For a thread with one scope, which lies above the address.
    explicit ScopesAround(const FrameIdentity& only) noexcept : m_own(1) { add(only); }

    bool isEmpty() const noexcept { return m_highest == 0; }

    // Where the next frame above `address` is that may match, as a FrameVisitor says it.
    std::uintptr_t nextAbove(std::uintptr_t address) const noexcept;

    // True while the thread has any scope at all, also below the address.
    bool hasThread() const noexcept { return m_own != 0; }

    // The thread's scope when it has just one, and that above the address; else all zero.
    FrameIdentity only() const noexcept {
        return m_own == 1 && m_count == 1 ? FrameIdentity{m_cfas[0], m_functions[0]}
                                          : FrameIdentity{};
    }

    // Whether all that may match are copied here, so that contains() alone decides.
    bool isComplete() const noexcept { return m_isComplete; }
    bool contains(const FrameIdentity& frame) const noexcept {
        for (std::size_t i = 0; i < m_count; ++i)
            if (m_cfas[i] == frame.cfa && m_functions[i] == frame.function) return true;
        return false;
    }

private:
    void add(const FrameIdentity& frame) noexcept;

    static constexpr std::size_t kMost = 16;
    std::uintptr_t m_cfas[kMost];  // as far as they are used: one is made for each allocation
    std::uintptr_t m_functions[kMost];
    std::size_t m_count = 0;
    std::size_t m_own = 0;         // how many scopes the thread has
    std::uintptr_t m_highest = 0;  // the outermost frame's address; 0 when there is none
    bool m_isComplete = true;
};

}  // namespace veltra::detail
