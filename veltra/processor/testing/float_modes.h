// SPDX-License-Identifier: MIT
// The ways in which a thread's floating-point arithmetic may have been set up by its host.
#pragma once

#include <cfenv>

namespace veltra {

struct FloatMode {
    int rounding;
    bool flushes;  // denormals count and come out as 0
    bool traps;    // invalid, overflow, underflow and division by zero, denormals
};

inline constexpr FloatMode kFloatModes[] = {
    {FE_TONEAREST, false, false}, {FE_TONEAREST, true, false},   {FE_UPWARD, false, false},
    {FE_UPWARD, true, false},     {FE_TOWARDZERO, false, false}, {FE_TOWARDZERO, true, true},
    {FE_TONEAREST, false, true},  {FE_DOWNWARD, false, false},   {FE_DOWNWARD, true, false}};

// The calling thread in a mode, where the host has it; flushing and traps are x86's alone.
class InFloatMode {
public:
    explicit InFloatMode(const FloatMode& mode) {
#if defined(__x86_64__) || defined(__i386__)
        std::fegetenv(&m_before);
#endif
        std::fesetround(mode.rounding);
#if defined(__x86_64__) || defined(__i386__)
        constexpr unsigned kFlushes = 0x8040, kTraps = 0x0F80, kFlags = 0x3F;
        m_control = (control() | (mode.flushes ? kFlushes : 0)) & ~(mode.traps ? kTraps : 0);
        m_control &= ~kFlags;
        __asm__ volatile("ldmxcsr %0" : : "m"(m_control) : "memory");
#endif
    }
    ~InFloatMode() {
#if defined(__x86_64__) || defined(__i386__)
        std::fesetenv(&m_before);
#else
        std::fesetround(m_before);
#endif
    }
    InFloatMode(const InFloatMode&) = delete;
    InFloatMode& operator=(const InFloatMode&) = delete;

    // Whether the control word is what it was at the start, and no flag is up but "inexact".
    bool isUntouched() const {
#if defined(__x86_64__) || defined(__i386__)
        constexpr unsigned kInexact = 0x20;
        return (control() & ~kInexact) == m_control;
#else
        return true;
#endif
    }

private:
#if defined(__x86_64__) || defined(__i386__)
    static unsigned control() {
        unsigned word = 0;
        __asm__ volatile("stmxcsr %0" : "=m"(word) : : "memory");
        return word;
    }
    unsigned m_control = 0;
    std::fenv_t m_before;
#else
    const int m_before = std::fegetround();
#endif
};

}  // namespace veltra
