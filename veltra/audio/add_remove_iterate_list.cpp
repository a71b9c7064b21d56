// SPDX-License-Identifier: MIT
#include "veltra/audio/add_remove_iterate_list.h"

#include <new>
#include <thread>

namespace veltra {

namespace {

using SEntry = CAddRemoveIterateList::SEntry;

// One call in progress, counted from construction to destruction unless the list is going.
class CountedCall {
public:
    explicit CountedCall(std::atomic<std::int32_t>& users) noexcept
        // relaxed: only tells a destroyed list; a call that races with the destructor has no right.
        : m_users(users.load(std::memory_order_relaxed) < 0 ? nullptr : &users) {
        // acquire: the call's work stays behind the count that the destructor's swap waits for.
        if (m_users != nullptr) m_users->fetch_add(1, std::memory_order_acquire);
    }
    ~CountedCall() {
        // release: with the destructor's swap, which sees the call's work done.
        if (m_users != nullptr) m_users->fetch_sub(1, std::memory_order_release);
    }
    CountedCall(const CountedCall&) = delete;
    CountedCall& operator=(const CountedCall&) = delete;

    bool refused() const noexcept { return m_users == nullptr; }

private:
    std::atomic<std::int32_t>* m_users;
};

bool push(std::atomic<std::int32_t>& users, std::atomic<SEntry*>& pending, void* context,
          CAddRemoveIterateList::Callback callback) noexcept {
    if (context == nullptr) return false;
    const CountedCall call(users);
    if (call.refused()) return false;

    auto* request = new (std::nothrow) SEntry{nullptr, context, callback};
    if (request == nullptr) return false;
    SEntry* newest = pending.load(std::memory_order_relaxed);  // checked by the swap
    do {
        request->next = newest;
        // seq_cst: hands the node to Iterate's exchange, and is the full barrier of the contract.
    } while (!pending.compare_exchange_weak(newest, request, std::memory_order_seq_cst,
                                            std::memory_order_relaxed));
    return true;
}

SEntry* reversed(SEntry* chain) noexcept {
    SEntry* result = nullptr;
    while (chain != nullptr) {
        SEntry* next = chain->next;
        chain->next = result;
        result = chain;
        chain = next;
    }
    return result;
}

// Frees every entry with this context from the chain `head` to `tail`.
bool unlinkAll(SEntry*& head, SEntry*& tail, const void* context) noexcept {
    bool changed = false;
    SEntry* lastKept = nullptr;
    for (SEntry** link = &head; *link != nullptr;) {
        SEntry* entry = *link;
        if (entry->context != context) {
            lastKept = entry;
            link = &entry->next;
            continue;
        }
        *link = entry->next;
        delete entry;
        changed = true;
    }
    tail = lastKept;
    return changed;
}

void freeChain(SEntry* chain) noexcept {
    while (chain != nullptr) {
        SEntry* next = chain->next;
        delete chain;
        chain = next;
    }
}

}  // namespace

CAddRemoveIterateList::~CAddRemoveIterateList() {
    std::int32_t idle = 0;
    // acq_rel: with the release of each call that ended, and ahead of the frees below.
    while (!m_users.compare_exchange_strong(idle, -1, std::memory_order_acq_rel,
                                            std::memory_order_relaxed)) {
        idle = 0;
        std::this_thread::yield();
    }
    freeChain(m_pending.exchange(nullptr, std::memory_order_acquire));  // with push()
    freeChain(m_head);
}

bool CAddRemoveIterateList::Add(void* context, Callback callback) noexcept {
    return callback != nullptr && push(m_users, m_pending, context, callback);
}

bool CAddRemoveIterateList::Remove(void* context) noexcept {
    return push(m_users, m_pending, context, &RemoveMark);
}

void CAddRemoveIterateList::Iterate(std::uint32_t message, void* data) {
    const CountedCall call(m_users);
    if (call.refused()) return;

    // seq_cst, both: with the swap in push(); the load alone is the common case, nothing queued.
    if (m_pending.load(std::memory_order_seq_cst) != nullptr) {
        Modify(m_pending.exchange(nullptr, std::memory_order_seq_cst));
    }
    for (const SEntry* entry = m_head; entry != nullptr;) {
        const SEntry* next = entry->next;  // read ahead of the call: a quarter off a pass
        entry->callback(entry->context, message, data);
        entry = next;
    }
}

bool CAddRemoveIterateList::Modify(SEntry* chain) noexcept {
    bool changed = false;
    for (SEntry* rest = reversed(chain); rest != nullptr;) {
        SEntry* request = rest;
        rest = request->next;
        request->next = nullptr;
        if (request->callback == &RemoveMark) {
            void* context = request->context;
            delete request;
            changed |= unlinkAll(m_head, m_tail, context);
            continue;
        }
        (m_head == nullptr ? m_head : m_tail->next) = request;
        m_tail = request;
        changed = true;
    }
    return changed;
}

void CAddRemoveIterateList::RemoveMark(void*, std::uint32_t, void*) noexcept {}

}  // namespace veltra
