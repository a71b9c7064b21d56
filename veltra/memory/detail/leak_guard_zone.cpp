// SPDX-License-Identifier: MIT
// Every allocation of a process runs through here while the guard is enabled, most of them outside
// any scope: these take no lock and write nothing that threads share.
//
//   - A thread that never opened a scope cannot be inside one, because a scope belongs to the stack
//     that it was opened on. One thread-local flag says so. It is set by the thread itself and
//     cleared by it, when it looks under the lock and finds no scope of its own; a scope that
//     another thread closes costs its owner one look more.
//   - A block without a record has no tail, which is seen in the block itself. A tail is written
//     before the block is handed out and cleared before it is given back, by whoever owns the block
//     at that moment: the host's own order between the two threads covers it.
//
// Inside a scope, a thread that has this one alone keeps a copy of it, and looks at the scopes
// again when their version has changed: a change that the thread was told of it sees, and another
// thread's that it was not told of it may as well see later.
//
// Everything else happens under one lock. Under it nothing is allocated or freed and no stack is
// walked, so that it may be taken inside any allocation, by a callback of the memory reserve that
// runs in the middle of one too. Hence arrays and records are made before and freed after; a block
// is reallocated with its record suspended; and what was decided before the lock was given back is
// looked at again.
#include "veltra/memory/detail/leak_guard_zone.h"

#include "veltra/base/errno_keeper.h"
#include "veltra/base/object_file.h"
#include "veltra/memory/detail/leak_guard_scopes.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/fork_safe_lock.h"
#include "veltra/platform/zone_code.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <new>
#include <utility>

namespace veltra::detail {

namespace {

struct ThreadState {
    std::uint32_t number = 0;  // 0: never opened a scope
    bool mayHaveScopes = false;
    bool isUnrecorded = false;
    std::uint64_t looked = 0;  // the version of the scopes that it has seen
    FrameIdentity only;        // its scope there, if it had one alone
};
VELTRA_NEVER_ALLOCATED constinit thread_local ThreadState thread;

// Written before the first wrapper is installed; the entries' order publishes it.
constinit ZoneEntries saved;

constinit ForkSafeLock guardLock;  // over history and scopes
constinit LeakHistory history;
constinit OpenScopes scopes;

void* outOfMemory() noexcept {
    errno = ENOMEM;
    return nullptr;
}

// One byte at least, so that the tail of every block is found again.
bool addTail(std::size_t size, std::size_t& grown) noexcept {
    return !__builtin_add_overflow(std::max<std::size_t>(size, 1), LeakTail::kSize, &grown);
}

void dispose(void* memory) noexcept {
    if (memory != nullptr) saved.free(memory);
}

// What a walk up the stack of an allocation finds.
struct CallStack {
    explicit CallStack(std::uintptr_t address) noexcept : around(look(address)) {}

    static ScopesAround look(std::uintptr_t address) noexcept {
        if (thread.looked == scopes.version() && thread.only.cfa > address)
            return ScopesAround(thread.only);
        const std::lock_guard lock(guardLock);
        const ScopesAround around(scopes, thread.number, address);
        thread.looked = scopes.version();
        thread.only = around.only();
        return around;
    }

    [[gnu::noinline]] static bool isOpenNow(const FrameIdentity& frame) noexcept {
        const std::lock_guard lock(guardLock);
        return scopes.contain({frame, thread.number});
    }

    // Every frame is wanted while there is room for its address, and those of scopes until one is
    // found.
    std::uintptr_t visit(const StackFrame& frame) noexcept {
        if (count < returnAddresses.size()) returnAddresses[count++] = frame.returnAddress;
        if (frame.identity.cfa >= next) {
            isGuarded = around.contains(frame.identity) ||
                        (!around.isComplete() && isOpenNow(frame.identity));
            next = isGuarded ? kNoMoreFrames : around.nextAbove(frame.identity.cfa);
        }
        return count < returnAddresses.size() ? kNextFrame : next;
    }

    std::array<std::uintptr_t, kLeakGuardAddresses> addresses() const noexcept {
        std::array<std::uintptr_t, kLeakGuardAddresses> all;
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] = i < count ? returnAddresses[i] : 0;
        return all;
    }

