// SPDX-License-Identifier: MIT
// What the unwinding tables say about return addresses, remembered.
//
// Reading the tables costs a search and the run of a small program for each frame. What came out is
// kept by return address in a cache that never forgets and takes no lock. A rule is filled by one
// thread before it is published, does not change after that and is never used again, even when
// another one takes its place; so readers need no protection. When the room is used up, what is not
// there is read from the tables.
//
// The code at an address may become another: a library is unloaded, and another one, or a new build
// of it, lies in its place. (Not during a walk that meets its code on the stack.) So a rule keeps
// the bytes that it came from, and they are compared each time: the answer is what the tables would
// say. Not so for what stays as long as the cache itself: the program, the object that this code is
// a part of, and the libraries of C and C++.
//
// Whom a frame returns to is mostly whom it returned to last time, so each rule has a guess at the
// next. A guess is never believed: the return address on the stack tells whether it is right, and
// what is not right is searched for. Nothing is remembered of a stack itself.
#pragma once

#include "veltra/platform/linux/unwind_table.h"

#include <atomic>

namespace veltra {

struct FrameRule {
    std::uintptr_t returnAddress = 0;
    std::uintptr_t function = 0;
    UnwindRule rule;
    bool isLasting = false;  // the object stays as long as the cache
    std::uint32_t entry = 0;
    UnwindDescription from;
};

// In the cache it is followed by the bytes of the description, its own and then those of the common
// part.
struct CachedRule {
    constexpr CachedRule(const FrameRule& found, const CachedRule& guess) noexcept
        : caller(&guess), frame(found) {}

    mutable std::atomic<const CachedRule*> caller;  // a guess
    FrameRule frame;
};

// The loaded object that a walk is in.
class LoadedObject {
public:
    const UnwindTable& tableFor(std::uintptr_t address) noexcept {
        if (!contains(address)) look(address);
        return m_table;
    }

    // Whether it stays as long as the cache.
    bool isLasting() const noexcept;

private:
    bool contains(std::uintptr_t address) const noexcept { return address - m_begin < m_size; }
    void look(std::uintptr_t address) noexcept;

    std::uintptr_t m_begin = 0;
    std::uintptr_t m_size = 0;
    UnwindTable m_table;
};

// The rules of the frames of one walk.
class UnwindRules {
public:
    // The rule of no frame, from which a walk starts.
    static const CachedRule& nobody() noexcept { return s_nobody; }

    // The rule of the frame that `last`'s returns to; not usable where the tables say nothing, or
    // too much. Valid until the next call.
    const CachedRule& at(std::uintptr_t returnAddress, const CachedRule& last) noexcept {
        const CachedRule& guess = *last.caller.load(std::memory_order_acquire);  // with search()
        const bool holds = guess.frame.returnAddress == returnAddress && guess.frame.isLasting;
        return holds ? guess : search(returnAddress, last);
    }

private:
    const CachedRule& search(std::uintptr_t returnAddress, const CachedRule& last) noexcept;
    bool holds(const CachedRule* known, std::uintptr_t returnAddress) noexcept;
    FrameRule read(std::uintptr_t returnAddress) noexcept;

    static constinit const CachedRule s_nobody;
    LoadedObject m_object;
    // What at() refers to when the cache has no room; not initialised, as every walk has one.
    alignas(CachedRule) unsigned char m_uncached[sizeof(CachedRule)];
};

}  // namespace veltra
