// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/processor_identity.h"

#include "veltra/platform/processor_features.h"

#include <algorithm>
#include <iterator>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace veltra {

namespace {

using Kind = ProcessorIdentity::Kind;

constexpr std::uint32_t kX86Type = 7;
constexpr std::uint32_t kPowerPcType = 18;
constexpr std::uint32_t kWith64Bits = 0x01000000;
constexpr std::uint32_t kX86Subtype = 3;
constexpr std::uint32_t kX86Family = 6;

struct X86Model {
    std::uint32_t model;
    std::uint32_t family;
};

constexpr X86Model kX86Models[] = {
    {14, 0x73D67300},
    {15, 0x426F69EF},
    {23, 0x78EA4FBC},
    {26, 0x6B5A4CD2},
};

struct PowerPcVersions {
    std::uint32_t first, last;  // of the version register's upper half
    std::uint32_t subtype;
    std::uint32_t family;
};

constexpr PowerPcVersions kPowerPcVersions[] = {
    {0x0008, 0x0008, 9, 0xCEE41549},   {0x000C, 0x000C, 10, 0x77C184AE},
    {0x8000, 0x80FF, 11, 0x37FC219F},  {0x0039, 0x0039, 100, 0xED76D8AA},
    {0x003C, 0x003C, 100, 0xED76D8AA}, {0x0044, 0x0045, 100, 0xED76D8AA},
};

const PowerPcVersions* versionsOf(const ProcessorIdentity& identity) noexcept {
    if (identity.kind != Kind::PowerPc) return nullptr;
    const auto* const found =
        std::ranges::find_if(kPowerPcVersions, [&](const PowerPcVersions& row) {
            return identity.processorVersion >= row.first && identity.processorVersion <= row.last;
        });
    return found != std::end(kPowerPcVersions) ? found : nullptr;
}

}  // namespace

#if defined(__x86_64__) || defined(__i386__)

ProcessorIdentity ProcessorIdentity::current() noexcept {
    ProcessorIdentity identity;
    identity.kind = Kind::X86;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(0, &a, &b, &c, &d) == 0) return identity;
    identity.isFromIntel = b == signature_INTEL_ebx && c == signature_INTEL_ecx;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0) return identity;
    identity.family = a >> 8U & 0xFU;
    identity.model = (a >> 4U & 0xFU) | (a >> 12U & 0xF0U);
    if (identity.family == 0xF) identity.family += a >> 20U & 0xFFU;
    if (__get_cpuid(0x16, &a, &b, &c, &d) != 0)
        identity.baseFrequency = std::uint64_t{a & 0xFFFFU} * 1'000'000U;
    return identity;
}

#else

ProcessorIdentity ProcessorIdentity::current() noexcept {
    ProcessorIdentity identity;
    const ProcessorFeatures features = ProcessorFeatures::current();
    if (features.family == ProcessorFeatures::Family::PowerPc) identity.kind = Kind::PowerPc;
    identity.processorVersion = features.processorVersion.value_or(0);
    return identity;
}

#endif

std::optional<std::uint32_t> processorType(const ProcessorIdentity& identity) noexcept {
    constexpr std::uint32_t kWidth = sizeof(void*) == 8 ? kWith64Bits : 0;
    switch (identity.kind) {
        case Kind::X86:
            return kX86Type | kWidth;
        case Kind::PowerPc:
            return kPowerPcType | kWidth;
        default:
            return {};
    }
}

std::optional<std::uint32_t> processorSubtype(const ProcessorIdentity& identity) noexcept {
    if (identity.kind == Kind::X86) return kX86Subtype;
    const PowerPcVersions* const row = versionsOf(identity);
    return row != nullptr ? std::optional(row->subtype) : std::nullopt;
}

std::optional<std::uint32_t> processorFamily(const ProcessorIdentity& identity) noexcept {
    if (const PowerPcVersions* const row = versionsOf(identity)) return row->family;
    if (identity.kind != Kind::X86 || !identity.isFromIntel || identity.family != kX86Family)
        return {};
    const auto* const found = std::ranges::find(kX86Models, identity.model, &X86Model::model);
    return found != std::end(kX86Models) ? std::optional(found->family) : std::nullopt;
}

std::optional<std::uint32_t> nativeProcessorType(const ProcessorIdentity& identity) noexcept {
    if (identity.kind != Kind::PowerPc || identity.processorVersion == 0) return {};
    const std::uint32_t base = (identity.processorVersion & 0xFF00U) == 0x8000U ? 0x110 : 0x100;
    return base + (identity.processorVersion & 0xFFU);
}

}  // namespace veltra
