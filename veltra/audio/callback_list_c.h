// SPDX-License-Identifier: MIT
// For C and every language that can call it: the CallbackList of callback_list.h. Any thread adds
// and removes callbacks without a lock, while the audio thread calls them all. Each function does
// what the member of that name says.
//
//     VLCallbackList* voices = VLCallbackListCreate();
//     VLCallbackListAdd(voices, voice, render);              // any thread
//     VLCallbackListIterate(voices, 0, block);               // audio thread
//
//     VLCallbackTicket gone;
//     VLCallbackListRemove(voices, voice, &gone);            // any thread
//     if (VLCallbackTicketIsSafe(&gone)) free(voice);        // at any later look
//     VLCallbackListCollect(voices);                         // now and then
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// A list of callbacks; hosts only ever hold pointers to one.
typedef struct VLCallbackList VLCallbackList;

// Called with the context that it was added with and the arguments of VLCallbackListIterate. It may
// add and remove, itself too; it may not iterate or destroy the list, nor throw.
typedef void (*VLCallback)(void* context, uint32_t message, void* data);

// Memory of the host's for one addition or one removal: a member of the context, for example. It
// must not move, and not go away while it is in use or before the list does.
typedef struct VLCallbackNode {
    void* reserved[4];  // the list's, not to be touched
} VLCallbackNode;

// Tells when the context of a removal may be destroyed. Copied freely. One that is all zero is
// never safe.
typedef struct VLCallbackTicket {
    const void* list;  // the list's, not to be touched, as the next
    uint32_t pass;     // the pass that has to come
} VLCallbackTicket;

// The caller destroys it with VLCallbackListDestroy, when no other call is in progress. Destroying
// calls nothing and gives the host's nodes back. Null when memory is out.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT VLCallbackList* VLCallbackListCreate(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLCallbackListDestroy(VLCallbackList* list) VELTRA_NOEXCEPT;  // null: nothing

// Makes a node free. Every node needs this once, before its first use, and never while it is in
// use. Null: nothing.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void VLCallbackNodeInit(VLCallbackNode* node) VELTRA_NOEXCEPT;

// False from the call that the node is given to until the list is done with it. Null is not free.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT bool VLCallbackNodeIsFree(const VLCallbackNode* node) VELTRA_NOEXCEPT;

// Queues `callback` to be called with `context` by every pass that begins from now on, after the
// entries added before it. Returns false, and nothing happens, when an argument is null, the node
// is in use, or memory is out.
// Thread: any. Realtime-safe: yes with a node; no without, for one is allocated.
VELTRA_EXPORT bool VLCallbackListAdd(VLCallbackList* list, void* context,
                                     VLCallback callback) VELTRA_NOEXCEPT;
VELTRA_EXPORT bool VLCallbackListAddWithNode(VLCallbackList* list, VLCallbackNode* node,
                                             void* context, VLCallback callback) VELTRA_NOEXCEPT;

// Queues the removal of every entry with this context that was queued before. `ticket`, which may
// be null, receives the ticket of the removal. Returns false, and nothing happens but that the
// ticket becomes all zero, when another argument is null, the node is in use, or memory is out.
// Thread: any. Realtime-safe: yes with a node; no without, for one is allocated.
VELTRA_EXPORT bool VLCallbackListRemove(VLCallbackList* list, void* context,
                                        VLCallbackTicket* ticket) VELTRA_NOEXCEPT;
VELTRA_EXPORT bool VLCallbackListRemoveWithNode(VLCallbackList* list, VLCallbackNode* node,
                                                void* context,
                                                VLCallbackTicket* ticket) VELTRA_NOEXCEPT;

// True once no entry that was added before the removal is called any more. It takes a pass that
// begins after the removal. The list must be alive. Null, and a ticket that is all zero: false.
// Ask within 2^31 passes of the first yes: then the numbers have come round, and it is no.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT bool VLCallbackTicketIsSafe(const VLCallbackTicket* ticket) VELTRA_NOEXCEPT;

// One pass: applies all queued requests, then calls every callback with (its context, message,
// data), in the order of addition. It allocates and frees nothing, and waits for nobody. Does
// nothing inside a callback, and for a null list.
// Thread: audio, one at a time. Realtime-safe: yes, if the callbacks are.
VELTRA_EXPORT void VLCallbackListIterate(VLCallbackList* list, uint32_t message,
                                         void* data) VELTRA_NOEXCEPT;

// Frees the memory that passes are done with and returns how many nodes that were. Null: 0.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT size_t VLCallbackListCollect(VLCallbackList* list) VELTRA_NOEXCEPT;

VELTRA_C_END
