// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels.h"

#include "veltra/diagnostics/report_sections.h"
#include "veltra/processor/detail/checksum_kernels.h"
#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/detail/swap_kernels.h"
#include "veltra/processor/detail/utf8_kernels.h"

#include <cstdio>

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

// "crc16 plain, crc32 avx2"
void writeInForce(char* text, std::size_t capacity) noexcept {
    std::size_t size = 0;
    for (const KernelFamily* family : kFamilies) {
        const int length = std::snprintf(text + size, capacity - size, "%s%s %s",
                                         size > 0 ? ", " : "", family->name(), family->inForce());
        if (length < 0 || static_cast<std::size_t>(length) >= capacity - size) return;
        size += static_cast<std::size_t>(length);
    }
}

constexpr ReportSection kInForce{"kernels in force", writeInForce};
[[maybe_unused]] const bool isReported = addReportSection(kInForce);

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
