// SPDX-License-Identifier: MIT
// What the operating system says about memory: how much it has, how much of it this process may
// still take, and how long programs had to wait for it.
//
// A system that promises more memory than it has refuses nothing; it ends a process when its pages
// run out. What it would have refused is read here instead.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/base/time.h"
#include "veltra/export.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace veltra {

class MemorySystem;
extern template class VELTRA_EXPORT Installable<MemorySystem>;

// Where the facts come from: files of the system's, the limit of the process's address space, and
// events. A test puts texts of its own in their place; install one while nobody reads facts.
class VELTRA_EXPORT MemorySystem : public Installable<MemorySystem> {
public:
    static constexpr std::uint64_t kNoLimit = UINT64_MAX;  // bytes; any size is allowed

    // What the process's address space may grow to.
    struct Limits {
        std::uint64_t current = kNoLimit;  // bytes; in force, may be changed up to `most`
        std::uint64_t most = kNoLimit;     // bytes; how far `current` may be raised
    };

    // Descriptors, -1 for none. `all` is readable when there is an event, also while `timer` and
    // `trigger` are looked at by nobody else.
    struct Events {
        int all = -1;      // the one to wait for
        int timer = -1;    // tells every period
        int trigger = -1;  // tells of waits for memory
    };

    virtual ~MemorySystem();

    // Puts what the file `path` holds from byte `offset` on into `text`. Returns how many bytes
    // that were: 0 at its end, below 0 when it cannot be read.
    // Thread: any. Realtime-safe: no.
    virtual std::ptrdiff_t read(const char* path, std::size_t offset,
                                std::span<char> text) const noexcept = 0;

    // The limit of the process's address space. Setting returns false when the system refuses.
    // Thread: any. Realtime-safe: no.
    virtual Limits addressSpaceLimits() const noexcept = 0;
    virtual bool setAddressSpaceLimit(std::uint64_t bytes) noexcept = 0;

    // Has an event every `period`, which is above 0, and when the file `pressurePath`, if the
    // system supports that, tells that programs wait for memory. Thread: any. Realtime-safe: no.
    virtual Events openEvents(const char* pressurePath, Nanoseconds period) noexcept = 0;
    virtual void takeEvents(const Events& events) noexcept = 0;
    virtual void closeEvents(const Events& events) noexcept = 0;
};

// Sizes in bytes; empty where the system does not say.
struct MemoryFacts {
    std::optional<std::uint64_t> total;      // of the machine
    std::optional<std::uint64_t> available;  // of it, without anybody being paged out

    // Of the control groups that the process is in. The least room of them all counts; files that
    // the system merely keeps in memory count as room.
    std::optional<std::uint64_t> groupLimit;
    std::optional<std::uint64_t> groupRoom;

    std::optional<std::uint64_t> addressSpaceUsed;   // by this process
    std::optional<std::uint64_t> addressSpaceLimit;  // empty also when there is none

    // Per cent of the last ten seconds in which some of the threads, or all of them at once, waited
    // for memory: in the control group, else in the machine.
    std::optional<double> someStalled;
    std::optional<double> allStalled;

    // Memory that the process may still take: the least of what is known.
    std::optional<std::uint64_t> memoryRoom() const noexcept { return least(available, groupRoom); }

    // The same with what is left of the address space.
    std::optional<std::uint64_t> room() const noexcept {
        if (!addressSpaceLimit || !addressSpaceUsed) return memoryRoom();
        return least(memoryRoom(),
                     *addressSpaceLimit - std::min(*addressSpaceLimit, *addressSpaceUsed));
    }

    // Memory that the process could have if it were alone.
    std::optional<std::uint64_t> capacity() const noexcept {
        return least(least(total, groupLimit), addressSpaceLimit);
    }

    // The smaller of two sizes; one that is not known does not count. Empty when neither is known.
    static std::optional<std::uint64_t> least(std::optional<std::uint64_t> one,
                                              std::optional<std::uint64_t> other) noexcept {
        if (!one || !other) return one ? one : other;
        return std::min(*one, *other);
    }
};

// Reads the facts, as often as it is asked. Finds the process's control groups when it is made.
// Allocates nothing. Thread: any, one at a time. Realtime-safe: no.
class VELTRA_EXPORT MemoryFactsReader {
public:
    MemoryFactsReader() noexcept;

    // The facts at this moment, from MemorySystem::current().
    MemoryFacts read() const noexcept;

    // The file that tells of stalls, for MemorySystem::openEvents().
    const char* pressurePath() const noexcept { return m_pressurePath.data(); }

private:
    static constexpr std::size_t kLongestPath = 1024;
    using Path = std::array<char, kLongestPath>;

    // A folder in one of the two hierarchies that there may be, and how much of its path is where
    // the hierarchy is mounted.
    struct Group {
        Path path{};  // empty: not in such a hierarchy
        std::size_t mountLength = 0;
    };

    void readGroup(const Group& group, bool isUnified, MemoryFacts& facts) const noexcept;

    Group m_unified;
    Group m_legacy;
    Path m_pressurePath{};
};

}  // namespace veltra
