// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels.h"

#include "veltra/processor/detail/checksum_kernels.h"
#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/detail/swap_kernels.h"
#include "veltra/processor/detail/utf8_kernels.h"

namespace veltra {

namespace {

constexpr KernelFamily* kFamilies[] = {
    &detail::crc16Kernels,  &detail::crc32Kernels, &detail::float64Kernels,
    &detail::sampleKernels, &detail::swapKernels,  &detail::utf8Kernels,
};

// When the library is loaded, in front of the constructors of a program that links it statically:
// no later call has anything to find out.
[[gnu::constructor(101)]] void chooseAll() noexcept {
    for (KernelFamily* family : kFamilies)
        family->useBest();
}

}  // namespace

std::span<KernelFamily* const> KernelFamily::all() noexcept {
    return kFamilies;
}

KernelFamily* KernelFamily::find(std::string_view name) noexcept {
    for (KernelFamily* family : kFamilies) {
        if (name == family->name()) return family;
    }
    return nullptr;
}

const char* KernelFamily::variantName(std::size_t index) const noexcept {
    return index < m_variantCount ? nameAt(index) : nullptr;
}

bool KernelFamily::runs(std::size_t index) const noexcept {
    return index < m_variantCount && testAt(index)(ProcessorFeatures::current());
}

const char* KernelFamily::inForce() const noexcept {
    return nameAt(chosen());
}

bool KernelFamily::use(std::string_view variant) noexcept {
    for (std::size_t index = 0; index < m_variantCount; ++index) {
        if (variant != nameAt(index)) continue;
        if (!runs(index)) return false;
        choose(index);
        return true;
    }
    return false;
}

void KernelFamily::useBest() noexcept {
    const ProcessorFeatures features = ProcessorFeatures::current();
    std::size_t index = 0;
    while (index + 1 < m_variantCount && !testAt(index)(features))
        ++index;
    choose(index);
}

}  // namespace veltra
