// SPDX-License-Identifier: MIT
// The words of the state are read without a lock inside every allocation and deallocation; what
// they steer, the blocks and the way from one level to another, changes under the lock. The lock is
// taken only where an allocation failed or the main reserve is to be taken again, and never while
// the host is called or a line is written.
//
// A thread that meets the lock after its allocation failed may find that another one has just
// released something. `releases`, read before the allocation was tried, tells it: then it only
// tries again, and no second block is given up for a shortage that is over.
#include "veltra/memory/memory_reserve.h"

#include "veltra/base/errno_keeper.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/memory/detail/reserve_blocks.h"
#include "veltra/memory/detail/reserve_mode.h"
#include "veltra/memory/detail/zone_notice.h"
#include "veltra/platform/fork_handlers.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/preferences.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/zone_code.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace veltra {

constinit detail::ReserveMode detail::reserveMode = detail::ReserveMode::InPieces;

namespace {

using detail::ReserveMode;
using detail::reserveMode;

constexpr std::int64_t kMebibyte = 1'048'576;

struct Option {
    const char* key;
    std::atomic<long> value;
};

constinit std::array<Option, 6> options{{
    {"MaxSensibleSize", 100},
    {"BlockSize", 500},
    {"FinalBlockSize", 100},
    {"MemAvailSize", 200},
    {"MemAvailFragment", 10},
    {"Verbose", 0},
}};

// Words of their own: no order between them is relied on outside the lock.
constexpr auto kPlain = std::memory_order_relaxed;

struct State {
    // Read by every call of a wrapper.
    std::atomic<bool> isTracking{false};
    std::atomic<std::uint32_t> releases{0};
    AllocationZone saved{ZoneEntries{}};  // what the wrappers stand in front of; stays after Exit

    std::atomic<std::int64_t> bytesSinceRelease{0};
    std::atomic<std::int64_t> mark{0};
    std::atomic<bool> isRetakeRequested{false};
    std::atomic<int> level{0};
    std::atomic<int> levelChanged{0};
    std::atomic<int> probeFailures{0};
    std::atomic<QKMemoryReserveCallback> callback{nullptr};
    std::atomic<void*> context{nullptr};

    AdaptiveLock lock;
    detail::ReserveBlocks blocks;

