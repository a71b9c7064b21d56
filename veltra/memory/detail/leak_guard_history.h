// SPDX-License-Identifier: MIT
// What the leak guard remembers of the blocks that are out: one record a block, newest first, and
// found by the block's address. Nothing here allocates or locks; the guard does both around it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltra::detail {

inline constexpr std::size_t kLeakGuardAddresses = 16;

struct LeakRecord {
    LeakRecord* next = nullptr;
    LeakRecord* previous = nullptr;  // null: not in the history
    void* block = nullptr;           // null: the block is being reallocated
    std::size_t size = 0;            // as it was asked for
    std::size_t blocks = 1;          // more only in a report, where equal stacks are put together
    std::array<std::uintptr_t, kLeakGuardAddresses> returnAddresses{};  // innermost first, then 0
    LeakRecord* chain = nullptr;  // the next in the same bucket
};

// At most one record a block: a second one means that the block was given back past the guard.
class LeakHistory {
public:
    constexpr LeakHistory() noexcept = default;
    LeakHistory(const LeakHistory&) = delete;
    LeakHistory& operator=(const LeakHistory&) = delete;

    // The record of `block`, or null.
    LeakRecord* find(const void* block) const noexcept;

    // Makes `record` the one of `block`. It becomes the newest, unless it is in the history
    // already: then it keeps its place. Answers the record that it replaces, or null.
    [[nodiscard]] LeakRecord* put(LeakRecord& record, void* block) noexcept;

    // Takes the block away from a record that keeps its place; reset() no longer counts it.
    void suspend(LeakRecord& record) noexcept;

    void remove(LeakRecord& record) noexcept;

    // Empties the history. Answers its records in order, linked by `next`. Suspended ones are taken
    // out, too, but left to whoever suspended them.
    [[nodiscard]] LeakRecord* takeAll() noexcept;

    // More buckets would speed up find(): that many, or 0. They are given, zeroed, to adopt(),
    // which answers the array that is to be freed instead: the old one, `buckets` itself when
    // another thread was faster, or null.
    std::size_t wantedBuckets() const noexcept { return m_count > m_buckets ? m_buckets * 4 : 0; }
    [[nodiscard]] LeakRecord** adopt(LeakRecord** buckets, std::size_t count) noexcept;

private:
    LeakRecord*& bucketOf(const void* block) const noexcept;
    void unchain(LeakRecord& record) noexcept;
    void unlink(LeakRecord& record) noexcept;

    static constexpr std::size_t kFirstBuckets = 256;
    LeakRecord* m_first[kFirstBuckets]{};
    LeakRecord** m_table = nullptr;         // null: m_first
    std::size_t m_buckets = kFirstBuckets;  // a power of two
    std::size_t m_count = 0;                // records with a block
    LeakRecord m_head;                      // sentinels, linked to each other by the first put()
    LeakRecord m_tail;
};

// The end of a block that the guard made larger: a mark by which the block is known to have a
// record. A tail alone proves nothing. An earlier block may have left one in the same memory, and a
// host may have copied one; only the history tells whether it counts.
//
//     offset 0   32 bytes, zero
//           32   20 bytes, the signature "VLLeakDebug", zero-padded
//           52   the record's address in the host's width, not aligned
//                zero up to the end
class LeakTail {
public:
    static constexpr std::size_t kSize = 88;

    // The tail at the end of a block that holds `size` bytes; none in blocks of 88 bytes and less.
    LeakTail(void* block, std::size_t size) noexcept
        : m_bytes(size > kSize ? static_cast<char*>(block) + size - kSize : nullptr) {}

    bool hasSignature() const noexcept;
    bool names(const LeakRecord& record) const noexcept;
    void write(const LeakRecord& record) noexcept;
    void clear() noexcept;  // signature and address

private:
    static constexpr std::size_t kSignature = 32;
    static constexpr std::size_t kAddress = 52;
    char* m_bytes;
};

}  // namespace veltra::detail
