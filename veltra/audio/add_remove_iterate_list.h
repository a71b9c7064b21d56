// SPDX-License-Identifier: MIT
// Callbacks that any thread may add and remove without a lock, while one thread, usually the audio
// thread, calls them all.
//
// Who may do what. Add and Remove: any number of threads, at any time, also from inside a callback.
// Iterate: one thread at a time (not always the same one), never from inside a callback. The
// destructor: one thread, when no other call is in progress and none can begin.
//
// How it works. There are two chains of heap nodes. `pending` is a stack of requests, newest first,
// the only thing that Add and Remove touch: each pushes one node by compare-and-swap. Iterate takes
// the whole stack in one exchange, applies the requests to the active list as if oldest first, and
// walks that list. The active list has one reader and writer, Iterate.
//
// Why it is right.
// - Nothing is lost or applied twice: a push links to the very value that it replaces, and a take
//   replaces the whole stack, so every node leaves it exactly once.
// - There is no ABA: a pusher never reads the node it links to, so it does not matter whether that
//   address was freed and used again in between; when the swap succeeds, it is the newest request.
// - A node belongs to the pusher until its push, to the stack until the take, and to Iterate from
//   then on. Only Iterate (or the destructor) frees nodes, and no other thread ever follows a
//   pointer to one, so freeing needs no grace period.
// - `users` counts the calls in progress; the destructor moves it from 0 to -1, and from then on
//   every call is refused. It is changed by atomic operations only: with plain stores two
//   overlapping calls lose one, the count ends at -1 at rest, and the list is dead.
//   scripts/check-model shows both.
//
// But for the allocator, all three are lock-free: a thread repeats a step only when another thread
// has just completed one. In Iterate that is the step that counts it in; it takes the requests by
// one exchange, however many threads push, and then works alone. How long that takes is said there.
//
// CallbackList (callback_list.h) is for hosts that also need to know when a context may die.
#pragma once

#include "veltra/export.h"

#include <atomic>
#include <cstdint>

namespace veltra {

class VELTRA_EXPORT CAddRemoveIterateList {
public:
    // Called by Iterate on its thread with the context it was added with and Iterate's arguments.
    // It may Add and Remove, itself too: the effect comes with the next Iterate. It may neither
    // Iterate nor destroy the list it is called from. If it throws, the rest of the pass is left
    // out, the exception leaves Iterate, and the list stays usable.
    using Callback = void (*)(void* context, std::uint32_t message, void* data);

    // One node, made with `new`: an active entry, or a request (a removal has RemoveMark as its
    // callback).
    struct SEntry {
        SEntry* next;   // the one after it; in a chain of requests the one before it; null: none
        void* context;  // not owned; what a removal looks for
        Callback callback;  // RemoveMark: a removal
    };

    // Thread: any. Realtime-safe: yes.
    CAddRemoveIterateList() noexcept = default;
    CAddRemoveIterateList(const CAddRemoveIterateList&) = delete;
    CAddRemoveIterateList& operator=(const CAddRemoveIterateList&) = delete;

    // Frees every node without applying or calling anything. No other call may be in progress, and
    // none may begin. A call that has been counted is waited for (spinning), and one that comes
    // later is refused, but neither can save a host that breaks this rule: a call may have been
    // entered on another thread and not be counted yet.
    // Thread: any. Realtime-safe: no.
    ~CAddRemoveIterateList();

    // Queues `callback` to be called with `context` by every Iterate that starts from now on, after
    // the entries added before it. A context may be added several times, with the same or other
    // callbacks. `context` is not owned and serves as the identity for Remove.
    // Returns true when queued; false, and nothing happens, when an argument is null, the list is
    // being destroyed, or memory is out. Deliberate: RemoveMark as the callback is a removal.
    // Thread: any. Realtime-safe: no, it allocates a node.
    bool Add(void* context, Callback callback) noexcept;

    // Queues the removal of every entry with this context that was queued before, whatever its
    // callback; a context that is not there is no error. No Iterate that starts after Remove has
    // returned calls the context, but one in progress still may. So the context may be destroyed
    // when no Iterate is in progress after Remove has returned, or when an Iterate that started
    // after that is known to have started: passes do not overlap. Remove is a full barrier: a host
    // that sets a sequentially consistent atomic flag around Iterate may read it after Remove and
    // believe it. Returns as Add does; after false for want of memory the entries are still there.
    // Thread: any. Realtime-safe: no, it allocates a node.
    bool Remove(void* context) noexcept;

    // Applies all queued requests, then calls every active callback in the order of addition with
    // (its context, message, data). Requests queued meanwhile wait for the next Iterate. Does
    // nothing inside a callback of the same list.
    //
    // What a pass costs: a step for each request; and when there are removals among them, one walk
    // over the active entries, in which each is looked up among the removals (about as many
    // comparisons as the logarithm of their number, never more than 64). So ten times as many
    // requests cost little more than ten times as much, and nothing bounds their number but the
    // host.
    // It takes no lock, waits for nobody and allocates nothing, but it is the one place that frees:
    // each removed entry and each removal request goes back to the allocator here. While the leak
    // guard watches, deleting a recorded one takes its lock. CallbackList frees nothing here.
    // Thread: audio, one at a time. Realtime-safe: yes, if the callbacks and `delete` are.
    void Iterate(std::uint32_t message, void* data);

    // Iterate's own first half, for a host that takes requests from elsewhere: applies `chain` to
    // the active list and takes ownership of its nodes. They are linked by next, the newest request
    // first, up to null, and come from `new`. Returns true when an entry was added or removed, even
    // if the chain undid it again. Any length is safe, also on a small stack.
    // Thread: as Iterate, not while one is in progress. Realtime-safe: yes, if `delete` is.
    bool Modify(SEntry* chain) noexcept;

    // Does nothing; its address marks a removal request. A host that links statically must not let
    // its linker merge equal functions whose addresses are taken (--icf=all): an empty callback of
    // its own would then be taken for a removal.
    // Thread: any. Realtime-safe: yes.
    static void RemoveMark(void* context, std::uint32_t message, void* data) noexcept;

private:
    SEntry* m_head = nullptr;                 // Iterate only
    SEntry* m_tail = nullptr;                 // Iterate only
    std::atomic<SEntry*> m_pending{nullptr};  // any thread
    std::atomic<std::int32_t> m_users{0};     // any thread; a pass counts 65536; -1: going

    static_assert(std::atomic<SEntry*>::is_always_lock_free);
    static_assert(std::atomic<std::int32_t>::is_always_lock_free);
};

static_assert(sizeof(CAddRemoveIterateList) == 4 * sizeof(void*));

}  // namespace veltra
