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
using ChildHandler = void (*)() noexcept;

// Locks are stored with release order and loaded with acquire order: they are seen as they were
// when they were added.
constinit Locks resetLocks{};
constinit Locks heldLocks{};
constinit std::array<std::atomic<ChildHandler>, 16> childHandlers{};  // likewise

// How many of heldLocks this thread's fork has taken: a lock may be added in the middle of a fork.
VELTRA_NEVER_ALLOCATED constinit thread_local std::size_t takenCount = 0;

AdaptiveLock* lockAt(const Locks& locks, std::size_t index) noexcept {
    return index < locks.size() ? locks[index].load(std::memory_order_acquire) : nullptr;
}

void beforeFork() noexcept {
    std::size_t count = 0;
    while (AdaptiveLock* const lock = lockAt(heldLocks, count)) {
        lock->lock();
        ++count;
    }
    takenCount = count;
}

void inParent() noexcept {
    for (; takenCount > 0; --takenCount)
        lockAt(heldLocks, takenCount - 1)->unlock();
}

// Reset rather than unlocked: the sleepers that a held lock knows of are threads of the parent.
void inChild() noexcept {
    for (std::size_t index = 0; AdaptiveLock* const lock = lockAt(resetLocks, index); ++index)
        lock->reset();
    for (; takenCount > 0; --takenCount)
        lockAt(heldLocks, takenCount - 1)->reset();
    for (const auto& place : childHandlers)
        if (const ChildHandler handler = place.load(std::memory_order_acquire)) handler();
}

// False when memory is out: then a child suffers that is forked while another thread holds a lock.
bool areHandlersTaken() noexcept {
    static const bool areTaken = ::pthread_atfork(beforeFork, inParent, inChild) == 0;
    return areTaken;
}

[[noreturn]] void endForWantOfRoom() noexcept {
    constexpr std::string_view kMessage = "veltra: too many fork handlers\n";
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, kMessage.data(), kMessage.size());
    std::abort();
}

// Puts `entry` into the first free place, unless it is there already.
template <typename Places, typename Entry>
void add(Places& places, Entry entry) noexcept {
    for (auto& place : places) {
        Entry present = nullptr;
        if (place.compare_exchange_strong(present, entry, std::memory_order_acq_rel) ||
            present == entry) {
            areHandlersTaken();
            return;
        }
    }
    endForWantOfRoom();
}

}  // namespace

void addForkHandler(const ForkHandler& handler) noexcept {
    add(handler.policy == ForkPolicy::HoldAcross ? heldLocks : resetLocks, &handler.lock);
}

void addChildHandler(void (*handler)() noexcept) noexcept {
    add(childHandlers, handler);
}

bool isHeldByThisFork(const AdaptiveLock& lock) noexcept {
    for (std::size_t index = 0; index < takenCount; ++index)
        if (lockAt(heldLocks, index) == &lock) return true;
    return false;
}

}  // namespace veltra
