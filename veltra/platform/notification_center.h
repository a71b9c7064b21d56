// SPDX-License-Identifier: MIT
// Tells observers inside this process that something happened.
//
// Posting calls the observers at once, on the posting thread, and neither allocates nor copies: it
// is meant to work when memory is out.
#pragma once

#include "veltra/base/adaptive_lock.h"
#include "veltra/base/string_object.h"
#include "veltra/export.h"

#include <cstdint>

namespace veltra {

class VELTRA_EXPORT NotificationCenter {
public:
    // `context` is what the observer was added with; `name` and `object` are what was posted. Must
    // not throw. May add and remove observers, itself included, and post.
    using Callback = void (*)(void* context, const VLString* name, const void* object);

    constexpr NotificationCenter() noexcept = default;
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;
    // No post() may be running.
    ~NotificationCenter();

    // Calls `callback` with every notification of that name about that object; a null name or
    // object stands for any. A reference to `name` is kept; `context` and `object` are not
    // retained. Added twice means called twice. False when `callback` is null or memory is out.
    // Thread: any. Realtime-safe: no.
    bool addObserver(void* context, Callback callback, const VLString* name,
                     const void* object) noexcept;

    // Removes every observer that was added with `context`. No call of it begins after this; on
    // another thread one may still be running.
    // Thread: any. Realtime-safe: no.
    void removeObserver(const void* context) noexcept;

    // Calls the observers in the order in which they were added. An observer that is added
    // meanwhile is not called for this notification. Names are equal when their text is. Does
    // nothing for a null name. Thread: any. Realtime-safe: no (it locks, and observers may do
    // anything).
    void post(const VLString* name, const void* object) noexcept;

    // The center of the process.
    // Thread: any. Realtime-safe: yes, but for the first call.
    static NotificationCenter& local() noexcept;

private:
    struct Observer;

    Observer* takeRemoved() noexcept;
    static void destroy(Observer* chain) noexcept;

    AdaptiveLock m_lock;          // guards what follows; never held while an observer is called
    Observer* m_first = nullptr;  // in the order of their adding
    std::uint32_t m_passes = 0;   // calls of post() that run; meanwhile all nodes stay
    bool m_hasRemoved = false;    // some node is only marked as removed
};

}  // namespace veltra
