// SPDX-License-Identifier: MIT
#include "veltra/audio/add_remove_iterate_list.h"

#include "veltra/audio/detail/request_chain.h"

#include <new>
#include <thread>

namespace veltra {

namespace {

using SEntry = CAddRemoveIterateList::SEntry;

constexpr std::int32_t kRequest = 1, kPass = 1 << 16;  // what a call adds to the count

// One call in progress, counted from construction to destruction unless it is refused.
class CountedCall {
public:
    // Refuses a call on a list that is going, and a pass while another is in progress.
    CountedCall(std::atomic<std::int32_t>& users, std::int32_t weight) noexcept
        : m_users(users), m_weight(0) {
        const std::int32_t most = weight == kPass ? kPass - 1 : INT32_MAX - kPass;
        std::int32_t count = users.load(std::memory_order_relaxed);  // checked by the swap
        do {
            if (count < 0 || count > most) return;
            // acquire: the call's work stays behind the count that the destructor's swap waits for.
        } while (!users.compare_exchange_weak(count, count + weight, std::memory_order_acquire,
                                              std::memory_order_relaxed));
        m_weight = weight;
    }
    ~CountedCall() {
        // release: with the destructor's swap, which sees the call's work done.
        if (m_weight != 0) m_users.fetch_sub(m_weight, std::memory_order_release);
    }
    CountedCall(const CountedCall&) = delete;
    CountedCall& operator=(const CountedCall&) = delete;

    bool refused() const noexcept { return m_weight == 0; }

private:
    std::atomic<std::int32_t>& m_users;
    std::int32_t m_weight;
};

bool push(std::atomic<std::int32_t>& users, std::atomic<SEntry*>& pending, void* context,
          CAddRemoveIterateList::Callback callback) noexcept {
    if (context == nullptr) return false;
    const CountedCall call(users, kRequest);
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
    const CountedCall call(m_users, kPass);
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
    detail::ActiveEntries active{m_head, m_tail};
    const bool changed =
        detail::applyRequests(chain, active, [](const SEntry* unused) { delete unused; });
    m_head = active.head;
    m_tail = active.tail;
    return changed;
}

void CAddRemoveIterateList::RemoveMark(void*, std::uint32_t, void*) noexcept {}

}  // namespace veltra
