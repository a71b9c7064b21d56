// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/hardware_utilities.h"

#include "veltra/platform/optical_drives.h"
#include "veltra/platform/system_queries.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace veltra {

namespace {

constexpr auto kPlain = std::memory_order_relaxed;

constexpr std::uint64_t kHertzInMegahertz = 1'000'000;
constexpr std::int32_t kX86 = 7;
constexpr std::int32_t kX86With64Bits = 16'777'223;
constexpr std::int32_t kFirstX86Family = 0x73D67300;
constexpr std::int32_t kSecondX86Family = 0x426F69EF;
constexpr std::int32_t kLastTypeOf32Bits = 312;
constexpr std::uint64_t kVectorInstructions = 0x10;

std::uint64_t numberOf(SystemKey key) noexcept {
    return SystemQueries::current().number(key).value_or(0);
}

std::uint32_t saturated(std::uint64_t number) noexcept {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(number, UINT32_MAX));
}

std::int32_t patternOf(SystemKey key) noexcept {
    const std::uint64_t number = numberOf(key);
    return number <= UINT32_MAX ? static_cast<std::int32_t>(number) : 0;
}

}  // namespace

constinit SlotClass<> QKHardwareUtilities::s_class("QKHardwareUtilities", &QKSingleton::s_class,
                                                   makeObject<QKHardwareUtilities>);

namespace {
const ClassEntry hardwareEntry(QKHardwareUtilities::s_class);
}

std::uint32_t QKHardwareUtilities::cpuCount() {
    std::uint32_t count = m_cpuCount.load(kPlain);
    if (count == 0) {
        count = saturated(numberOf(SystemKey::ProcessorCount));
        m_cpuCount.store(count, kPlain);
    }
    return count;
}

std::uint32_t QKHardwareUtilities::cpuClockSpeed() const {
    return saturated(cpuFrequency() / kHertzInMegahertz);
}

std::uint64_t QKHardwareUtilities::cpuFrequency() const {
    return numberOf(SystemKey::ProcessorFrequency);
}

bool QKHardwareUtilities::hasVectorUnit() const {
    return numberOf(SystemKey::HasVectorUnit) != 0;
}

bool QKHardwareUtilities::hasFloatingPoint() const {
    return numberOf(SystemKey::HasFloatingPoint) != 0;
}

std::uint32_t QKHardwareUtilities::physicalRAM() const {
    return saturated(physicalRAM64());
}

std::uint64_t QKHardwareUtilities::physicalRAM64() const {
    return numberOf(SystemKey::MemorySize);
}

std::int32_t QKHardwareUtilities::machineCpuType() const {
    return patternOf(SystemKey::ProcessorType);
}

std::int32_t QKHardwareUtilities::machineCpuSubtype() const {
    return patternOf(SystemKey::ProcessorSubtype);
}

std::int32_t QKHardwareUtilities::machineCpuFamily() const {
    return patternOf(SystemKey::ProcessorFamily);
}

std::int32_t QKHardwareUtilities::cpuType() {
    const std::int32_t known = m_cpuType.load(kPlain);
    if (known != 0) return known;
    const std::int32_t machine = machineCpuType();
    std::int32_t type = 1;
    if (machine == kX86 || machine == kX86With64Bits) {
        const std::int32_t family = machineCpuFamily();
        type = family == kSecondX86Family ? 5 : family == kFirstX86Family ? 4 : 6;
    } else if (patternOf(SystemKey::NativeProcessorType) > kLastTypeOf32Bits) {
        type = 3;
    } else if ((numberOf(SystemKey::PowerPcFeatures) & kVectorInstructions) != 0) {
        type = 2;
    }
    m_cpuType.store(type, kPlain);
    return type;
}

bool QKHardwareUtilities::systemHasDVDDrive() {
    m_nDVDDrives.store(0, kPlain);
    for (const OpticalDrive& drive : OpticalDrives::current().list())
        _deviceAddedWithName(drive.className);
    return m_nDVDDrives.load(kPlain) > 0;
}

void QKHardwareUtilities::_deviceAddedWithName(std::string_view name) {
    for (const std::string_view counted : {"IODVDServices", "IOBDServices"}) {
        if (name.find(counted) == std::string_view::npos) continue;
        m_nDVDDrives.fetch_add(1, kPlain);
        return;
    }
}

bool QKHardwareUtilities::getRSIZE(std::uint64_t* resident, std::uint64_t* virtualSize) const {
    std::array<std::uint64_t, 2> sizes{};
    const auto length = SystemQueries::current().bytes(SystemKey::TaskSizes,
                                                       std::as_writable_bytes(std::span(sizes)));
    const bool isKnown = length == sizeof sizes;
    if (!isKnown) sizes = {};
    if (resident != nullptr) *resident = sizes[0];
    if (virtualSize != nullptr) *virtualSize = sizes[1];
    return isKnown;
}

std::int32_t QKHardwareUtilities::boottime() const {
    std::array<std::byte, 8> answer{};
    const auto length = SystemQueries::current().bytes(SystemKey::BootTime, answer);
    if (!length || *length < answer.size()) return -1;
    std::int32_t seconds = 0;
    std::memcpy(&seconds, answer.data(), sizeof seconds);
    return seconds;
}

std::int64_t QKHardwareUtilities::boottime64() const {
    const auto seconds = SystemQueries::current().number(SystemKey::BootSeconds);
    return seconds ? static_cast<std::int64_t>(*seconds) : boottime();
}

}  // namespace veltra
