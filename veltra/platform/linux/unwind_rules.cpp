// SPDX-License-Identifier: MIT
#if defined(__x86_64__) || defined(__aarch64__)
#include "veltra/platform/linux/unwind_rules.h"

#include <array>
#include <cstring>
#include <exception>
#include <new>

#include <dlfcn.h>
#include <sys/auxv.h>

namespace veltra {

namespace {

class RuleCache {
public:
    const CachedRule* find(std::uintptr_t returnAddress) const noexcept {
        for (std::size_t i = 0; i < kProbes; ++i) {
            const CachedRule* const rule =
                m_slots[slot(returnAddress, i)].load(std::memory_order_acquire);  // with add()
            if (rule == nullptr) return nullptr;
            if (rule->frame.returnAddress == returnAddress) return rule;
        }
        return nullptr;
    }

    // `guess`: its first guess. Null when there is no room.
    const CachedRule* add(const FrameRule& rule, const CachedRule& guess) noexcept {
        for (std::size_t i = 0; i < kProbes; ++i) {
            auto& place = m_slots[slot(rule.returnAddress, i)];
            const CachedRule* present = place.load(std::memory_order_acquire);  // with below
            if (present != nullptr && present->frame.returnAddress != rule.returnAddress) continue;
            const CachedRule* const added = copy(rule, guess);
            // Release: with the loads above. A thread that was faster has the same to say.
            if (added != nullptr)
                place.compare_exchange_strong(present, added, std::memory_order_release,
                                              std::memory_order_relaxed);
            return added;
        }
        return nullptr;
    }

private:
    static constexpr std::size_t kSlots = 8192;
    static constexpr std::size_t kProbes = 4;
    static constexpr std::size_t kBytes = 1 << 19;

    static std::size_t slot(std::uintptr_t returnAddress, std::size_t probe) noexcept {
        const std::uint64_t mixed = returnAddress * std::uint64_t{0x9E3779B97F4A7C15};
        return ((mixed >> 40) + probe) % kSlots;
    }

    const CachedRule* copy(const FrameRule& rule, const CachedRule& guess) noexcept {
        const UnwindDescription& from = rule.from;
        const std::size_t size = sizeof(CachedRule) + from.ownSize + from.commonSize;
        const std::size_t step = (size + alignof(CachedRule) - 1) & ~(alignof(CachedRule) - 1);
        // Relaxed: the bytes belong to who drew them. The test keeps the count from running over.
        if (step > kBytes || m_used.load(std::memory_order_relaxed) > kBytes - step) return nullptr;
        const std::size_t start = m_used.fetch_add(step, std::memory_order_relaxed);
        if (start > kBytes - step) return nullptr;
        auto* const added = new (m_bytes.data() + start) CachedRule(rule, guess);
        auto* const bytes = m_bytes.data() + start + sizeof(CachedRule);
        std::memcpy(bytes, from.own, from.ownSize);
        std::memcpy(bytes + from.ownSize, from.common, from.commonSize);
        return added;
    }

    std::array<std::atomic<const CachedRule*>, kSlots> m_slots{};
    alignas(CachedRule) std::array<unsigned char, kBytes> m_bytes{};
    std::atomic<std::size_t> m_used{0};
};

constinit RuleCache cache;

// Whether `size` bytes are as they were. The first four are their length, so that no more than that
// is read of others.
bool isSame(const unsigned char* bytes, const unsigned char* before, std::uint32_t size) noexcept {
    return std::memcmp(bytes, before, 4) == 0 && std::memcmp(bytes + 4, before + 4, size - 4) == 0;
}

}  // namespace

constinit const CachedRule UnwindRules::s_nobody({}, s_nobody);

bool LoadedObject::isLasting() const noexcept {
    const auto holds = [this](auto* pointer) {
        return contains(reinterpret_cast<std::uintptr_t>(pointer));
    };
    return contains(::getauxval(AT_PHDR)) || holds(&cache) || holds(&::getauxval) ||
           holds(&std::get_terminate);
}

void LoadedObject::look(std::uintptr_t address) noexcept {
    *this = {};
#ifdef DLFO_STRUCT_HAS_EH_DBASE
    dl_find_object found{};
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an address of code is what is asked about
    if (::_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return;
    m_begin = reinterpret_cast<std::uintptr_t>(found.dlfo_map_start);
    m_size = reinterpret_cast<std::uintptr_t>(found.dlfo_map_end) - m_begin;
    m_table = UnwindTable(static_cast<const unsigned char*>(found.dlfo_eh_frame));
#else
    static_cast<void>(address);
#endif
}

const CachedRule& UnwindRules::search(std::uintptr_t returnAddress,
                                      const CachedRule& last) noexcept {
    const CachedRule* known = last.caller.load(std::memory_order_acquire);  // with below
    if (holds(known, returnAddress)) return *known;
    known = cache.find(returnAddress);
    if (!holds(known, returnAddress)) {
        const FrameRule found = read(returnAddress);
        known = found.rule.isUsable() ? cache.add(found, s_nobody) : nullptr;
        if (known == nullptr) return *new (m_uncached) CachedRule(found, s_nobody);
    }
    // Release: with at(). Threads that differ do no harm.
    last.caller.store(known, std::memory_order_release);
    return *known;
}

bool UnwindRules::holds(const CachedRule* known, std::uintptr_t returnAddress) noexcept {
    if (known == nullptr || known->frame.returnAddress != returnAddress) return false;
    if (known->frame.isLasting) return true;
    const std::uintptr_t address = returnAddress - 1;
    const UnwindTable& table = m_object.tableFor(address);
    const std::uint32_t entry = known->frame.entry;
    const UnwindDescription& from = known->frame.from;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(known + 1);
    return table.isFound(address, entry) && table.description(entry) == from.own &&
           isSame(from.own, bytes, from.ownSize) &&
           isSame(from.common, bytes + from.ownSize, from.commonSize);
}

FrameRule UnwindRules::read(std::uintptr_t returnAddress) noexcept {
    FrameRule found;
    const std::uintptr_t address = returnAddress - 1;
    const UnwindTable& table = m_object.tableFor(address);
    if (!table.isUsable()) return found;
    found.returnAddress = returnAddress;
    found.isLasting = m_object.isLasting();
    found.entry = table.find(address);
    found.from = UnwindDescription::at(table.description(found.entry));
    found.rule = found.from.ruleAt(address, found.function);
    return found;
}

}  // namespace veltra

#endif
