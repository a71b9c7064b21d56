// SPDX-License-Identifier: MIT
// A callback list for hosts whose contexts die: what CAddRemoveIterateList does, and three things
// more. Iterating frees nothing, nodes may be the host's own memory, and a removal returns a ticket
// that tells when its context may be destroyed. For C: callback_list_c.h.
//
//     std::optional<CallbackList::Ticket> gone = voices.remove(voice);    // any thread
//     if (gone.has_value() && gone->isSafe()) delete voice;               // at any later look
//     voices.collect();                                                   // now and then
//
// Who may do what. add, remove, collect and tickets: any number of threads, at any time, also from
// inside a callback. iterate: one thread at a time, never from inside a callback. The destructor:
// one thread, when no other call is in progress and none can begin.
//
// How it works. `pending` is a stack of requests, newest first; add and remove push one node each
// by compare-and-swap. A pass takes the whole stack in one exchange, applies it to the active list,
// and calls what is then in that list, which no other thread touches. Nodes that a pass is done
// with are given back: its own memory to the host by a flag in the node, heap nodes to collect() by
// a second stack, `done`. Passes are numbered from 1: `begun` is the number of the pass that has
// begun, `applied` of the one that has applied its requests. Only iterate writes them.
//
// Invariant: after the number p is in `applied`, pass p and all later ones call no entry whose
// removal was in `pending` when pass p took it.
//
// Why a context may be destroyed. remove pushes its request, then reads `begun`, say b, and its
// ticket is for pass b + 1. The push, the reading, the writing of b + 1 and the taking by that pass
// are all sequentially consistent. Since b + 1 was not there to be read, it was written after the
// push, and the pass finds the request. Once `applied` says b + 1, that pass calls the context no
// more; passes before it are over, since passes do not overlap. The release store of `applied` and
// the ticket's acquire load make everything that callbacks did happen before the destruction.
//
// Why a node may be reclaimed. A pass gives a node back after it has taken it out of every chain,
// and reads its link before. Nobody else follows pointers to nodes: a push only compares the
// address of the newest. The flag and `done` are written with release and read with acquire. A push
// to `done` links to the value it replaces, and only passes push, so there is no ABA there either.
//
// scripts/check-model checks this in every interleaving, and that it fails when a step is left out.
#pragma once

#include "veltra/audio/add_remove_iterate_list.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace veltra {

class VELTRA_EXPORT CallbackList {
public:
    // May add and remove, itself too; may not iterate or destroy the list. If it throws, the rest
    // of the pass is left out and the list stays usable.
    using Callback = CAddRemoveIterateList::Callback;

    // Memory of the host's for one addition or one removal: a member of the context, for example.
    // It must not move, and not be destroyed while it is in use or before the list is.
    class Node : CAddRemoveIterateList::SEntry {
    public:
        Node() noexcept : SEntry{nullptr, nullptr, nullptr} {}
        Node(const Node&) = delete;
        Node& operator=(const Node&) = delete;

        // False from the call that it is given to until the list is done with it: for a removal,
        // when that is applied; for an addition, when the entry's removal is applied. The context
        // is then called no more for this entry.
        // Thread: any. Realtime-safe: yes.
        bool isFree() const noexcept { return !m_isInUse.load(std::memory_order_acquire); }

    private:
        friend class CallbackList;
        std::atomic<bool> m_isInUse{false};  // set by add and remove, cleared by iterate
        bool m_isFromHeap = false;
    };

    // Tells whether the context of a removal may be destroyed. Small, and copied freely.
    class Ticket {
    public:
        // True once no entry that was added before the removal is called any more. It takes a pass
        // that begins after the removal: a host whose audio has stopped calls iterate itself, or
        // destroys the list. The list must be alive. Ask within 2^31 passes of the first yes (16
        // days of 1,500 a second): then the numbers have come round, and for as long it is no.
        // Thread: any. Realtime-safe: yes.
        bool isSafe() const noexcept {
            // acquire: with iterate's release of the same number.
            const std::uint32_t applied = m_list->m_applied.load(std::memory_order_acquire);
            return applied - m_pass < kHalf;  // right also when the numbers wrap round
        }

    private:
        friend class CallbackList;
        static constexpr std::uint32_t kHalf = 0x80000000U;
        Ticket(const CallbackList& list, std::uint32_t pass) noexcept
            : m_list(&list), m_pass(pass) {}

        const CallbackList* m_list;
        std::uint32_t m_pass;
    };

    // Thread: any. Realtime-safe: yes.
    CallbackList() noexcept = default;
    CallbackList(const CallbackList&) = delete;
    CallbackList& operator=(const CallbackList&) = delete;

    // Calls nothing. Frees the list's own nodes and gives the host's nodes back. No other call may
    // be in progress.
    // Thread: any. Realtime-safe: no.
    ~CallbackList();

    // Queues `callback` to be called with `context` by every pass that begins from now on, after
    // the entries added before it. The same context may be added several times.
    // Returns false, and nothing happens, when the context or the callback is null, the node is in
    // use, or memory is out.
    // Thread: any. Realtime-safe: yes with a node; no without, for one is allocated.
    bool add(void* context, Callback callback) noexcept;
    bool add(Node& node, void* context, Callback callback) noexcept;

    // Queues the removal of every entry with this context that was queued before; a context that is
    // not there is no error. No pass that begins after this has returned calls the context.
    // Returns nothing, and nothing happens, when the context is null, the node is in use, or memory
    // is out.
    // Thread: any. Realtime-safe: yes with a node; no without, for one is allocated.
    std::optional<Ticket> remove(void* context) noexcept;
    std::optional<Ticket> remove(Node& node, void* context) noexcept;

    // One pass: applies all queued requests, then calls every active callback in the order of
    // addition with (its context, message, data). Requests queued meanwhile wait for the next pass.
    // It takes no lock, waits for nobody, allocates and frees nothing. The cost is that of
    // CAddRemoveIterateList::Iterate, without the freeing. Does nothing inside a callback.
    // Thread: audio, one at a time. Realtime-safe: yes, if the callbacks are.
    void iterate(std::uint32_t message, void* data);

    // Frees the nodes that passes are done with and returns how many there were. Without it they
    // are kept until the list is destroyed. A list that is given only the host's nodes needs none.
    // Thread: any but audio. Realtime-safe: no.
    std::size_t collect() noexcept;

private:
    using SEntry = CAddRemoveIterateList::SEntry;

    static Node* nodeFromHeap() noexcept;
    static bool take(Node& node) noexcept;
    void push(Node& node, void* context, Callback callback) noexcept;
    std::optional<Ticket> pushRemoval(Node& node, void* context) noexcept;
    void apply(SEntry* newest) noexcept;

    SEntry* m_head = nullptr;                 // iterate only
    SEntry* m_tail = nullptr;                 // iterate only
    bool m_isIterating = false;               // iterate only
    std::atomic<SEntry*> m_pending{nullptr};  // any thread pushes, iterate takes
    std::atomic<SEntry*> m_done{nullptr};     // iterate pushes, collect takes
    std::atomic<std::uint32_t> m_begun{0};    // iterate writes, remove reads
    std::atomic<std::uint32_t> m_applied{0};  // iterate writes, tickets read
};

}  // namespace veltra
