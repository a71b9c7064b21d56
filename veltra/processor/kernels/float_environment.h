// SPDX-License-Identifier: MIT
// How the thread's floating-point arithmetic behaves while samples are converted. Internal linkage:
// for files that are built for one variant.
#pragma once

namespace veltra::kernels {

namespace {

// Denormals count as 0 and nothing traps while an instance lives; then all is as it was. Without it
// a multiplication of denormals, what a reverberation fades to, takes a hundred times as long.
class QuietArithmetic {
public:
    QuietArithmetic() noexcept {
        __asm__ volatile("stmxcsr %0" : "=m"(m_before));
        if (const unsigned quiet = m_before | kQuiet; quiet != m_before) load(quiet);
    }
    ~QuietArithmetic() {
        if ((m_before & kQuiet) != kQuiet) load(m_before);
    }
    QuietArithmetic(const QuietArithmetic&) = delete;
    QuietArithmetic& operator=(const QuietArithmetic&) = delete;

private:
    static constexpr unsigned kDenormalsAreZero = 0x0040;
    static constexpr unsigned kNoTraps = 0x1F80;
    static constexpr unsigned kQuiet = kDenormalsAreZero | kNoTraps;

    // Arithmetic on what is read from memory stays on its side of this.
    static void load(const unsigned& control) noexcept {
        __asm__ volatile("ldmxcsr %0" : : "m"(control) : "memory");
    }

    unsigned m_before = 0;
};

}  // namespace

}  // namespace veltra::kernels
