// SPDX-License-Identifier: MIT
#include "veltra/memory/low_memory_notification_center.h"

#include "veltra/base/object_file.h"
#include "veltra/base/string_object_text.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/memory/detail/probe.h"
#include "veltra/platform/fork_handlers.h"
#include "veltra/platform/notification_center.h"
#include "veltra/platform/preferences.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace veltra {

namespace {

using detail::canAllocate;

constexpr std::int64_t kDefaultThreshold = 104'857'600;
constexpr int kReserveGone = 10;

constinit const VLString notificationName = constantString(u"kLowMemoryNotification");

struct Entry {
    Entry* next;
    LowMemoryNotificationCenter::Observer callback;
    void* context;
};

// Plain words by contract: written at start and end, read anywhere.
constexpr auto kPlain = std::memory_order_relaxed;
constinit std::atomic<int> isInitialised{0};
constinit std::atomic<std::uint32_t> reserveSize{0};
constinit std::atomic<std::uint32_t> threshold{0};
constinit std::atomic<int> isFlagged{0};

constinit std::atomic<std::int32_t> criticalOperations{0};

// Taken out by whoever exchanges it for null, put in by whoever exchanges null for it; acquire and
// release pair these two, so that a block is given back by one thread only, after it was taken.
constinit std::atomic<void*> reserve{nullptr};

constinit AdaptiveLock lock;
// Initial-exec: its first use on a thread allocates nothing.
VELTRA_NEVER_ALLOCATED constinit thread_local bool holdsLock = false;
constinit Entry* firstEntry = nullptr;  // under the lock; whole between any two instructions

// The lock, if this thread does not hold it: an observer that calls back in gets an answer instead
// of waiting for itself.
class Pass {
public:
    Pass() noexcept : m_isHeld(!holdsLock) {
        if (!m_isHeld) return;
        lock.lock();
        holdsLock = true;
    }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    ~Pass() {
        if (!m_isHeld) return;
        holdsLock = false;
        lock.unlock();
    }
    explicit operator bool() const noexcept { return m_isHeld; }

private:
    const bool m_isHeld;
};

std::uint32_t preference(const char* key, std::int64_t fallback) noexcept {
    const std::int64_t wanted = Preferences::current().value(key).asInteger(fallback);
    const auto size = static_cast<std::uint32_t>(wanted);
    if (size == wanted) return size;
    constexpr std::uint32_t kWarningLevel = 4;
    std::array<char, kUsualMessage> text{};
    std::snprintf(text.data(), text.size(),
                  "the preference %s, %lld bytes, does not fit 32 bits and counts as %lu", key,
                  static_cast<long long>(wanted), static_cast<unsigned long>(size));
    logMessage(kWarningLevel, wantedBanner(), "LowMemoryNotificationCenter",
               std::string_view(text.data()));
    return size;
}

unsigned long probeSize(unsigned long size) noexcept {
    return std::max<unsigned long>(size, threshold.load(kPlain));
}

// The link that leads to the pair, or the last one.
Entry** find(LowMemoryNotificationCenter::Observer callback, const void* context) noexcept {
    Entry** link = &firstEntry;
    while (*link != nullptr && ((*link)->callback != callback || (*link)->context != context))
        link = &(*link)->next;
    return link;
}

int post(int first, int last, unsigned long size, bool notifyAll) noexcept {
    if (isInitialised.load(kPlain) == 0) return 1;
    const unsigned long wanted = probeSize(size);
    const Pass pass;
    if (!pass) return 0;
    const int answer = notifyAll ? 0 : 1;
    for (std::int64_t level = first; level <= last; ++level) {
        NotificationCenter::local().post(kLowMemoryNotification, nullptr);
        for (const Entry* entry = firstEntry; entry != nullptr; entry = entry->next) {
            const unsigned long failed =
                entry->callback(entry->context, static_cast<std::uint8_t>(level), wanted);
            if (level == kReserveGone && failed != 0) isFlagged.store(1, kPlain);
            if (!notifyAll && canAllocate(wanted)) return answer;
        }
    }
    return answer;
}

}  // namespace

