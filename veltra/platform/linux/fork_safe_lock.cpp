// SPDX-License-Identifier: MIT
#include "veltra/platform/fork_safe_lock.h"

#include <array>

#include <pthread.h>

namespace veltra {

namespace {

constinit std::array<std::atomic<ForkSafeLock*>, 4> locks{};

// How many of them this thread's fork has taken. One may be named in the middle of a fork.
[[gnu::tls_model("initial-exec")]] constinit thread_local std::size_t held = 0;

}  // namespace

struct ForkHandlers {
    static void prepare() noexcept {
        std::size_t count = 0;
        for (; count < locks.size(); ++count) {
            ForkSafeLock* const lock = locks[count].load(std::memory_order_acquire);  // with name()
            if (lock == nullptr) break;
            lock->m_lock.lock();
        }
        held = count;
    }

    static void inParent() noexcept {
        for (; held > 0; --held)
            locks[held - 1].load(std::memory_order_relaxed)->m_lock.unlock();
    }

    // The sleepers that a held lock knows of are threads of the parent.
    static void inChild() noexcept {
        for (; held > 0; --held)
            locks[held - 1].load(std::memory_order_relaxed)->m_lock.reset();
    }

    static bool own(const ForkSafeLock& lock) noexcept {
        for (std::size_t i = 0; i < held; ++i)
            if (locks[i].load(std::memory_order_relaxed) == &lock) return true;
        return false;
    }

    static void name(ForkSafeLock& lock) noexcept {
        for (auto& entry : locks) {
            ForkSafeLock* present = nullptr;
            // With the load in prepare().
            if (entry.compare_exchange_strong(present, &lock, std::memory_order_acq_rel) ||
                present == &lock)
                break;
        }
        [[maybe_unused]] static const int registered = ::pthread_atfork(prepare, inParent, inChild);
    }
};

void ForkSafeLock::lock() noexcept {
    if (!ForkHandlers::own(*this)) m_lock.lock();
}

void ForkSafeLock::unlock() noexcept {
    if (!ForkHandlers::own(*this)) m_lock.unlock();
}

void ForkSafeLock::holdAcrossForks() noexcept {
    ForkHandlers::name(*this);
}

}  // namespace veltra
