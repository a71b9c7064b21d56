// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/monitor.h"

#include "veltra/base/object_file.h"
#include "veltra/platform/fork_handlers.h"
#include "veltra/platform/fork_safe_lock.h"

#include <atomic>
#include <mutex>

namespace veltra {

namespace {

// Its address names the thread, in a forked child too.
VELTRA_NEVER_ALLOCATED constinit thread_local char threadMark = 0;

}  // namespace

// The guards that hold a monitor: a handful, so a list is searched faster than a map.
class MonitorTable {
public:
    void enter(InMonitor& guard) noexcept {
        [[maybe_unused]] static const bool isForkSafe =
            (s_lock.holdAcrossForks(), addChildHandler(leaveToThisThread), true);
        guard.m_thread = &threadMark;
        std::unique_lock lock(s_lock);
        for (;;) {
            InMonitor* const holder = find(guard.m_object);
            if (holder == nullptr) {
                guard.m_next = s_first;
                s_first = &guard;
                return;
            }
            if (holder->m_thread == guard.m_thread) {
                guard.m_outer = holder;
                return;
            }
            ++holder->m_waiting;
            const std::uint32_t seen = s_left.load(std::memory_order_relaxed);  // under the lock
            lock.unlock();
            s_left.wait(seen, std::memory_order_relaxed);
            lock.lock();
        }
    }

    void leave(InMonitor& guard) noexcept {
        if (guard.m_outer != nullptr) return;
        const std::unique_lock lock(s_lock);
        InMonitor** link = &s_first;
        while (*link != &guard)
            link = &(*link)->m_next;
        *link = guard.m_next;
        if (guard.m_waiting == 0) return;
        s_left.fetch_add(1, std::memory_order_relaxed);  // under the lock
        s_left.notify_all();
    }

private:
    // In a forked child: nobody will leave what other threads held, and nobody waits.
    static void leaveToThisThread() noexcept {
        InMonitor** link = &s_first;
        while (InMonitor* const guard = *link) {
            guard->m_waiting = 0;
            if (guard->m_thread == &threadMark) {
                link = &guard->m_next;
            } else {
                *link = guard->m_next;
            }
        }
    }

    static InMonitor* find(const void* object) noexcept {
        InMonitor* guard = s_first;
        while (guard != nullptr && guard->m_object != object)
            guard = guard->m_next;
        return guard;
    }

    static constinit ForkSafeLock s_lock;
    static constinit InMonitor* s_first;
    static constinit std::atomic<std::uint32_t> s_left;  // how often one with sleepers was left
};

constinit ForkSafeLock MonitorTable::s_lock;
constinit InMonitor* MonitorTable::s_first = nullptr;
constinit std::atomic<std::uint32_t> MonitorTable::s_left{0};

InMonitor::InMonitor(const void* object) noexcept : m_object(object), m_thread(nullptr) {
    MonitorTable().enter(*this);
}

InMonitor::~InMonitor() {
    MonitorTable().leave(*this);
}

}  // namespace veltra
