// SPDX-License-Identifier: MIT
// An emergency cushion for the process, and a way to ask everybody to make room.
//
// At start the center takes a reserve from the heap. Code about to allocate calls CheckPoint() with
// what it needs; when that is not to be had, the center goes through the pressure levels, tells the
// observers and posts kLowMemoryNotification at each, until there is room. Inside a critical
// operation the reserve itself may be given up, and is taken again when an operation ends.
//
// It is in force only for users whose preferences set "LowMemoryReserve" (bytes, not 0);
// "MinAvailMemoryThreshold" (bytes, 104,857,600 when it is not set) is the least that any check
// asks for. Both are taken modulo 2^32. Until it is initialised every operation but CheckMemory()
// costs a few instructions and reports success, except that observers are turned away.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/export.h"

#include <cstdint>

namespace veltra {

extern "C" {
// What NotificationCenter::local() posts at each level, about no object: "kLowMemoryNotification".
VELTRA_EXPORT extern const VLString* const kLowMemoryNotification;
}

class VELTRA_EXPORT LowMemoryNotificationCenter {
public:
    // Drops caches and the like. `level` is 0, 1, 2 in the order of urgency, or 10 when the reserve
    // is gone; `size` is what must become available. The answer counts at level 10 only: anything
    // but 0 then makes every later LeaveCriticalOperation() answer false, for the life of the
    // process.
    //
    // Called with the center's lock held. An observer must not add or remove observers or post:
    // the call is refused with 0. Must not throw.
    using Observer = unsigned long (*)(void* context, std::uint8_t level, unsigned long size);

    LowMemoryNotificationCenter() = delete;

    // Reads the preferences and takes the reserve. 1 also when it was initialised before; 0 when
    // the preferences do not want it or the reserve is not to be had.
    // Thread: main. Realtime-safe: no.
    static int InitializeLMNotificationCenter() noexcept;

    // Gives the reserve back. Observers stay, for the next time.
    // Thread: main, while no other thread uses the center. Realtime-safe: no.
    static void ShutdownLMNotificationCenter() noexcept;

    // Thread: any. Realtime-safe: yes.
    static int IsLMNotificationCenterInitialized() noexcept;

    // 1 when a block of `size` bytes can be had at this moment, else 0; initialised or not.
    // Thread: any. Realtime-safe: no.
    static int CheckMemory(unsigned long size) noexcept;

    // Until the matching Leave, CheckPoint() may give up the reserve. Answers whether the reserve
    // is in place.
    // Thread: any; nests, over all threads. Realtime-safe: yes.
    static bool EnterCriticalOperation() noexcept;

    // Takes the reserve again if it is gone: deliberately at every Leave, not only the outermost.
    // False when that fails, or when an observer has ever reported failure at level 10.
    // Thread: any. Realtime-safe: no.
    static bool LeaveCriticalOperation() noexcept;

    // Goes through the levels `first` to `last`: posts the notification, then calls the observers
    // in the order of their registration.
    //
    // Without `notifyAll` it stops as soon as `size` bytes (or the threshold, if that is more) are
    // to be had after an observer, and answers 1, deliberately also when they never were: 0 means
    // only that the center's lock is held by this very thread. With `notifyAll` everybody is
    // called, nothing is tried, and the answer is 0.
    // Thread: any. Realtime-safe: no.
    static int PostLMNotification(int first, int last, unsigned long size, bool notifyAll) noexcept;

    // To be called before allocating `size` bytes: 1 when they (or the threshold, if that is more)
    // are to be had or everybody was asked to make room, 0 when they could not be found.
    // Thread: any. Realtime-safe: no.
    static int CheckPoint(unsigned long size) noexcept;

    // 1 when added; 0 when this pair is registered, when there is no callback, when the center is
    // not initialised, or when memory is out. `context` is not owned.
    // Thread: any. Realtime-safe: no.
    static int AddLMObserver(Observer callback, void* context) noexcept;

    // 1 when removed, 0 when not found or the center is not initialised. Waits until a pass that
    // calls the observer on another thread has ended.
    // Thread: any. Realtime-safe: no.
    static int RemoveLMObserver(Observer callback, void* context) noexcept;
};

}  // namespace veltra
