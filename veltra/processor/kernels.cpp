// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels.h"

#include "veltra/diagnostics/log_text.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/platform/process.h"
#include "veltra/processor/detail/checksum_kernels.h"
#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/detail/swap_kernels.h"
#include "veltra/processor/detail/utf8_kernels.h"

#include <algorithm>
#include <cstdio>

namespace veltra {

namespace {

constexpr KernelFamily* kFamilies[] = {
    &detail::crc16Kernels,  &detail::crc32Kernels, &detail::float64Kernels,
    &detail::sampleKernels, &detail::swapKernels,  &detail::utf8Kernels,
};

// What one entry of VELTRA_KERNELS chooses.
void useEntry(std::string_view entry) noexcept {
    const std::size_t colon = entry.find(':');
    const bool isForAll = colon == std::string_view::npos;
    for (KernelFamily* family : kFamilies) {
        if (isForAll || entry.substr(0, colon) == family->name())
            family->use(isForAll ? entry : entry.substr(colon + 1));
    }
}

// When the library is loaded, in front of the constructors of a program that links it statically:
// no later call has anything to find out.
[[gnu::constructor(101)]] void chooseAll() noexcept {
    for (KernelFamily* family : kFamilies)
        family->useBest();
    const char* const wanted = environmentVariable("VELTRA_KERNELS");
    if (wanted == nullptr) return;
    for (std::string_view rest = wanted; !rest.empty();) {
        const std::size_t size = std::min(rest.find(','), rest.size());
        useEntry(rest.substr(0, size));
        rest.remove_prefix(std::min(size + 1, rest.size()));
    }
}

void writeReport(char* text, std::size_t capacity) noexcept {
    KernelFamily::writeInForce(text, capacity);
}

constexpr ReportSection kInForce{"kernels in force", writeReport};
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

std::size_t KernelFamily::writeInForce(char* text, std::size_t capacity) noexcept {
    std::size_t size = 0;
    if (text == nullptr) capacity = 0;
    const auto append = [&](std::string_view part) {
        for (const char character : part) {
            if (size + 1 < capacity) text[size] = character;
            ++size;
        }
    };
    for (const KernelFamily* family : kFamilies) {
        append(size > 0 ? ", " : "");
        append(family->name());
        append(" ");
        append(family->inForce());
    }
    if (capacity > 0) text[std::min(size, capacity - 1)] = '\0';
    return size;
}

bool KernelFamily::prepareAll() noexcept {
    bool areSame = true;
    for (KernelFamily* family : kFamilies)
        areSame = family->prepare() && areSame;
    return areSame;
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

bool KernelFamily::prepare() noexcept {
    const std::size_t before = chosen();
    if (agreesWithPlain(before)) return true;
    std::size_t index = before + 1;
    while (index + 1 < m_variantCount && !(runs(index) && agreesWithPlain(index)))
        ++index;
    choose(index);
    char line[160];
    std::snprintf(line, sizeof line, "kernels: %s %s gives wrong results here, %s is used instead",
                  m_name, nameAt(before), nameAt(index));
    logMessage(kLogError, wantedBanner(), nullptr, line);
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