    // Of the thread that enters and exits.
    std::int32_t entryCount = 0;
    bool arePreferencesRead = false;
    AllocationZone* wrapped = nullptr;
};

constinit State state;

long option(int index) noexcept {
    return options[static_cast<std::size_t>(index)].value.load(kPlain);
}

std::int64_t inBytes(std::int64_t mebibytes) noexcept {
    std::int64_t bytes = 0;
    return __builtin_mul_overflow(mebibytes, kMebibyte, &bytes) ? INT64_MAX : bytes;
}

// A negative size becomes one that no allocator has.
std::size_t sizeOption(int index) noexcept {
    const auto bytes = static_cast<std::uint64_t>(inBytes(option(index)));
    return bytes > SIZE_MAX ? SIZE_MAX : static_cast<std::size_t>(bytes);
}

void writeLine(std::string_view line) noexcept {
    const NoCancellation untilWritten;
    StandardError& stream = StandardError::current();
    stream.write(stream.inspect(), {line});
}

void tellHost() noexcept {
    // Acquire: with Enter, which stores the context first.
    if (const QKMemoryReserveCallback callback = state.callback.load(std::memory_order_acquire))
        callback(state.context.load(kPlain));
}

bool takeMainReserve(const ZoneEntries& zone) noexcept {
    return state.blocks.takeMain(zone, reserveMode, sizeOption(kMemoryReserveBlockSize));
}

// Whether the allocation is worth another try because of somebody else.
enum class Room { AsItWas, Made, MadeByAnother };

[[gnu::noinline, gnu::cold]] Room makeRoom(std::size_t size, std::uint32_t seenReleases) noexcept {
    if (errno != ENOMEM) return Room::AsItWas;  // refused for another reason than a shortage
    {
        const std::lock_guard guard(state.lock);
        if (state.releases.load(kPlain) != seenReleases) return Room::MadeByAnother;
        const int level = state.level.load(kPlain);
        const auto mebibytes = static_cast<std::int64_t>(size / std::size_t{kMebibyte});
        if (mebibytes > option(kMemoryReserveMaxSensibleSize) && level == 1) return Room::AsItWas;
        const ZoneEntries zone = state.saved.entries();
        if (state.blocks.releaseMain(zone)) {
            state.mark.store(0, kPlain);
            state.isTracking.store(true, kPlain);
            state.levelChanged.store(1, kPlain);
            state.level.store(1, kPlain);
            state.bytesSinceRelease.store(0, kPlain);
        } else if (state.blocks.releaseFinal(zone)) {
            state.level.store(2, kPlain);
            state.levelChanged.store(2, kPlain);
        } else {
            return Room::AsItWas;
        }
        state.releases.fetch_add(1, kPlain);
    }
    tellHost();
    return Room::Made;
}

// `size` is what `take` asks the saved entry for.
template <typename Take>
[[gnu::always_inline]] inline void* takeOrMakeRoom(std::size_t size, Take take) noexcept {
    const std::uint32_t seen = state.releases.load(kPlain);
    if (state.isTracking.load(kPlain)) [[unlikely]]
        state.bytesSinceRelease.fetch_add(static_cast<std::int64_t>(size), kPlain);
    void* block = take();
    if (block != nullptr) [[likely]]
        return block;
    Room room = makeRoom(size, seen);
    while (room == Room::MadeByAnother) {
        const std::uint32_t seenLater = state.releases.load(kPlain);
        block = take();
        if (block != nullptr) return block;
        room = makeRoom(size, seenLater);
    }
    return take();
}

VELTRA_ZONE_CODE void* reserveAllocate(std::size_t size) noexcept {
    return takeOrMakeRoom(size, [size] { return state.saved.allocate.load(kPlain)(size); });
}

VELTRA_ZONE_CODE void* reserveAllocateZeroed(std::size_t count, std::size_t size) noexcept {
    std::size_t total = 0;
    if (__builtin_mul_overflow(count, size, &total)) {  // no release makes room for that
        errno = ENOMEM;
        return nullptr;
    }
    return takeOrMakeRoom(
        total, [count, size] { return state.saved.allocateZeroed.load(kPlain)(count, size); });
}

VELTRA_ZONE_CODE void* reserveAllocateAligned(std::size_t alignment, std::size_t size) noexcept {
    return takeOrMakeRoom(size, [alignment, size] {
        return state.saved.allocateAligned.load(kPlain)(alignment, size);
    });
}

bool hasEnoughBeenFreed() noexcept {
    const std::int64_t freed = state.mark.load(kPlain) - state.bytesSinceRelease.load(kPlain);
    return freed > inBytes(option(kMemoryReserveMaxSensibleSize)) ||
           state.isRetakeRequested.load(kPlain);
}

[[gnu::noinline, gnu::cold]] void retakeWhenEnoughIsFreed() noexcept {
    if (!hasEnoughBeenFreed()) return;
    bool isTaken = false;
    {
        const std::lock_guard guard(state.lock);
        if (!state.isTracking.load(kPlain) || !hasEnoughBeenFreed()) return;  // another thread did
        state.mark.store(state.bytesSinceRelease.load(kPlain), kPlain);
        state.isRetakeRequested.store(false, kPlain);
        isTaken = takeMainReserve(state.saved.entries());
        if (isTaken) {
            state.isTracking.store(false, kPlain);
            state.level.store(0, kPlain);
        }
    }
    // The second text is deliberately that of Enter.
    writeLine(reserveMode == ReserveMode::InPieces ? "QKMemReserve: reallocating in Marquee mode\n"
                                                   : "QKMemReserve: allocating in Corvid mode\n");
    if (isTaken) tellHost();
}

[[gnu::noinline, gnu::cold]] void freeTracked(void* block) noexcept {
    const ErrnoKeeper keeper;
    const std::size_t size = state.saved.size.load(kPlain)(block);
    state.saved.free.load(kPlain)(block);
    state.bytesSinceRelease.fetch_sub(static_cast<std::int64_t>(size), kPlain);
    retakeWhenEnoughIsFreed();
}

void reserveFree(void* block) noexcept {
    if (state.isTracking.load(kPlain)) [[unlikely]]
        return freeTracked(block);
    state.saved.free.load(kPlain)(block);
}

void readPreferences() noexcept {
    if (state.arePreferencesRead) return;
    state.arePreferencesRead = true;
    Preferences& preferences = Preferences::current();
    preferences.synchronise();
    const PropertyValue chosen = preferences.value("MemoryReserve");
    for (Option& one : options)
        one.value.store(static_cast<long>(chosen[one.key].asInteger(one.value.load(kPlain))),
                        kPlain);
}

void saveEntries(const ZoneEntries& entries) noexcept {
    state.saved.allocate.store(entries.allocate, kPlain);
    state.saved.allocateZeroed.store(entries.allocateZeroed, kPlain);
    state.saved.allocateAligned.store(entries.allocateAligned, kPlain);
    state.saved.free.store(entries.free, kPlain);
    state.saved.size.store(entries.size, kPlain);
}

// The four entries that the reserve wraps. Release: with the loads of every caller, which so see
// what was saved before.
void putIntoZone(AllocationZone& zone, const ZoneEntries& entries) noexcept {
    constexpr auto kOrder = std::memory_order_release;
    zone.allocate.store(entries.allocate, kOrder);
    zone.allocateZeroed.store(entries.allocateZeroed, kOrder);
    zone.allocateAligned.store(entries.allocateAligned, kOrder);
    zone.free.store(entries.free, kOrder);
}

void start(QKMemoryReserveCallback callback, void* context) noexcept {
    const bool isSplit = reserveMode == ReserveMode::InPieces;
    AllocationZone& zone = AllocationZone::current();
    const ZoneEntries entries = zone.entries();
    writeLine(isSplit ? "QKMemReserve: starting in Marquee mode\n"
                      : "QKMemReserve: starting in Corvid mode\n");
    addForkHandler({state.lock, ForkPolicy::ResetInChild});
    {
        const std::lock_guard guard(state.lock);
        if (isSplit) {
            state.bytesSinceRelease.store(0, kPlain);
            state.isTracking.store(false, kPlain);
        }
        takeMainReserve(entries);
    }
    writeLine(isSplit ? "QKMemReserve: allocating in Marquee mode\n"
                      : "QKMemReserve: allocating in Corvid mode\n");
    {
        const std::lock_guard guard(state.lock);
        if (state.blocks.hasMain())
            state.blocks.takeFinal(entries, sizeOption(kMemoryReserveFinalBlockSize));
    }
    detail::noticeUncoveredZone();
    saveEntries(entries);
    state.context.store(context, kPlain);
    state.callback.store(callback, std::memory_order_release);  // with tellHost()
    state.wrapped = &zone;
    putIntoZone(zone, {reserveAllocate, reserveAllocateZeroed, reserveAllocateAligned, nullptr,
                       reserveFree, nullptr});
}

void stop() noexcept {
    if (state.wrapped == nullptr) return;
    const ZoneEntries entries = state.saved.entries();
    putIntoZone(*state.wrapped, entries);
    state.wrapped = nullptr;
    state.callback.store(nullptr, kPlain);
    state.context.store(nullptr, kPlain);
    const std::lock_guard guard(state.lock);
    state.blocks.releaseMain(entries);
    state.blocks.releaseFinal(entries);
}

void writeLevel(char* text, std::size_t capacity) noexcept {
    std::snprintf(text, capacity, "%d of 2", state.level.load(kPlain));
}

constexpr ReportSection kLevel{"memory level", writeLevel};
[[maybe_unused]] const bool isReported = addReportSection(kLevel);

}  // namespace

