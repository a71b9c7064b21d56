// SPDX-License-Identifier: MIT
#include "veltra/memory/memory_pressure.h"

#include "veltra/memory/low_memory_notification_center.h"
#include "veltra/platform/clock.h"

#include <algorithm>
#include <climits>

namespace veltra {

namespace {

constexpr Nanoseconds kPeriod = milliseconds(250);
constexpr Nanoseconds kTellAgainAfter = milliseconds(1000);

Moment now() noexcept {
    return Clocks::current().monotonic().moment();
}

}  // namespace

MemoryPressure::MemoryPressure(const MemoryPressureMarks& marks) noexcept : m_marks(marks) {}

MemoryPressure::~MemoryPressure() {
    MemorySystem::current().closeEvents(m_events);
}

int MemoryPressure::descriptor() noexcept {
    if (m_events.all < 0)
        m_events = MemorySystem::current().openEvents(m_reader.pressurePath(), kPeriod);
    return m_events.all;
}

MemoryFacts MemoryPressure::facts() const noexcept {
    return m_reader.read();
}

std::uint64_t MemoryPressure::mark(const MemoryFacts& facts, std::size_t level) const noexcept {
    const auto& marks = m_marks.room;
    const bool isDefault =
        std::all_of(marks.begin(), marks.end(), [](std::uint64_t room) { return room == 0; });
    return isDefault ? facts.capacity().value_or(0) >> (3 + level) : marks[level];
}

int MemoryPressure::levelOf(const MemoryFacts& facts) const noexcept {
    for (std::size_t level = m_marks.room.size(); level-- > 0;) {
        const double some = facts.someStalled.value_or(0);
        const double all = facts.allStalled.value_or(0);
        if (facts.room().value_or(UINT64_MAX) < mark(facts, level) ||
            some > m_marks.someStalled[level] || all > m_marks.allStalled[level])
            return static_cast<int>(level);
    }
    return kNone;
}

int MemoryPressure::level() const noexcept {
    return levelOf(facts());
}

void MemoryPressure::tell(int level, const MemoryFacts& facts) noexcept {
    const std::uint64_t wanted = mark(facts, 0);
    const std::uint64_t missing = wanted - std::min(wanted, facts.room().value_or(wanted));
    LowMemoryNotificationCenter::PostLMNotification(
        level, level, static_cast<unsigned long>(std::min<std::uint64_t>(missing, ULONG_MAX)),
        true);
    m_told = level;
    m_toldAt = now();
}

int MemoryPressure::relieve() noexcept {
    MemorySystem::current().takeEvents(m_events);
    MemoryFacts latest = facts();
    int level = levelOf(latest);
    m_told = std::min(m_told, level);
    const bool isToldAgain =
        level != kNone && level == m_told && now() - m_toldAt >= kTellAgainAfter;
    for (int next = isToldAgain ? level : m_told + 1; next <= level; ++next) {
        tell(next, latest);
        latest = facts();
        level = levelOf(latest);
        m_told = std::min(m_told, level);
    }
    return level;
}

std::uint64_t limitAddressSpaceToMemory(std::uint64_t margin, std::uint64_t most) noexcept {
    MemorySystem& system = MemorySystem::current();
    const MemoryFacts facts = MemoryFactsReader().read();
    if (!facts.addressSpaceUsed) return 0;
    const std::uint64_t used = *facts.addressSpaceUsed;
    std::uint64_t room = most;
    if (const auto memory = facts.memoryRoom())
        room = std::min(room, *memory - std::min(*memory, margin));
    const MemorySystem::Limits limits = system.addressSpaceLimits();
    const std::uint64_t unlimited = MemorySystem::kNoLimit;
    const std::uint64_t wanted = room < unlimited - used ? used + room : unlimited;
    if (limits.current <= wanted)  // smaller already, or neither knows any
        return limits.current == unlimited ? 0 : limits.current - std::min(limits.current, used);
    if (room == 0 || !system.setAddressSpaceLimit(std::min(wanted, limits.most))) return 0;
    return std::min(wanted, limits.most) - used;
}

}  // namespace veltra
