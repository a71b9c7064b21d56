// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/sample_kernels.h"

#include <cstdint>

#include <arm_neon.h>

namespace veltra::kernels {

namespace {

// What a program starts with, while an instance lives: to nearest, denormals kept, no traps. Then
// all is as it was, the flags of what happened too.
class DefaultArithmetic {
public:
    DefaultArithmetic() noexcept : m_control(control()), m_flags(flags()) {
        if ((m_control & kChanged) != 0) setControl(m_control & ~kChanged);
    }
    ~DefaultArithmetic() {
        if ((m_control & kChanged) != 0) setControl(m_control);
        __asm__ volatile("msr fpsr, %0" : : "r"(m_flags) : "memory");
    }
    DefaultArithmetic(const DefaultArithmetic&) = delete;
    DefaultArithmetic& operator=(const DefaultArithmetic&) = delete;

private:
    // Rounding mode, flushing of results and of operands, the default NaN, and every trap.
    static constexpr std::uint64_t kChanged = 0x03C0'9F03;

    // Arithmetic on what is read from and written to memory stays on its side of these.
    static std::uint64_t control() noexcept {
        std::uint64_t value = 0;
        __asm__ volatile("mrs %0, fpcr" : "=r"(value) : : "memory");
        return value;
    }
    static std::uint64_t flags() noexcept {
        std::uint64_t value = 0;
        __asm__ volatile("mrs %0, fpsr" : "=r"(value) : : "memory");
        return value;
    }
    static void setControl(std::uint64_t value) noexcept {
        __asm__ volatile("msr fpcr, %0" : : "r"(value) : "memory");
    }

    const std::uint64_t m_control;
    const std::uint64_t m_flags;
};

constexpr std::size_t kLanes = 4;

float64x2_t loadPair(const unsigned char* from) noexcept {
    return vreinterpretq_f64_u8(vld1q_u8(from));
}

void storePair(unsigned char* to, float64x2_t doubles) noexcept {
    vst1q_u8(to, vreinterpretq_u8_f64(doubles));
}

void narrow(float* destination, const void* source, std::size_t count,
            float* /*secondDestination*/) noexcept {
    if (destination == nullptr || source == nullptr) return;
    const DefaultArithmetic arithmetic;
    auto* to = reinterpret_cast<unsigned char*>(destination);
    const auto* from = static_cast<const unsigned char*>(source);
    for (; count >= kLanes; count -= kLanes, to += 4 * kLanes, from += 8 * kLanes) {
        const float64x2_t high = loadPair(from + 16);
        const float32x4_t floats = vcvt_high_f32_f64(vcvt_f32_f64(loadPair(from)), high);
        vst1q_u8(to, vreinterpretq_u8_f32(floats));
    }
    for (; count > 0; --count, to += 4, from += 8) {
        const float64x2_t one = vcombine_f64(vreinterpret_f64_u8(vld1_u8(from)), vdup_n_f64(0));
        const std::uint32_t bits = vget_lane_u32(vreinterpret_u32_f32(vcvt_f32_f64(one)), 0);
        __builtin_memcpy(to, &bits, sizeof bits);
    }
}

// From the end, so that a conversion in place reads before it writes.
void widen(void* destination, const float* source, std::size_t count,
           const float* /*secondSource*/) noexcept {
    if (destination == nullptr || source == nullptr) return;
    const DefaultArithmetic arithmetic;
    auto* to = static_cast<unsigned char*>(destination) + 8 * count;
    const auto* from = reinterpret_cast<const unsigned char*>(source) + 4 * count;
    for (; count % kLanes > 0; --count) {
        std::uint32_t bits = 0;
        __builtin_memcpy(&bits, from -= 4, sizeof bits);
        const float64x2_t wide = vcvt_f64_f32(vreinterpret_f32_u32(vdup_n_u32(bits)));
        vst1_u8(to -= 8, vreinterpret_u8_f64(vget_low_f64(wide)));
    }
    for (; count > 0; count -= kLanes) {
        const float32x4_t floats = vreinterpretq_f32_u8(vld1q_u8(from -= 16));
        to -= 32;
        storePair(to + 16, vcvt_high_f64_f32(floats));
        storePair(to, vcvt_f64_f32(vget_low_f32(floats)));
    }
}

}  // namespace

constexpr SampleConverters kFloat64Neon{narrow, widen};

}  // namespace veltra::kernels