    ScopesAround around;
    std::uintptr_t next = 0;  // from here on a frame may be that of a scope
    std::array<std::uintptr_t, kLeakGuardAddresses> returnAddresses;  // `count` of them
    std::size_t count = 0;
    bool isGuarded = false;
};

void growTable(std::size_t buckets) noexcept {
    auto* table = static_cast<LeakRecord**>(saved.allocateZeroed(buckets, sizeof(void*)));
    if (table == nullptr) return;
    std::unique_lock lock(guardLock);
    LeakRecord** const unused = history.adopt(table, buckets);
    lock.unlock();
    dispose(unused);
}

void keep(void* block, std::size_t size, const CallStack& stack, LeakRecord* known) noexcept {
    LeakRecord* record = known;
    if (record == nullptr) {
        void* const memory = saved.allocate(sizeof(LeakRecord));
        if (memory == nullptr) return;
        record = new (memory) LeakRecord{.size = size, .returnAddresses = stack.addresses()};
    } else {
        record->size = size;
        record->returnAddresses = stack.addresses();
    }
    LeakTail tail(block, saved.size(block));

    std::unique_lock lock(guardLock);
    tail.write(*record);
    LeakRecord* const replaced = history.put(*record, block);
    const std::size_t buckets = history.wantedBuckets();
    lock.unlock();
    dispose(replaced);
    if (buckets != 0) growTable(buckets);
}

void drop(LeakRecord* record) noexcept {
    if (record == nullptr) return;
    std::unique_lock lock(guardLock);
    history.remove(*record);
    lock.unlock();
    dispose(record);
}

// Records a block that was just allocated, if the stack passes through an open scope. `known` is
// its suspended record, or null.
[[gnu::noinline]] VELTRA_ZONE_CODE void* allocated(void* block, std::size_t size,
                                                   LeakRecord* known) noexcept {
    const ErrnoKeeper keeper;
    CallStack stack(reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)));
    thread.mayHaveScopes = stack.around.hasThread();
    if (!stack.around.isEmpty() && !thread.isUnrecorded) {
        const Unrecorded own;
        walkCallers(
            [](void* context, const StackFrame& frame) noexcept {
                return static_cast<CallStack*>(context)->visit(frame);
            },
            &stack);
        if (stack.isGuarded) keep(block, size, stack, std::exchange(known, nullptr));
    }
    drop(known);
    return block;
}

enum class Claim { Remove, Suspend };

// The record of a block that is given back or reallocated; its tail is cleared.
[[gnu::noinline]] LeakRecord* claimMarked(void* block, LeakTail tail, Claim claim) noexcept {
    const std::lock_guard lock(guardLock);
    LeakRecord* const record = history.find(block);
    if (record == nullptr || !tail.names(*record)) return nullptr;
    tail.clear();
    claim == Claim::Remove ? history.remove(*record) : history.suspend(*record);
    return record;
}

inline LeakRecord* claimRecord(void* block, Claim claim) noexcept {
    const LeakTail tail(block, saved.size(block));
    return tail.hasSignature() ? claimMarked(block, tail, claim) : nullptr;
}

// After a reallocation that failed: the block is as it was.
void restore(LeakRecord& record, void* block) noexcept {
    LeakTail tail(block, saved.size(block));
    std::unique_lock lock(guardLock);
    LeakRecord* unused = &record;  // the history was emptied meanwhile
    if (record.previous != nullptr) {
        tail.write(record);
        unused = history.put(record, block);
    }
    lock.unlock();
    dispose(unused);
}

inline void* maybeRecorded(void* block, std::size_t size) noexcept {
    if (block == nullptr || !thread.mayHaveScopes) return block;
    return allocated(block, size, nullptr);
}

VELTRA_ZONE_CODE void* guardedAllocate(std::size_t size) noexcept {
    std::size_t grown = 0;
    if (!addTail(size, grown)) return outOfMemory();
    return maybeRecorded(saved.allocate(grown), size);
}

VELTRA_ZONE_CODE void* guardedAllocateZeroed(std::size_t count, std::size_t size) noexcept {
    std::size_t total = 0;
    std::size_t grown = 0;
    if (__builtin_mul_overflow(count, size, &total)) return outOfMemory();
    if (count == 1 || size == 0) {
        if (!addTail(size, grown)) return outOfMemory();
        return maybeRecorded(saved.allocateZeroed(1, grown), total);
    }
    if (__builtin_add_overflow(count, LeakTail::kSize / size + 1, &grown)) return outOfMemory();
    return maybeRecorded(saved.allocateZeroed(grown, size), total);
}

