// SPDX-License-Identifier: MIT
#include "veltra/memory/leak_guard.h"

#include "veltra/base/immortal.h"
#include "veltra/base/string_object_text.h"
#include "veltra/memory/detail/leak_guard_preferences.h"
#include "veltra/memory/detail/leak_guard_zone.h"
#include "veltra/memory/detail/zone_notice.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/symbol_names.h"
#include "veltra/platform/zone_code.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <new>
#include <span>

namespace veltra {

using detail::Unrecorded;

// A scope on the heap knows its function as well: its address alone may have been taken again.
struct HeapLeakGuard : QKLeakGuard {
    explicit HeapLeakGuard(const FrameIdentity& identity) noexcept
        : QKLeakGuard(std::uintptr_t{0}), frame(identity) {}

    FrameIdentity frame;
};

namespace {

detail::LeakGuardPreferences& preferences() noexcept {
    static Immortal<detail::LeakGuardPreferences> instance;
    return *instance;
}

bool isEnabled() noexcept {
    return detail::leakGuardInForce() != nullptr;
}

bool isWanted(const VLString* group, const VLString* key) noexcept {
    if (group == nullptr && key == nullptr) return true;
    if (group == nullptr || key == nullptr) return false;
    const Unrecorded own;
    const auto groupText = textOf(group);
    const auto keyText = textOf(key);
    return groupText && keyText && preferences().value(*groupText, *keyText) != 0;
}

// All zero when the scope is not guarded. Callers are zone code.
FrameIdentity openScope(const VLString* group, const VLString* key, int up) noexcept {
    if (!isEnabled() || !isWanted(group, key)) return {};
    const FrameIdentity frame = callerFrame(up);
    if (frame.cfa == 0 || !detail::openLeakScope(frame)) return {};
    return frame;
}

void closeScope(const FrameIdentity& frame) noexcept {
    if (frame.cfa != 0) detail::closeLeakScope(frame);
}

QKLeakGuard* newHeapGuard(const FrameIdentity& frame) noexcept {
    const Unrecorded own;
    auto* const guard = new (std::nothrow) HeapLeakGuard(frame);
    if (guard == nullptr) closeScope(frame);
    return guard;
}

void printStack(std::span<const std::uintptr_t> addresses) noexcept {
    for (const std::uintptr_t address : addresses)
        std::printf("LLD:         0x%08lx ???\n", static_cast<unsigned long>(address));
}

void print(const detail::LeakRecord& leak) noexcept {
    std::printf("LLD: %li bytes on address 0x%08lx:\n", static_cast<long>(leak.size),
                reinterpret_cast<unsigned long>(leak.block));
    printStack(leak.returnAddresses);
}

long resetHistory(bool isPrinted) noexcept {
    if (!isEnabled()) return 0;
    const Unrecorded own;
    const NoCancellation untilTheEnd;
    const std::uint64_t limit = preferences().printLimit();
    std::uint64_t total = 0;
    std::uint64_t count = 0;
    for (detail::LeakRecord* leak = detail::takeLeakRecords(); leak != nullptr; ++count) {
        total += leak->size;
        if (isPrinted && (limit == 0 || count < limit)) print(*leak);
        detail::LeakRecord* const next = leak->next;
        detail::freeLeakRecord(leak);
        leak = next;
    }
    const long bytes = static_cast<long>(std::min<std::uint64_t>(total, LONG_MAX));
    if (isPrinted && bytes == 0) std::puts("LLD: no leaking bytes detected");
    if (isPrinted && bytes != 0) std::printf("LLD: a total of %li bytes leaking detected\n", bytes);
    return bytes;
}

void overridePreference(const VLString* group, const VLString* key, unsigned int value) noexcept {
    if (group == nullptr || key == nullptr) return;
    isEnabled();
    const Unrecorded own;
    const auto groupText = textOf(group);
    const auto keyText = textOf(key);
    if (groupText && keyText) preferences().setOverride(*groupText, *keyText, value);
}

}  // namespace

detail::LeakGuardPreferences* detail::leakGuardInForce() noexcept {
    static const bool isEnabled = [] {
        preferences().load();
        if (!preferences().isEnabled()) return false;
        prepareSymbolNames();
        noticeUncoveredZone();
        wrapZoneForLeakGuard();
        return true;
    }();
    return isEnabled ? &preferences() : nullptr;
}

[[gnu::noinline]] VELTRA_ZONE_CODE QKLeakGuard::QKLeakGuard(const VLString* group,
                                                            const VLString* key,
                                                            bool useCallersCaller) noexcept
    : m_frame(openScope(group, key, useCallersCaller ? 1 : 0).cfa) {}

QKLeakGuard::~QKLeakGuard() {
    closeScope({m_frame, 0});
}

long QKLeakGuard::ResetHistory(bool print) noexcept {
    return resetHistory(print);
}

void QKLeakGuard::OverridePreference(const VLString* group, const VLString* key,
                                     unsigned int value) noexcept {
    overridePreference(group, key, value);
}

extern "C" {

[[gnu::noinline]] VELTRA_ZONE_CODE QKLeakGuard* QKOpenLeakGuardScope() noexcept {
    return newHeapGuard(openScope(nullptr, nullptr, 0));
}

[[gnu::noinline]] VELTRA_ZONE_CODE QKLeakGuard* QKOpenLeakGuardScopeWithGroupAndKey(
    const VLString* group, const VLString* key) noexcept {
    return newHeapGuard(openScope(group, key, 0));
}

void QKCloseLeakGuardScope(QKLeakGuard* scope) noexcept {
    auto* const guard = static_cast<HeapLeakGuard*>(scope);
    if (guard == nullptr) return;
    closeScope(guard->frame);
    const Unrecorded own;
    delete guard;
}

long QKResetLeakGuardHistory(bool print) noexcept {
    return resetHistory(print);
}

void QKOverrideLeakGuardPreference(const VLString* group, const VLString* key,
                                   unsigned int value) noexcept {
    overridePreference(group, key, value);
}

void QKLeakGuardPrintStack(const uintptr_t* returnAddresses, int count, bool /*flag*/) noexcept {
    if (returnAddresses == nullptr || count < 1) return;
    const Unrecorded own;
    const NoCancellation untilTheEnd;
    printStack({returnAddresses, static_cast<std::size_t>(count)});
}
}

}  // namespace veltra
