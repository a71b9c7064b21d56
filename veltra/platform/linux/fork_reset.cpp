// SPDX-License-Identifier: MIT
#include "veltra/platform/fork_reset.h"

#include <array>

#include <pthread.h>

namespace veltra {

namespace {

constinit std::array<std::atomic<AdaptiveLock*>, 8> locks{};

void resetLocks() noexcept {
    for (const auto& entry : locks)
        if (AdaptiveLock* lock = entry.load(std::memory_order_acquire)) lock->reset();
}

}  // namespace

void resetInChildren(AdaptiveLock& lock) noexcept {
    // Without handlers only a child forked while another thread holds a lock would suffer.
    [[maybe_unused]] static const int registered = ::pthread_atfork(nullptr, nullptr, resetLocks);
    for (auto& entry : locks) {
        AdaptiveLock* present = nullptr;
        if (entry.compare_exchange_strong(present, &lock, std::memory_order_release,  // with above
                                          std::memory_order_relaxed) ||
            present == &lock)
            return;
    }
}

}  // namespace veltra
