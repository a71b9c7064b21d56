// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/leak_guard_history.h"

#include <cstring>
#include <utility>

namespace veltra::detail {

namespace {

constexpr char kSignatureText[20] = "VLLeakDebug";

}  // namespace

LeakRecord*& LeakHistory::bucketOf(const void* block) const noexcept {
    // The low four bits of a block's address are the same in all of them.
    const std::uint64_t mixed =
        (reinterpret_cast<std::uintptr_t>(block) >> 4) * std::uint64_t{0x9E3779B97F4A7C15};
    LeakRecord* const* table = m_table != nullptr ? m_table : m_first;
    return const_cast<LeakRecord*&>(table[(mixed >> 32) & (m_buckets - 1)]);
}

LeakRecord* LeakHistory::find(const void* block) const noexcept {
    LeakRecord* record = bucketOf(block);
    while (record != nullptr && record->block != block)
        record = record->chain;
    return record;
}

LeakRecord* LeakHistory::put(LeakRecord& record, void* block) noexcept {
    LeakRecord* const replaced = find(block);
    if (replaced != nullptr) remove(*replaced);
    if (record.previous == nullptr) {
        if (m_head.next == nullptr) {
            m_head.next = &m_tail;
            m_tail.previous = &m_head;
        }
        record.next = m_head.next;
        record.previous = &m_head;
        record.next->previous = &record;
        m_head.next = &record;
    }
    record.block = block;
    record.chain = std::exchange(bucketOf(block), &record);
    ++m_count;
    return replaced;
}

void LeakHistory::suspend(LeakRecord& record) noexcept {
    unchain(record);
    record.block = nullptr;
}

void LeakHistory::remove(LeakRecord& record) noexcept {
    if (record.block != nullptr) unchain(record);
    unlink(record);
}

LeakRecord* LeakHistory::takeAll() noexcept {
    LeakRecord* first = nullptr;
    LeakRecord** end = &first;
    LeakRecord* next = nullptr;
    for (LeakRecord* record = m_head.next; record != nullptr && record != &m_tail; record = next) {
        next = record->next;
        const bool isSuspended = record->block == nullptr;
        remove(*record);
        if (isSuspended) continue;
        *end = record;
        end = &record->next;
    }
    return first;
}

LeakRecord** LeakHistory::adopt(LeakRecord** buckets, std::size_t count) noexcept {
    if (count <= m_buckets) return buckets;
    LeakRecord** const old = std::exchange(m_table, buckets);
    m_buckets = count;
    for (LeakRecord* record = m_head.next; record != &m_tail; record = record->next)
        if (record->block != nullptr)
            record->chain = std::exchange(bucketOf(record->block), record);
    return old;
}

void LeakHistory::unchain(LeakRecord& record) noexcept {
    LeakRecord** link = &bucketOf(record.block);
    while (*link != &record)
        link = &(*link)->chain;
    *link = record.chain;
    --m_count;
}

void LeakHistory::unlink(LeakRecord& record) noexcept {
    if (record.previous == nullptr) return;
    record.previous->next = record.next;
    record.next->previous = record.previous;
    record.next = record.previous = nullptr;
}

bool LeakTail::hasSignature() const noexcept {
    return m_bytes != nullptr &&
           std::memcmp(m_bytes + kSignature, kSignatureText, sizeof kSignatureText) == 0;
}

bool LeakTail::names(const LeakRecord& record) const noexcept {
    const void* named = nullptr;
    std::memcpy(&named, m_bytes + kAddress, sizeof named);
    return named == &record;
}

void LeakTail::write(const LeakRecord& record) noexcept {
    if (m_bytes == nullptr) return;  // an allocator that does not tell how large its blocks are
    const void* const address = &record;
    std::memset(m_bytes, 0, kSize);
    std::memcpy(m_bytes + kSignature, kSignatureText, sizeof kSignatureText);
    std::memcpy(m_bytes + kAddress, &address, sizeof address);
}

void LeakTail::clear() noexcept {
    std::memset(m_bytes + kSignature, 0, kAddress + sizeof(void*) - kSignature);
}

}  // namespace veltra::detail
