// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/stack_walkers.h"

#if defined(__x86_64__) || defined(__aarch64__)
#include "veltra/platform/linux/unwind_rules.h"
#endif

namespace veltra {

#if defined(__x86_64__) || defined(__aarch64__)

namespace {

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
    UnwindRules rules;
    ZoneExit zone;
    std::size_t passed = 0;
    std::uintptr_t wanted = kNextFrame;
    const CachedRule* known = &UnwindRules::nobody();
    for (;;) {
        const std::uintptr_t returnAddress = here.returnAddress;
        known = &rules.at(returnAddress, *known);
        const UnwindRule& rule = known->frame.rule;
        if (!rule.isUsable() || !here.leave(rule)) return {false, passed, wanted};
        if (zone.isOutside(returnAddress)) {
            ++passed;
            if (here.stackPointer >= wanted)
                wanted =
                    visit(context, {returnAddress, {here.stackPointer, known->frame.function}});
        }
        if (wanted == kNoMoreFrames || rule.caller == UnwindRule::Caller::None)
            return {true, passed, wanted};
    }
}

#else

TableWalk walkByTables(FrameVisitor /*visit*/, void* /*context*/) noexcept {
    return {};
}

#endif

}  // namespace veltra
