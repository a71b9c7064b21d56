// SPDX-License-Identifier: MIT
// Makes room before the system ends the process.
//
// A system that promises more memory than it has refuses no allocation: nothing in the process
// fails until its pages run out, and then it is killed. Two things help, and a host may use both.
//
//   - limitAddressSpaceToMemory(), called once at the start, makes the system refuse in time. Then
//     the guarded allocator, the low-memory center and the memory reserve have something to answer.
//   - MemoryPressure looks at what is left, as often as the host asks or when its descriptor is
//     readable, and has the low-memory center's observers drop what they can.
#pragma once

#include "veltra/base/time.h"
#include "veltra/export.h"
#include "veltra/platform/memory_system.h"

#include <array>
#include <cstdint>

namespace veltra {

// What is pressure. An entry for each of the center's levels 0, 1 and 2: the level is reached when
// one of its three conditions holds.
struct MemoryPressureMarks {
    // Less room than this, in bytes. All 0: an eighth, a sixteenth and a thirty-second of what the
    // process could have.
    std::array<std::uint64_t, 3> room{0, 0, 0};

    // Some threads, or all of them at once, waited for memory for more than this share of the last
    // ten seconds, in per cent. 100 or more: does not count.
    std::array<double, 3> someStalled{10, 100, 100};
    std::array<double, 3> allStalled{100, 5, 20};
};

// Thread: one at a time, for everything in here. Realtime-safe: no.
class VELTRA_EXPORT MemoryPressure {
public:
    static constexpr int kNone = -1;  // a level below 0: there is room

    // Finds the process's control groups, and keeps a copy of `marks`.
    explicit MemoryPressure(const MemoryPressureMarks& marks = {}) noexcept;
    MemoryPressure(const MemoryPressure&) = delete;
    MemoryPressure& operator=(const MemoryPressure&) = delete;
    ~MemoryPressure();

    // Readable four times a second, and at once when programs wait for memory, where the system
    // tells that: then call relieve(). Made when first asked for, closed with this object; -1 when
    // that fails.
    int descriptor() noexcept;

    // What the system says at this moment. Allocates nothing.
    MemoryFacts facts() const noexcept;

    // The highest level that is reached, or kNone. Allocates nothing.
    int level() const noexcept;

    // Has the low-memory center post its notification and call its observers, level by level from
    // the lowest one not told yet, until there is room or the highest level is told. Returns the
    // level that is left, or kNone.
    //
    // A level that stays is told again once a second, and at once when it is reached anew. Every
    // observer of a level is called; `size` says how much is missing, and at least the center's
    // threshold. Nothing is posted while the center is not initialised. Allocates nothing itself.
    int relieve() noexcept;

private:
    int levelOf(const MemoryFacts& facts) const noexcept;
    std::uint64_t mark(const MemoryFacts& facts, std::size_t level) const noexcept;
    void tell(int level, const MemoryFacts& facts) noexcept;

    const MemoryPressureMarks m_marks;
    const MemoryFactsReader m_reader;
    MemorySystem::Events m_events;
    int m_told = kNone;  // the highest level that was told since there was room
    Moment m_toldAt;
};

// Leaves the process as much address space as there is memory for it, by the machine and by its
// control groups, but for `margin` bytes, and at most `most` bytes beyond what it uses now. A limit
// that is there already and is smaller stays. Call it once, early: what is reserved but never used
// (stacks, the heaps of threads) counts as well.
//
// Returns how many bytes the process may still take. 0 when the system refuses or says nothing, or
// when there is no more memory than `margin`; then nothing is changed.
// Thread: main. Realtime-safe: no.
inline constexpr std::uint64_t kAddressSpaceMargin = std::uint64_t{64} << 20;
VELTRA_EXPORT std::uint64_t limitAddressSpaceToMemory(
    std::uint64_t margin = kAddressSpaceMargin,
    std::uint64_t most = MemorySystem::kNoLimit) noexcept;

}  // namespace veltra
