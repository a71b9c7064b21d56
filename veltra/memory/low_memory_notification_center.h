// SPDX-License-Identifier: MIT
// An emergency cushion for the process, and a way to ask everybody to make room.
//
// At start the center takes a reserve from the heap. Code about to allocate calls CheckPoint() with
// what it needs; when that is not to be had, the center goes through the pressure levels, tells the
// observers and posts kLowMemoryNotification at each, until there is room.
//
// The reserve is for code that cannot ask anybody: it is given up only when CheckPoint() is called
// by an observer, or by whoever hears of the notification, during a critical operation. Everywhere
// else CheckPoint() asks the observers, returns 1 whatever came of it, and keeps the reserve. So
// save what must not be lost in the observer of the last level; when the operation ends, the
// reserve is taken again.
//
// The center works only where the preferences set "LowMemoryReserve" (bytes, not 0).
// "MinAvailMemoryThreshold" (bytes, 104,857,600 when it is not set) is the least that any check
// asks for. Both count modulo 2^32; the log tells when that changes them. Until it is initialised
// every operation but CheckMemory() costs a few instructions and reports success, except that
// observers are turned away.
//
// On a machine that promises more memory than it has no check ever fails: see memory_pressure.h.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/export.h"

#include <cstdint>

namespace veltra {

extern "C" {
// What NotificationCenter::local() posts at each level, about no object: "kLowMemoryNotification".
// An observer of it is called with the center's lock held, as an Observer is.
VELTRA_EXPORT extern const VLString* const kLowMemoryNotification;
}

class VELTRA_EXPORT LowMemoryNotificationCenter {
public:
    // Drops caches and the like. `level` is 0, 1, 2 in the order of urgency, or 10 when the reserve
    // is gone; `size` is how many bytes must become available. What it returns counts at level 10
    // only: anything but 0 then makes every later LeaveCriticalOperation() return false, for the
    // life of the process.
    //
    // Called with the center's lock held, on the thread that asked for memory. An observer must not
    // add or remove observers or post: such a call does nothing and returns 0. Must not throw.
    using Observer = unsigned long (*)(void* context, std::uint8_t level, unsigned long size);

    LowMemoryNotificationCenter() = delete;

    // Reads the preferences and takes the reserve. Returns 1, also when it was initialised before;
    // 0 when the preferences do not want it or there is no memory for the reserve. Thread: main.
    // Realtime-safe: no.
    static int InitializeLMNotificationCenter() noexcept;

    // Frees the reserve. Observers stay, for the next time.
    // Thread: main, while no other thread uses the center. Realtime-safe: no.
    static void ShutdownLMNotificationCenter() noexcept;

    // Thread: any. Realtime-safe: yes.
    static int IsLMNotificationCenterInitialized() noexcept;

    // Returns 1 when a block of `size` bytes can be allocated at this moment, else 0; initialised
    // or not. Thread: any. Realtime-safe: no.
    static int CheckMemory(unsigned long size) noexcept;

    // Until the matching Leave, a CheckPoint() inside an observer may give up the reserve. Returns
    // whether the reserve is in place.
    // Thread: any; nests, over all threads. Realtime-safe: yes.
    static bool EnterCriticalOperation() noexcept;

    // Takes the reserve again if it is gone: deliberately at every Leave, not only the outermost.
    // Returns false when that fails, or when an observer has ever reported failure at level 10.
    // Thread: any. Realtime-safe: no.
    static bool LeaveCriticalOperation() noexcept;

    // Goes through the levels `first` to `last`: posts the notification, then calls the observers
    // in the order of their registration.
    //
    // Without `notifyAll` it stops as soon as `size` bytes (or the threshold, if that is more) can
    // be allocated after an observer was called. It returns 1, deliberately also when they never
    // could: 0 means only that this thread holds the center's lock already. With `notifyAll`
    // everybody is called, nothing is tried, and the function returns 0. Thread: any.
    // Realtime-safe: no.
    static int PostLMNotification(int first, int last, unsigned long size, bool notifyAll) noexcept;

    // To be called before allocating `size` bytes. Returns 1 when they (or the threshold, if that
    // is more) can be allocated, or when everybody was asked to make room. Returns 0 only inside an
    // observer, when the bytes could not be found there, not even by giving up the reserve.
    // Thread: any. Realtime-safe: no.
    static int CheckPoint(unsigned long size) noexcept;

    // Returns 1 when added; 0 when this pair is registered already, when `callback` is null, when
    // the center is not initialised, when it is called inside an observer, or when memory is out.
    // `context` is not owned.
    // Thread: any. Realtime-safe: no.
    static int AddLMObserver(Observer callback, void* context) noexcept;

    // Returns 1 when removed; 0 when not found, when the center is not initialised, or when it is
    // called inside an observer: then the observer stays. Waits while observers are being called on
    // another thread.
    // Thread: any. Realtime-safe: no.
    static int RemoveLMObserver(Observer callback, void* context) noexcept;
};

}  // namespace veltra
