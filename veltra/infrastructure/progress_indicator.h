// SPDX-License-Identifier: MIT
// Progress indicators for code that has no user interface of its own. A host registers once how
// progress is shown; any code then acquires an indicator, sets its value and text, and releases it.
// Where no host has registered, all of it does nothing.
//
//   VLProgressIndicator* progress = VLAcquireProgressIndicator(title, kVLProgressIndicatorEmptyID);
//   for (int block = 0; block < blocks && !VLProgressIndicatorIsCancelled(progress); ++block) {
//       convert(block);
//       VLSetProgressIndicatorValue(progress, (block + 1.0) / blocks);
//   }
//   VLReleaseProgressIndicator(progress);
//
// Setting calls the host at once, on the caller's thread. Work on other threads, or in steps that
// are too small to be shown, posts instead: the newest value waits in the indicator, and the host
// gets it at most 60 times a second.
//
// Posting takes no lock. The newest value is one word and the newest text another. Whoever posts
// exchanges the word; who delivers exchanges it with "nothing waits". So each value and text is
// taken out exactly once: by the delivery that hands it to the host, or by the post that replaces
// it, which also releases a text that nobody will see. The last one stays until it is delivered.
// What a thread wrote before it posted can be seen in the callback that gets this post. No record
// is reached through these words, so nothing is freed under anybody: a record ends only by
// VLReleaseProgressIndicator(), when the last post has returned.
//
// An indicator that is null, because memory was out, is taken everywhere and does nothing.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// How a host shows progress. The callbacks run on the thread of the caller. They must not throw.
// They may call everything in this header, VLReleaseProgressIndicator() for their own indicator
// included; only one that runs because of such a release must not release it again.
typedef struct VLProgressIndicatorService {
    // Shows a new indicator and returns the host's handle for it. `title` may be null; a
    // host that keeps it retains it. `identifier` is the caller's and says which indicator is
    // meant.
    void* (*acquire)(const VLString* title, const void* identifier);
    // Takes it off the screen; nothing comes for this handle any more.
    void (*release)(void* handle);
    // Value and result are what caller and host agree on. May be null.
    int32_t (*setValue)(void* handle, double value);
    // `text` may be null; a host that keeps it retains it. May be null.
    void (*setInfoText)(void* handle, const VLString* text);
} VLProgressIndicatorService;

// One indicator, with the callbacks that were registered when it was acquired. It keeps these for
// its life, whatever is registered later.
typedef struct VLProgressIndicator VLProgressIndicator;

// An identifier for indicators that need none; no other object has this address.
VELTRA_EXPORT extern const void* const kVLProgressIndicatorEmptyID;

// Registers a copy of `service`. When it is null, or lacks `acquire` or `release`, there is no
// service any more.
// Thread: any; code that acquires before it runs gets no indicator on screen. Realtime-safe: no.
VELTRA_EXPORT void VLProvideProgressIndicatorService(const VLProgressIndicatorService* service)
    VELTRA_NOEXCEPT;

// A new indicator, for the caller to release; also without a service. It retains `title`, which may
// be null. Null when memory is out; the host has then not been called.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT VLProgressIndicator* VLAcquireProgressIndicator(
    const VLString* title, const void* identifier) VELTRA_NOEXCEPT;

// The same, and a timer of this thread's run loop delivers what is posted, in every mode of the
// loop. Null also when there is no run loop, or its clock cannot be read. Without a host that takes
// values or texts there is no timer.
// Thread: one that drives its run loop; it also releases the indicator. Realtime-safe: no.
VELTRA_EXPORT VLProgressIndicator* VLAcquirePostedProgressIndicator(
    const VLString* title, const void* identifier) VELTRA_NOEXCEPT;

// Delivers what waits, calls the host's `release`, then releases title and text and frees the
// indicator.
// Thread: any, when no other thread uses the indicator any more; one from
// VLAcquirePostedProgressIndicator(): the thread that acquired it. Realtime-safe: no.
VELTRA_EXPORT void VLReleaseProgressIndicator(VLProgressIndicator* indicator) VELTRA_NOEXCEPT;

// Passes `value` on to the host and returns what the host returned; 0 when it does not take values.
// A value that was posted before and still waits is dropped.
// Thread: any, several at once; no lock is held. Realtime-safe: as the host's callback.
VELTRA_EXPORT int32_t VLSetProgressIndicatorValue(VLProgressIndicator* indicator,
                                                  double value) VELTRA_NOEXCEPT;

// Passes `text`, which may be null, on to the host, and keeps it until the next one. A text that
// was posted before and still waits is dropped.
// Thread: any, one at a time for each indicator, deliveries included; one from
// VLAcquirePostedProgressIndicator(): the thread that acquired it. Realtime-safe: no.
VELTRA_EXPORT void VLSetProgressIndicatorInfoText(VLProgressIndicator* indicator,
                                                  const VLString* text) VELTRA_NOEXCEPT;

// Leaves `value` for the next delivery, in place of one that still waits.
// Thread: any, several at once. Realtime-safe: yes, where 64-bit words are atomic without a lock
// (of the processors that we test on, all but 32-bit PowerPC).
VELTRA_EXPORT void VLPostProgressIndicatorValue(VLProgressIndicator* indicator,
                                                double value) VELTRA_NOEXCEPT;

// Leaves `text`, which may be null, for the next delivery, in place of one that still waits.
// Thread: any, several at once. Realtime-safe: no (it may free a text).
VELTRA_EXPORT void VLPostProgressIndicatorInfoText(VLProgressIndicator* indicator,
                                                   const VLString* text) VELTRA_NOEXCEPT;

// For hosts without a run loop, which may call it as often as they like: hands what was posted to
// the host, value before text, at most once in each sixtieth of a second. Returns whether anything
// was delivered.
// Thread: any, one at a time for each indicator; one from VLAcquirePostedProgressIndicator(): the
// thread that acquired it. Realtime-safe: no.
VELTRA_EXPORT bool VLDeliverProgressIndicatorUpdates(VLProgressIndicator* indicator)
    VELTRA_NOEXCEPT;

// For hosts with a button for it: asks the code behind the indicator to stop. It counts for each
// living indicator whose acquire() has returned this handle, and does nothing for null, for another
// handle, or after the release: so the button may be pressed at any time.
// Thread: any. Realtime-safe: no, it takes a lock.
VELTRA_EXPORT void VLCancelProgressIndicator(const void* handle) VELTRA_NOEXCEPT;

// Whether the host has cancelled the indicator; it stays so. One atomic load. False for null.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT bool VLProgressIndicatorIsCancelled(const VLProgressIndicator* indicator)
    VELTRA_NOEXCEPT;

VELTRA_C_END
