// SPDX-License-Identifier: MIT
// How the thread's floating-point arithmetic behaves while samples are converted. Internal linkage:
// for files that are built for one variant.
#pragma once

namespace veltra::kernels {

namespace {

// The control word of the thread's arithmetic with some bits set and some cleared, while an
// instance lives. Then all is as it was, the flags of what happened too.
template <unsigned set, unsigned cleared>
class Arithmetic {
public:
    Arithmetic() noexcept : m_before(current()) {
        if (const unsigned wanted = (m_before | set) & ~cleared; wanted != m_before) load(wanted);
    }
    ~Arithmetic() { load(m_before); }
    Arithmetic(const Arithmetic&) = delete;
    Arithmetic& operator=(const Arithmetic&) = delete;

protected:
    // Arithmetic on what is read from and written to memory stays on its side of these.
    static unsigned current() noexcept {
        unsigned control = 0;
        __asm__ volatile("stmxcsr %0" : "=m"(control) : : "memory");
        return control;
    }
    static void load(const unsigned& control) noexcept {
        __asm__ volatile("ldmxcsr %0" : : "m"(control) : "memory");
    }

private:
    const unsigned m_before;
};

enum Control : unsigned {
    kInvalid = 0x0001,
    kDenormalsAreZero = 0x0040,
    kNoTraps = 0x1F80,
    kRoundingMode = 0x6000,
    kFlushToZero = 0x8000
};

// Denormals count as 0 and nothing traps. Without it a multiplication of denormals, what a
// reverberation fades to, takes a hundred times as long.
using QuietArithmetic = Arithmetic<kDenormalsAreZero | kNoTraps, 0>;

// The same, and tells what became no integer: NaNs and what is too large.
class WatchedArithmetic : public Arithmetic<kDenormalsAreZero | kNoTraps, kInvalid> {
public:
    // Whether there was any since it was last asked. Waits for what the processor has under way, so
    // ask once for a thousand samples.
    bool takeInvalid() const noexcept {
        const unsigned control = current();
        if ((control & kInvalid) == 0) return false;
        load(control & ~unsigned{kInvalid});
        return true;
    }
};

// What a program starts with: to nearest, denormals kept, no traps.
using DefaultArithmetic = Arithmetic<kNoTraps, kDenormalsAreZero | kRoundingMode | kFlushToZero>;

}  // namespace

}  // namespace veltra::kernels
