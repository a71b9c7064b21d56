#include "veltra/processor/detail/utf8_kernels.h"

#include "veltra/processor/kernels/utf8_variants.h"

#include <array>

namespace veltra {

namespace {

struct Variants {
    std::array<const Utf8Kernels*, 3> kernels{};
    std::size_t count = 0;
};

Variants detectVariants() noexcept {
    Variants variants;
    const auto add = [&variants](const Utf8Kernels& kernels) {
        variants.kernels[variants.count++] = &kernels;
    };
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("bmi2")) add(kUtf8Avx512);
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2")) add(kUtf8Avx2);
#endif
    add(kUtf8Plain);
    return variants;
}

}  // namespace

constinit std::atomic<const Utf8Kernels*> chosenUtf8Kernels{nullptr};

std::span<const Utf8Kernels* const> utf8KernelVariants() noexcept {
    static const Variants variants = detectVariants();
    return {variants.kernels.data(), variants.count};
}

const Utf8Kernels& chooseBestUtf8Kernels() noexcept {
    const Utf8Kernels* const best = utf8KernelVariants().front();
    const Utf8Kernels* chosen = nullptr;
    return chosenUtf8Kernels.compare_exchange_strong(chosen, best, std::memory_order_relaxed)
               ? *best
               : *chosen;
}

bool chooseUtf8Kernels(std::string_view name) noexcept {
    for (const Utf8Kernels* kernels : utf8KernelVariants()) {
        if (!name.empty() && name != kernels->name) continue;
        chosenUtf8Kernels.store(kernels, std::memory_order_relaxed);
        return true;
    }
    return false;
}

}  // namespace veltra
