// SPDX-License-Identifier: MIT
// A family of kernels and the one function pointer that its calls go through.
//
//     constexpr KernelVariant<CopyKernel> kVariants[] = {{"avx2", runsOnAvx2, copyAvx2},
//                                                        {"plain", runsEverywhere, copyPlain}};
//     bool agree(CopyKernel one, CopyKernel other) noexcept;  // runs both on a few KiB
//     constinit KernelChoice<CopyKernel> copyKernels{"copy", kVariants, agree};
//
//     copyKernels.current()(to, from, size);
//
// The table must end with a variant that runs everywhere. kernels.cpp lists the families.
//
// The pointer starts at the plain variant and moves to the best one when the library is loaded
// (kernels.cpp), so that a call costs one load and there is nothing to wait for. Relaxed order
// throughout: variants and their tables are constants, so that the pointer publishes nothing and
// no operation on it has a partner.
#pragma once

#include "veltra/processor/kernels.h"

#include <atomic>

namespace veltra::detail {

template <class Kernel>
struct KernelVariant {
    const char* name;
    bool (*runs)(const ProcessorFeatures& features) noexcept;
    Kernel kernel;
};

inline bool runsEverywhere(const ProcessorFeatures& /*features*/) noexcept {
    return true;
}

inline bool runsOnNeon(const ProcessorFeatures& features) noexcept {
    return features.asimd;
}

inline bool runsOnSse2(const ProcessorFeatures& features) noexcept {
    return features.sse2;
}

inline bool runsOnAvx2(const ProcessorFeatures& features) noexcept {
    return features.avx2;
}

template <class Kernel>
class KernelChoice final : public KernelFamily {
public:
    // Whether two variants give the same results.
    using Agree = bool (*)(Kernel one, Kernel other) noexcept;

    template <std::size_t count>
    constexpr KernelChoice(const char* name, const KernelVariant<Kernel> (&variants)[count],
                           Agree agree) noexcept
        : KernelFamily(name, count),
          m_variants(variants),
          m_agree(agree),
          m_kernel(variants[count - 1].kernel) {}

    Kernel current() const noexcept { return m_kernel.load(std::memory_order_relaxed); }

    Kernel at(std::size_t index) const noexcept { return m_variants[index].kernel; }

    bool areAlike(Kernel one, Kernel other) const noexcept { return m_agree(one, other); }

private:
    const char* nameAt(std::size_t index) const noexcept override { return m_variants[index].name; }
    Test testAt(std::size_t index) const noexcept override { return m_variants[index].runs; }

    bool agreesWithPlain(std::size_t index) const noexcept override {
        return areAlike(at(index), at(variantCount() - 1));
    }

    std::size_t chosen() const noexcept override {
        const Kernel kernel = current();
        std::size_t index = 0;
        while (at(index) != kernel)
            ++index;
        return index;
    }

    void choose(std::size_t index) noexcept override {
        m_kernel.store(at(index), std::memory_order_relaxed);
    }

    const KernelVariant<Kernel>* const m_variants;
    const Agree m_agree;
    std::atomic<Kernel> m_kernel;
};

}  // namespace veltra::detail
