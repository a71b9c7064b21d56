// SPDX-License-Identifier: MIT
#include "veltra/audio/callback_list.h"

#include "veltra/audio/detail/request_chain.h"

#include <new>

namespace veltra {

namespace {

class Flagged {
public:
    explicit Flagged(bool& flag) noexcept : m_flag(flag) { m_flag = true; }
    ~Flagged() { m_flag = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

private:
    bool& m_flag;
};

}  // namespace

CallbackList::~CallbackList() {
    SEntry* const chains[] = {m_head, m_pending.load(std::memory_order_acquire)};  // with push()
    for (SEntry* chain : chains) {
        while (chain != nullptr) {
            auto* const node = static_cast<Node*>(chain);
            chain = chain->next;
            if (node->m_isFromHeap)
                delete node;
            else
                node->m_isInUse.store(false, std::memory_order_release);  // with isFree()
        }
    }
    collect();
}

bool CallbackList::add(void* context, Callback callback) noexcept {
    if (context == nullptr || callback == nullptr) return false;
    Node* const node = nodeFromHeap();
    if (node != nullptr) push(*node, context, callback);
    return node != nullptr;
}

bool CallbackList::add(Node& node, void* context, Callback callback) noexcept {
    if (context == nullptr || callback == nullptr || !take(node)) return false;
    push(node, context, callback);
    return true;
}

std::optional<CallbackList::Ticket> CallbackList::remove(void* context) noexcept {
    Node* const node = context != nullptr ? nodeFromHeap() : nullptr;
    if (node == nullptr) return std::nullopt;
    return pushRemoval(*node, context);
}

std::optional<CallbackList::Ticket> CallbackList::remove(Node& node, void* context) noexcept {
    if (context == nullptr || !take(node)) return std::nullopt;
    return pushRemoval(node, context);
}

CallbackList::Node* CallbackList::nodeFromHeap() noexcept {
    auto* const node = new (std::nothrow) Node;
    if (node != nullptr) node->m_isFromHeap = true;
    return node;
}

bool CallbackList::take(Node& node) noexcept {
    // acquire: with the release of the pass that gave it back.
    return !node.m_isInUse.exchange(true, std::memory_order_acquire);
}

void CallbackList::push(Node& node, void* context, Callback callback) noexcept {
    node.context = context;
    node.callback = callback;
    SEntry* newest = m_pending.load(std::memory_order_relaxed);  // checked by the swap
    do {
        node.next = newest;
        // seq_cst: hands the node to the exchange in iterate(), and comes before the reading of
        // `begun` in pushRemoval().
    } while (!m_pending.compare_exchange_weak(newest, &node, std::memory_order_seq_cst,
                                              std::memory_order_relaxed));
}

std::optional<CallbackList::Ticket> CallbackList::pushRemoval(Node& node, void* context) noexcept {
    push(node, context, &CAddRemoveIterateList::RemoveMark);
    // seq_cst: with the store in iterate(). The node may be gone by now.
    return Ticket(*this, m_begun.load(std::memory_order_seq_cst) + 1);
}

void CallbackList::iterate(std::uint32_t message, void* data) {
    if (m_isIterating) return;
    const Flagged isIterating(m_isIterating);
    const std::uint32_t pass = m_begun.load(std::memory_order_relaxed) + 1;  // our own
    m_begun.store(pass, std::memory_order_seq_cst);  // with pushRemoval(), ahead of the taking
    // seq_cst, both: with the swap in push().
    if (m_pending.load(std::memory_order_seq_cst) != nullptr)
        apply(m_pending.exchange(nullptr, std::memory_order_seq_cst));
    m_applied.store(pass, std::memory_order_release);  // with Ticket::isSafe()

    for (const SEntry* entry = m_head; entry != nullptr;) {
        const SEntry* const next = entry->next;  // read ahead of the call: a quarter off a pass
        entry->callback(entry->context, message, data);
        entry = next;
    }
}

void CallbackList::apply(SEntry* newest) noexcept {
    detail::ActiveEntries active{m_head, m_tail};
    SEntry* first = nullptr;
    SEntry* last = nullptr;
    detail::applyRequests(newest, active, [&](SEntry* unused) {
        auto* const node = static_cast<Node*>(unused);
        if (!node->m_isFromHeap) {
            node->m_isInUse.store(false, std::memory_order_release);  // with isFree() and take()
            return;
        }
        if (last == nullptr) last = node;
        node->next = first;
        first = node;
    });
    m_head = active.head;
    m_tail = active.tail;
    if (first == nullptr) return;
    SEntry* top = m_done.load(std::memory_order_relaxed);  // checked by the swap
    do {
        last->next = top;
        // release: with collect(), the only one that can make this fail.
    } while (!m_done.compare_exchange_weak(top, first, std::memory_order_release,
                                           std::memory_order_relaxed));
}

std::size_t CallbackList::collect() noexcept {
    std::size_t count = 0;
    // acquire: with apply().
    for (SEntry* chain = m_done.exchange(nullptr, std::memory_order_acquire); chain != nullptr;
         ++count) {
        const auto* const node = static_cast<Node*>(chain);
        chain = chain->next;
        delete node;
    }
    return count;
}

}  // namespace veltra
