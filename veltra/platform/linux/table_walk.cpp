// SPDX-License-Identifier: MIT
// Walking by the tables costs a search and the run of a small program for each frame. What came out
// is kept by return address, together with the bytes that it came from: a library may have been
// unloaded and another one, or a new build of it, lie in its place. The bytes are compared each
// time, so that the cache answers what the tables would.
//
// The cache never forgets and takes no lock. An entry is filled by one thread before it is
// published in a slot, does not change after that and is never used again, even when another one
// takes its slot; so readers need no protection. When the entries are used up, what they lack is
// read from the tables. An object whose code is on the stack is not unloaded during the walk.
#include "veltra/platform/linux/stack_walkers.h"

#if defined(__x86_64__) || defined(__aarch64__)
#include "veltra/platform/linux/unwind_table.h"
#endif

#include <array>
#include <atomic>
#include <new>

#include <dlfcn.h>

namespace veltra {

#if (defined(__x86_64__) || defined(__aarch64__)) && defined(DLFO_STRUCT_HAS_EH_DBASE)

namespace {

// Followed by the bytes of the description, its own and then those of the common part.
struct CachedRule {
    std::uintptr_t returnAddress;
    std::uintptr_t function;
    UnwindDescription from;
    UnwindRule rule;
    std::uint32_t entry;

    const unsigned char* bytes() const noexcept {
        return reinterpret_cast<const unsigned char*>(this + 1);
    }

    bool holds(const UnwindDescription& found) const noexcept {
        return found.own == from.own && found.ownSize == from.ownSize &&
               found.commonSize == from.commonSize &&
               std::memcmp(bytes(), found.own, from.ownSize) == 0 &&
               std::memcmp(bytes() + from.ownSize, found.common, from.commonSize) == 0;
    }
};

class RuleCache {
public:
    const CachedRule* find(std::uintptr_t returnAddress) const noexcept {
        for (std::size_t i = 0; i < kProbes; ++i) {
            const CachedRule* const rule =
                m_slots[slot(returnAddress, i)].load(std::memory_order_acquire);  // with add()
            if (rule == nullptr) return nullptr;
            if (rule->returnAddress == returnAddress) return rule;
        }
        return nullptr;
    }

    void add(const CachedRule& rule) noexcept {
        for (std::size_t i = 0; i < kProbes; ++i) {
            auto& place = m_slots[slot(rule.returnAddress, i)];
            const CachedRule* present = place.load(std::memory_order_acquire);  // with below
            if (present != nullptr && present->returnAddress != rule.returnAddress) continue;
            const CachedRule* const added = copy(rule);
            // Release: with the loads above. A thread that was faster has the same to say.
            if (added != nullptr)
                place.compare_exchange_strong(present, added, std::memory_order_release,
                                              std::memory_order_relaxed);
            return;
        }
    }

private:
    static constexpr std::size_t kSlots = 8192;
    static constexpr std::size_t kProbes = 4;
    static constexpr std::size_t kBytes = 1 << 19;

    static std::size_t slot(std::uintptr_t returnAddress, std::size_t probe) noexcept {
        const std::uint64_t mixed = returnAddress * std::uint64_t{0x9E3779B97F4A7C15};
        return ((mixed >> 40) + probe) % kSlots;
    }

    const CachedRule* copy(const CachedRule& rule) noexcept {
        const UnwindDescription& from = rule.from;
        const std::size_t size = sizeof rule + from.ownSize + from.commonSize;
        const std::size_t step = (size + alignof(CachedRule) - 1) & ~(alignof(CachedRule) - 1);
        // Relaxed: the bytes belong to who drew them. The test keeps the count from running over.
        if (step > kBytes || m_used.load(std::memory_order_relaxed) > kBytes - step) return nullptr;
        const std::size_t start = m_used.fetch_add(step, std::memory_order_relaxed);
        if (start > kBytes - step) return nullptr;
        auto* const added = new (m_bytes.data() + start) CachedRule(rule);
        auto* const bytes = m_bytes.data() + start + sizeof rule;
        std::memcpy(bytes, from.own, from.ownSize);
        std::memcpy(bytes + from.ownSize, from.common, from.commonSize);
        return added;
    }