extern "C" {

void QKMemoryReserveSetOption(int index, long value) noexcept {
    if (index >= 0 && index < static_cast<int>(options.size()))
        options[static_cast<std::size_t>(index)].value.store(value, kPlain);
}

long QKMemoryReserveGetOption(int index) noexcept {
    return index >= 0 && index < static_cast<int>(options.size()) ? option(index) : 0;
}

void* QKMemoryReserveEnter(QKMemoryReserveCallback callback, void* context) noexcept {
    readPreferences();
    if (++state.entryCount == 1 && option(kMemoryReserveBlockSize) > 0) start(callback, context);
    return std::calloc(5, 10);
}

void QKMemoryReserveExit() noexcept {
    if (state.entryCount-- == 1) stop();
}

int QKMemoryReserveGetLowMemoryLevel() noexcept {
    return state.level.load(kPlain);
}

int QKMemoryReserveDidLowMemoryLevelChange(int reset) noexcept {
    return reset != 0 ? state.levelChanged.exchange(0, kPlain) : state.levelChanged.load(kPlain);
}

int QKMemoryReserveDidProbingFail(int reset) noexcept {
    return reset != 0 ? state.probeFailures.exchange(0, kPlain) : state.probeFailures.load(kPlain);
}

int QKMemoryReserveTestAvailableMemory(size_t totalBytes, size_t minimumFragmentBytes) noexcept {
    if (!state.blocks.hasFinal()) return 1;
    if (detail::isAvailableInFragments(state.saved.entries(), totalBytes, minimumFragmentBytes))
        return 1;
    state.probeFailures.fetch_add(1, kPlain);
    return 0;
}

void QKMemoryReserveTryReserveReallocation() noexcept {
    state.isRetakeRequested.store(true, kPlain);
}

}  // extern "C"

}  // namespace veltra
