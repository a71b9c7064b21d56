// SPDX-License-Identifier: MIT
// The ways in which a thread's floating-point arithmetic may have been set up by its host.
#pragma once

#include <cfenv>
#include <cstdint>

namespace veltra {

struct FloatMode {
    int rounding;
    bool flushes;  // denormals count and come out as 0; on ARM every NaN becomes the same, too
    bool traps;    // invalid, overflow, underflow and division by zero, denormals
};

inline constexpr FloatMode kFloatModes[] = {
    {FE_TONEAREST, false, false}, {FE_TONEAREST, true, false},   {FE_UPWARD, false, false},
    {FE_UPWARD, true, false},     {FE_TOWARDZERO, false, false}, {FE_TOWARDZERO, true, true},
    {FE_TONEAREST, false, true},  {FE_DOWNWARD, false, false},   {FE_DOWNWARD, true, false}};

// The control word of the thread's arithmetic, and the flags of what happened.
class FloatControl {
public:
#if defined(__x86_64__) || defined(__i386__)
    static constexpr std::uint64_t kFlushes = 0x8040, kTraps = 0x0F80, kFlags = 0x3F;
    static constexpr std::uint64_t kHarmless = 0x20;  // inexact

    static std::uint64_t read() {
        unsigned word = 0;
        __asm__ volatile("stmxcsr %0" : "=m"(word) : : "memory");
        return word;
    }
    static void write(std::uint64_t value) {
        const auto word = static_cast<unsigned>(value);
        __asm__ volatile("ldmxcsr %0" : : "m"(word) : "memory");
    }
    static void setTraps(std::uint64_t& word) {
        word &= ~kTraps;
    }
#elif defined(__aarch64__)
    // The upper half is the control register, the lower one that of the flags. Traps do not exist.
    static constexpr std::uint64_t kFlushes = std::uint64_t{0x0300'0000} << 32, kFlags = 0x9F;
    static constexpr std::uint64_t kHarmless = 0x90;  // inexact, and a denormal that was flushed

    static std::uint64_t read() {
        std::uint64_t control = 0, flags = 0;
        __asm__ volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(control), "=r"(flags) : : "memory");
        return control << 32 | flags;
    }
    static void write(std::uint64_t word) {
        const std::uint64_t control = word >> 32, flags = word & 0xFFFF'FFFFU;
        __asm__ volatile("msr fpcr, %0\n\tmsr fpsr, %1" : : "r"(control), "r"(flags) : "memory");
    }
    static void setTraps(std::uint64_t&) {}
#else
    static constexpr std::uint64_t kFlushes = 0, kFlags = 0, kHarmless = 0;

    static std::uint64_t read() {
        return 0;
    }
    static void write(std::uint64_t) {}
    static void setTraps(std::uint64_t&) {}
#endif
};

// The calling thread in a mode, where the host has it; elsewhere the rounding mode alone.
class InFloatMode {
public:
    explicit InFloatMode(const FloatMode& mode) {
        std::fesetround(mode.rounding);
        m_control = FloatControl::read() | (mode.flushes ? FloatControl::kFlushes : 0);
        if (mode.traps) FloatControl::setTraps(m_control);
        m_control &= ~FloatControl::kFlags;
        FloatControl::write(m_control);
    }
    // Not by fesetenv(): the emulators of other hosts lack an instruction of it.
    ~InFloatMode() {
        FloatControl::write(m_controlBefore);
        std::fesetround(m_before);
    }
    InFloatMode(const InFloatMode&) = delete;
    InFloatMode& operator=(const InFloatMode&) = delete;

    // Whether the control word is what it was at the start, and no flag is up that says more than
    // that a result was rounded.
    bool isUntouched() const {
        return (FloatControl::read() & ~FloatControl::kHarmless) == m_control;
    }

private:
    const int m_before = std::fegetround();
    const std::uint64_t m_controlBefore = FloatControl::read();
    std::uint64_t m_control = 0;
};

}  // namespace veltra