    std::array<std::atomic<const CachedRule*>, kSlots> m_slots{};
    alignas(CachedRule) std::array<unsigned char, kBytes> m_bytes{};
    std::atomic<std::size_t> m_used{0};
};

constinit RuleCache cache;

// The loaded object that the walk is in.
class LoadedObject {
public:
    const UnwindTable& tableFor(std::uintptr_t address) noexcept {
        if (address - m_begin >= m_size) look(address);
        return m_table;
    }

private:
    void look(std::uintptr_t address) noexcept {
        dl_find_object found{};
        *this = {};
        // NOLINTNEXTLINE(performance-no-int-to-ptr): an address of code is what is asked about
        if (::_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return;
        m_begin = reinterpret_cast<std::uintptr_t>(found.dlfo_map_start);
        m_size = reinterpret_cast<std::uintptr_t>(found.dlfo_map_end) - m_begin;
        m_table = UnwindTable(static_cast<const unsigned char*>(found.dlfo_eh_frame));
    }

    std::uintptr_t m_begin = 0;
    std::uintptr_t m_size = 0;
    UnwindTable m_table;
};

UnwindRule ruleFor(std::uintptr_t returnAddress, LoadedObject& object,
                   std::uintptr_t& function) noexcept {
    const std::uintptr_t address = returnAddress - 1;
    const UnwindTable& table = object.tableFor(address);
    if (!table.isUsable()) return {};
    const CachedRule* const known = cache.find(returnAddress);
    const std::uint32_t entry = table.find(address, known != nullptr ? known->entry : 0);
    const auto description = UnwindDescription::at(table.description(entry));
    if (known != nullptr && known->holds(description)) {
        function = known->function;
        return known->rule;
    }
    const UnwindRule rule = description.ruleAt(address, function);
    if (rule.isUsable()) cache.add({returnAddress, function, description, rule, entry});
    return rule;
}

std::uintptr_t add(std::uintptr_t address, std::int32_t offset) noexcept {
    return address + static_cast<std::uintptr_t>(std::intptr_t{offset});
}

// Reads what other functions left on the stack, where a sanitizer may have marked it.
[[gnu::no_sanitize_address]] std::uintptr_t wordAt(std::uintptr_t address) noexcept {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the tables speak of addresses
    return *reinterpret_cast<const volatile std::uintptr_t*>(address);
}

// Where return addresses are signed, their upper bits hold the signature: this instruction clears
// them, and does nothing on a processor that does not sign.
std::uintptr_t withoutSignature(std::uintptr_t address) noexcept {
#if defined(__aarch64__)
    asm("mov x30, %0\n\t"
        "hint #7\n\t"
        "mov %0, x30"
        : "+r"(address)
        :
        : "x30");
#endif
    return address;
}

struct Registers {
    std::uintptr_t returnAddress;
    std::uintptr_t stackPointer;
    std::uintptr_t framePointer;

    // Goes to the caller, or above the outermost frame. False when that leads nowhere.
    bool leave(const UnwindRule& rule) noexcept {
        std::uintptr_t cfa =
            rule.cfa == UnwindRule::Cfa::StackPointer ? stackPointer : framePointer;
        cfa = add(cfa, rule.cfaOffset);
        if (rule.cfa == UnwindRule::Cfa::AtFramePointer) cfa = wordAt(cfa);
        if (cfa < stackPointer || cfa % sizeof cfa != 0) return false;
        const bool hasGrown = cfa != stackPointer;
        stackPointer = cfa;
        if (rule.caller == UnwindRule::Caller::None) return true;
        if (!hasGrown) return false;
        if (rule.framePointer == UnwindRule::FramePointer::AtCfa)
            framePointer = wordAt(add(cfa, rule.framePointerOffset));
        else if (rule.framePointer == UnwindRule::FramePointer::AtFramePointer)
            framePointer = wordAt(add(framePointer, rule.framePointerOffset));
        returnAddress = wordAt(add(cfa, rule.callerOffset));
        if (rule.isSigned) returnAddress = withoutSignature(returnAddress);
        return true;
    }
};

}  // namespace

[[gnu::noinline]] TableWalk walkByTables(FrameVisitor visit, void* context) noexcept {
    Registers here{};
#if defined(__x86_64__)
    asm volatile(
        "lea 0(%%rip), %0\n\t"
        "mov %%rsp, %1\n\t"
        "mov %%rbp, %2"
        : "=&r"(here.returnAddress), "=&r"(here.stackPointer), "=r"(here.framePointer));
#else
    // The tables find no return address in a register: x30 has been saved by here.
    asm volatile(
        "adr %0, .+4\n\t"
        "mov %1, sp\n\t"
        "mov %2, x29"
        : "=&r"(here.returnAddress), "=&r"(here.stackPointer), "=r"(here.framePointer)
        :
        : "x30");
#endif
    TableWalk walk;
    LoadedObject object;
    ZoneExit zone;
    for (;;) {
        StackFrame frame{here.returnAddress, {}};
        const UnwindRule rule = ruleFor(frame.returnAddress, object, frame.identity.function);
        if (!rule.isUsable() || !here.leave(rule)) return walk;
        frame.identity.cfa = here.stackPointer;
        const bool isVisited = zone.isOutside(frame.returnAddress);
        const bool wantsMore = !isVisited || visit(context, frame);
        walk.visited += isVisited ? 1 : 0;
        walk.isDone = !wantsMore || rule.caller == UnwindRule::Caller::None;
        if (walk.isDone) return walk;
    }
}

#else

TableWalk walkByTables(FrameVisitor /*visit*/, void* /*context*/) noexcept {
    return {};
}

#endif

}  // namespace veltra