VELTRA_ZONE_CODE void* guardedAllocateAligned(std::size_t alignment, std::size_t size) noexcept {
    std::size_t grown = 0;
    if (!addTail(size, grown)) return outOfMemory();
    return maybeRecorded(saved.allocateAligned(alignment, grown), size);
}

// Size 0 frees, as far as the allocator below says so: hosts that count on it must not leak because
// they are guarded.
VELTRA_ZONE_CODE void* guardedReallocate(void* block, std::size_t size) noexcept {
    std::size_t grown = 0;
    if (!addTail(size, grown)) return outOfMemory();
    if (block == nullptr) return maybeRecorded(saved.reallocate(nullptr, grown), size);
    if (size == 0) {
        dispose(claimRecord(block, Claim::Remove));
        return saved.reallocate(block, 0);
    }
    LeakRecord* const known = claimRecord(block, Claim::Suspend);
    void* const moved = saved.reallocate(block, grown);
    if (moved == nullptr) {
        if (known != nullptr) restore(*known, block);
        return nullptr;
    }
    if (known == nullptr && !thread.mayHaveScopes) return moved;
    return allocated(moved, size, known);
}

VELTRA_ZONE_CODE void guardedFree(void* block) noexcept {
    if (block != nullptr) dispose(claimRecord(block, Claim::Remove));
    saved.free(block);
}

std::uint32_t nextThreadNumber() noexcept {
    static constinit std::atomic<std::uint32_t> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;  // nothing is published with it
}

// An array for `count` scopes; null for none, or when memory is out.
OpenScope* newScopes(std::size_t count) noexcept {
    if (count == 0) return nullptr;
    return static_cast<OpenScope*>(saved.allocate(count * sizeof(OpenScope)));
}

}  // namespace

Unrecorded::Unrecorded() noexcept : m_before(std::exchange(thread.isUnrecorded, true)) {}

Unrecorded::~Unrecorded() {
    thread.isUnrecorded = m_before;
}

void wrapZoneForLeakGuard() noexcept {
    AllocationZone& zone = AllocationZone::current();
    guardLock.holdAcrossForks();
    saved = zone.entries();
    constexpr auto kOrder = std::memory_order_release;  // with the loads of every caller
    zone.free.store(guardedFree, kOrder);               // first: what is recorded must be found
    zone.reallocate.store(guardedReallocate, kOrder);
    zone.allocate.store(guardedAllocate, kOrder);
    zone.allocateZeroed.store(guardedAllocateZeroed, kOrder);
    zone.allocateAligned.store(guardedAllocateAligned, kOrder);
}

bool openLeakScope(const FrameIdentity& frame) noexcept {
    if (thread.number == 0) thread.number = nextThreadNumber();
    const Unrecorded own;
    std::unique_lock lock(guardLock);
    for (;;) {
        const std::size_t count = scopes.count();
        lock.unlock();
        OpenScope* larger = newScopes(count + 1);
        if (larger == nullptr) return false;
        lock.lock();
        const bool isStill = scopes.count() == count;
        if (isStill) {
            larger = scopes.append({frame, thread.number}, larger);
            thread.mayHaveScopes = true;
        }
        lock.unlock();
        dispose(larger);
        if (isStill) return true;
        lock.lock();
    }
}

void closeLeakScope(const FrameIdentity& frame) noexcept {
    const Unrecorded own;
    std::unique_lock lock(guardLock);
    for (;;) {
        const std::size_t count = scopes.count();
        if (scopes.find(frame) == count) return;
        lock.unlock();
        OpenScope* smaller = newScopes(count - 1);
        lock.lock();
        const std::size_t index = scopes.find(frame);
        const bool isStill = scopes.count() == count && index < count;
        if (isStill) smaller = scopes.remove(index, smaller);
        lock.unlock();
        dispose(smaller);
        if (isStill) return;
        lock.lock();
    }
}

LeakRecord* takeLeakRecords() noexcept {
    const std::lock_guard lock(guardLock);
    return history.takeAll();
}

void freeLeakRecord(LeakRecord* record) noexcept {
    dispose(record);
}

}  // namespace veltra::detail
