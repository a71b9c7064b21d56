// SPDX-License-Identifier: MIT
// Applying a chain of additions and removals to a chain of entries, in one walk over each.
//
// The requests are taken newest first. So the removals met so far are those that come after the
// request at hand: an addition whose context is among them is gone again, any other stays, and at
// the end the entries that were there before are looked at once. The effect is that of applying
// the requests one by one, oldest first.
//
// The removals met are kept in a digital search tree, made of their own nodes: each node holds a
// context, and what lies below it goes left or right by the next bit of its hash. The hash is
// another for each address, so that no path is longer than its 64 bits, and about as long as the
// logarithm of the number of removals. Nothing is allocated, and nothing recurses.
#pragma once

#include "veltra/audio/add_remove_iterate_list.h"

#include <cstdint>
#include <new>

namespace veltra::detail {

using SEntry = CAddRemoveIterateList::SEntry;

class RemovalTree {
public:
    // Makes the request part of the tree. Answers false, and leaves it alone, when its context is
    // there already.
    bool add(SEntry* request) noexcept {
        Node** const place = find(request->context);
        if (*place != nullptr) return false;
        void* const context = request->context;
        *place = new (request) Node{context, {nullptr, nullptr}};
        return true;
    }

    bool has(void* context) noexcept { return m_root != nullptr && *find(context) != nullptr; }
    bool isEmpty() const noexcept { return m_root == nullptr; }

    // Takes one node out; which one is not specified. Requires that there is one.
    SEntry* takeAny() noexcept {
        while (m_root->below[0] != nullptr) {  // turns until the root has nothing on its left
            Node* const left = m_root->below[0];
            m_root->below[0] = left->below[1];
            left->below[1] = m_root;
            m_root = left;
        }
        Node* const taken = m_root;
        m_root = taken->below[1];
        void* const context = taken->context;
        return new (taken) SEntry{nullptr, context, &CAddRemoveIterateList::RemoveMark};
    }

private:
    struct Node {
        void* context;
        Node* below[2];
    };
    static_assert(sizeof(Node) <= sizeof(SEntry));
    static_assert(alignof(Node) <= alignof(SEntry));

    // Where the context is, or would be.
    Node** find(const void* context) noexcept {
        // Odd, so that different addresses have different products, whose upper bits come first.
        std::uint64_t hash = reinterpret_cast<std::uintptr_t>(context) * 0x9E3779B97F4A7C15U;
        Node** place = &m_root;
        for (; *place != nullptr && (*place)->context != context; hash <<= 1U)
            place = &(*place)->below[hash >> 63U];
        return place;
    }

    Node* m_root = nullptr;
};

struct ActiveEntries {
    SEntry* head = nullptr;
    SEntry* tail = nullptr;
};

// `dispose` gets each node that is no longer needed, and may free it: entries removed, then, when
// no chain has any of these, the removals.
// Answers whether an entry was added or removed, even if another request undid it.
template <typename Dispose>
bool applyRequests(SEntry* newest, ActiveEntries& active, Dispose dispose) noexcept {
    bool changed = false;
    RemovalTree removals;
    SEntry* repeated = nullptr;  // removals of contexts that the tree has
    ActiveEntries added;
    for (SEntry* next = newest; next != nullptr;) {
        SEntry* const request = next;
        next = request->next;
        if (request->callback == &CAddRemoveIterateList::RemoveMark) {
            if (!removals.add(request)) {
                request->next = repeated;
                repeated = request;
            }
            continue;
        }
        changed = true;
        if (removals.has(request->context)) {
            dispose(request);
            continue;
        }
        request->next = added.head;
        added.head = request;
        if (added.tail == nullptr) added.tail = request;
    }
    if (!removals.isEmpty()) {
        SEntry* lastKept = nullptr;
        for (SEntry** link = &active.head; *link != nullptr;) {
            SEntry* const entry = *link;
            if (!removals.has(entry->context)) {
                lastKept = entry;
                link = &entry->next;
                continue;
            }
            *link = entry->next;
            dispose(entry);
            changed = true;
        }
        active.tail = lastKept;
        while (!removals.isEmpty())
            dispose(removals.takeAny());
        while (repeated != nullptr) {
            SEntry* const request = repeated;
            repeated = request->next;
            dispose(request);
        }
    }
    if (added.head != nullptr) {
        SEntry*& end = active.tail == nullptr ? active.head : active.tail->next;
        end = added.head;
        active.tail = added.tail;
    }
    return changed;
}

}  // namespace veltra::detail
