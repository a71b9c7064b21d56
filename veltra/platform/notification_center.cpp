// SPDX-License-Identifier: MIT
#include "veltra/platform/notification_center.h"

#include "veltra/base/immortal.h"
#include "veltra/base/string_object_text.h"
#include "veltra/platform/fork_handlers.h"

#include <mutex>
#include <new>
#include <utility>

namespace veltra {

struct NotificationCenter::Observer {
    Observer* next = nullptr;
    void* context = nullptr;
    Callback callback = nullptr;
    const VLString* name = nullptr;
    const void* object = nullptr;
    bool isRemoved = false;

    bool wants(const VLString* posted, const void* about) const noexcept {
        return !isRemoved && (object == nullptr || object == about) &&
               (name == nullptr || name == posted || name->units == posted->units);
    }
};

NotificationCenter::~NotificationCenter() {
    destroy(std::exchange(m_first, nullptr));
}

bool NotificationCenter::addObserver(void* context, Callback callback, const VLString* name,
                                     const void* object) noexcept {
    if (callback == nullptr) return false;
    auto* added =
        new (std::nothrow) Observer{nullptr, context, callback, retainString(name), object};
    if (added == nullptr) return false;  // and no reference was taken
    const std::lock_guard guard(m_lock);
    Observer** end = &m_first;
    while (*end != nullptr)
        end = &(*end)->next;
    *end = added;
    return true;
}

void NotificationCenter::removeObserver(const void* context) noexcept {
    std::unique_lock guard(m_lock);
    for (Observer* one = m_first; one != nullptr; one = one->next)
        if (one->context == context) one->isRemoved = m_hasRemoved = true;
    Observer* removed = takeRemoved();
    guard.unlock();
    destroy(removed);
}

void NotificationCenter::post(const VLString* name, const void* object) noexcept {
    if (name == nullptr) return;
    std::unique_lock guard(m_lock);
    const Observer* last = m_first;
    if (last == nullptr) return;
    while (last->next != nullptr)
        last = last->next;
    ++m_passes;
    for (const Observer* one = m_first;; one = one->next) {
        if (one->wants(name, object)) {
            guard.unlock();
            one->callback(one->context, name, object);
            guard.lock();
        }
        if (one == last) break;
    }
    --m_passes;
    Observer* removed = takeRemoved();
    guard.unlock();
    destroy(removed);
}

// Out of the list, unless somebody is on his way through it. To be destroyed without the lock: the
// allocator may call back into the process.
NotificationCenter::Observer* NotificationCenter::takeRemoved() noexcept {
    if (m_passes != 0 || !m_hasRemoved) return nullptr;
    m_hasRemoved = false;
    Observer* removed = nullptr;
    for (Observer** link = &m_first; *link != nullptr;) {
        Observer* one = *link;
        if (one->isRemoved) {
            *link = one->next;
            one->next = std::exchange(removed, one);
        } else {
            link = &one->next;
        }
    }
    return removed;
}

void NotificationCenter::destroy(Observer* chain) noexcept {
    while (chain != nullptr) {
        Observer* next = chain->next;
        releaseString(chain->name);
        delete chain;
        chain = next;
    }
}

NotificationCenter& NotificationCenter::local() noexcept {
    static const Immortal<NotificationCenter> center;
    [[maybe_unused]] static const bool isForkSafe =
        (addForkHandler({(*center).m_lock, ForkPolicy::ResetInChild}), true);
    return *center;
}

}  // namespace veltra
