// SPDX-License-Identifier: MIT
// The system is told once, at the first use of this file. Locks are only ever added, each at the
// first free place of its policy, so that all forks take them in the same order.
#include "veltra/platform/fork_handlers.h"

#include "veltra/base/object_file.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include <pthread.h>
#include <unistd.h>

namespace veltra {

namespace {

using Locks = std::array<std::atomic<AdaptiveLock*>, 16>;

// Locks are stored with release order and loaded with acquire order: they are seen as they were
// when they were added.
constinit Locks s_reset{};
constinit Locks s_held{};

// How many of s_held this thread's fork has taken: a lock may be added in the middle of a fork.
VELTRA_NEVER_ALLOCATED constinit thread_local std::size_t t_taken = 0;

// Written only in a forked child, while it has one thread; so relaxed throughout.
constinit std::atomic<std::uint32_t> s_generation{1};

AdaptiveLock* lockAt(const Locks& locks, std::size_t index) noexcept {
    return index < locks.size() ? locks[index].load(std::memory_order_acquire) : nullptr;
}

void beforeFork() noexcept {
    std::size_t count = 0;
    while (AdaptiveLock* const lock = lockAt(s_held, count)) {
        lock->lock();
        ++count;
    }
    t_taken = count;
}

void inParent() noexcept {
    for (; t_taken > 0; --t_taken)
        lockAt(s_held, t_taken - 1)->unlock();
}

// Reset rather than unlocked: the sleepers that a held lock knows of are threads of the parent.
void inChild() noexcept {
    for (std::size_t index = 0; AdaptiveLock* const lock = lockAt(s_reset, index); ++index)
        lock->reset();
    for (; t_taken > 0; --t_taken)
        lockAt(s_held, t_taken - 1)->reset();
    s_generation.fetch_add(1, std::memory_order_relaxed);
}

// False when memory is out: then a child suffers that is forked while another thread holds a lock.
bool areHandlersTaken() noexcept {
    static const bool areTaken = ::pthread_atfork(beforeFork, inParent, inChild) == 0;
    return areTaken;
}

[[noreturn]] void endForWantOfRoom() noexcept {
    constexpr std::string_view kMessage = "veltra: too many locks have a fork handler\n";
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, kMessage.data(), kMessage.size());
    std::abort();
}

}  // namespace

void addForkHandler(const ForkHandler& handler) noexcept {
    for (auto& place : handler.policy == ForkPolicy::HoldAcross ? s_held : s_reset) {
        AdaptiveLock* present = nullptr;
        if (place.compare_exchange_strong(present, &handler.lock, std::memory_order_acq_rel) ||
            present == &handler.lock) {
            areHandlersTaken();
            return;
        }
    }
    endForWantOfRoom();
}

bool isHeldByThisFork(const AdaptiveLock& lock) noexcept {
    for (std::size_t index = 0; index < t_taken; ++index)
        if (lockAt(s_held, index) == &lock) return true;
    return false;
}

std::uint32_t forkGeneration() noexcept {
    return areHandlersTaken() ? s_generation.load(std::memory_order_relaxed) : 0;
}

}  // namespace veltra