const VLString* const kLowMemoryNotification = &notificationName;

int LowMemoryNotificationCenter::InitializeLMNotificationCenter() noexcept {
    if (isInitialised.load(kPlain) != 0) return 1;
    reserveSize.store(preference("LowMemoryReserve", 0), kPlain);
    threshold.store(preference("MinAvailMemoryThreshold", kDefaultThreshold), kPlain);
    if (reserveSize.load(kPlain) == 0 || threshold.load(kPlain) == 0) return 0;
    void* block = std::malloc(reserveSize.load(kPlain));
    if (block == nullptr) return 0;
    reserve.store(block, std::memory_order_release);  // with whoever takes it out
    criticalOperations.store(0, kPlain);
    addForkHandler({lock, ForkPolicy::ResetInChild});
    isInitialised.store(1, kPlain);
    return 1;
}

void LowMemoryNotificationCenter::ShutdownLMNotificationCenter() noexcept {
    if (isInitialised.load(kPlain) == 0) return;
    std::free(reserve.exchange(nullptr, std::memory_order_acquire));  // with whoever put it in
    isInitialised.store(0, kPlain);
}

int LowMemoryNotificationCenter::IsLMNotificationCenterInitialized() noexcept {
    return isInitialised.load(kPlain);
}

int LowMemoryNotificationCenter::CheckMemory(unsigned long size) noexcept {
    return canAllocate(size) ? 1 : 0;
}

bool LowMemoryNotificationCenter::EnterCriticalOperation() noexcept {
    criticalOperations.fetch_add(1, kPlain);
    return isInitialised.load(kPlain) == 0 || reserve.load(kPlain) != nullptr;
}

bool LowMemoryNotificationCenter::LeaveCriticalOperation() noexcept {
    criticalOperations.fetch_sub(1, kPlain);
    if (isInitialised.load(kPlain) == 0) return true;
    if (reserve.load(kPlain) == nullptr) {
        void* block = std::malloc(reserveSize.load(kPlain));
        void* absent = nullptr;
        // Release: with whoever takes it out. A block too many goes back.
        if (!reserve.compare_exchange_strong(absent, block, std::memory_order_release, kPlain))
            std::free(block);
        if (reserve.load(kPlain) == nullptr) return false;
    }
    return isFlagged.load(kPlain) == 0;
}

int LowMemoryNotificationCenter::PostLMNotification(int first, int last, unsigned long size,
                                                    bool notifyAll) noexcept {
    return post(first, last, size, notifyAll);
}

int LowMemoryNotificationCenter::CheckPoint(unsigned long size) noexcept {
    if (isInitialised.load(kPlain) == 0) return 1;
    const unsigned long wanted = probeSize(size);
    if (canAllocate(wanted)) return 1;
    if (post(0, 2, wanted, false) != 0) return 1;
    if (criticalOperations.load(kPlain) < 1) return 0;
    void* block = reserve.load(kPlain);
    // Acquire: with whoever put it in.
    if (block != nullptr &&
        reserve.compare_exchange_strong(block, nullptr, std::memory_order_acquire, kPlain))
        std::free(block);
    if (canAllocate(wanted)) return 1;
    return post(kReserveGone, kReserveGone, wanted, false);
}

int LowMemoryNotificationCenter::AddLMObserver(Observer callback, void* context) noexcept {
    if (isInitialised.load(kPlain) == 0 || callback == nullptr) return 0;
    const Pass pass;
    if (!pass) return 0;
    Entry** link = find(callback, context);
    if (*link != nullptr) return 0;
    *link = new (std::nothrow) Entry{nullptr, callback, context};
    return *link != nullptr ? 1 : 0;
}

int LowMemoryNotificationCenter::RemoveLMObserver(Observer callback, void* context) noexcept {
    if (isInitialised.load(kPlain) == 0) return 0;
    const Pass pass;
    if (!pass) return 0;
    Entry** link = find(callback, context);
    if (*link == nullptr) return 0;
    delete std::exchange(*link, (*link)->next);
    return 1;
}

}  // namespace veltra
