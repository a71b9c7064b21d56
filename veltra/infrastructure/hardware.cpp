// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/hardware.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/base/string_object_text.h"
#include "veltra/infrastructure/hardware_report.h"
#include "veltra/infrastructure/hardware_utilities.h"

namespace veltra {

namespace {

template <typename Answer, typename Ask>
Answer asked(Answer neutral, Ask ask) noexcept {
    return unlessOutOfMemory(neutral, [neutral, &ask] {
        auto* const utilities = QKHardwareUtilities::sharedHardwareUtilities();
        return utilities != nullptr ? ask(*utilities) : neutral;
    });
}

}  // namespace

uint32_t VLHardwareCpuCount() noexcept {
    return asked(uint32_t{0}, [](auto& machine) { return machine.cpuCount(); });
}

uint32_t VLHardwareCpuClockSpeed() noexcept {
    return asked(uint32_t{0}, [](auto& machine) { return machine.cpuClockSpeed(); });
}

uint64_t VLHardwareCpuFrequency() noexcept {
    return asked(uint64_t{0}, [](auto& machine) { return machine.cpuFrequency(); });
}

bool VLHardwareHasVectorUnit() noexcept {
    return asked(false, [](auto& machine) { return machine.hasVectorUnit(); });
}

bool VLHardwareHasFloatingPoint() noexcept {
    return asked(false, [](auto& machine) { return machine.hasFloatingPoint(); });
}

uint32_t VLHardwarePhysicalRAM() noexcept {
    return asked(uint32_t{0}, [](auto& machine) { return machine.physicalRAM(); });
}

uint64_t VLHardwarePhysicalRAM64() noexcept {
    return asked(uint64_t{0}, [](auto& machine) { return machine.physicalRAM64(); });
}

int32_t VLHardwareMachineCpuType() noexcept {
    return asked(int32_t{0}, [](auto& machine) { return machine.machineCpuType(); });
}

int32_t VLHardwareMachineCpuSubtype() noexcept {
    return asked(int32_t{0}, [](auto& machine) { return machine.machineCpuSubtype(); });
}

int32_t VLHardwareMachineCpuFamily() noexcept {
    return asked(int32_t{0}, [](auto& machine) { return machine.machineCpuFamily(); });
}

int32_t VLHardwareCpuType() noexcept {
    return asked(int32_t{0}, [](auto& machine) { return machine.cpuType(); });
}

bool VLHardwareSystemHasDVDDrive() noexcept {
    return asked(false, [](auto& machine) { return machine.systemHasDVDDrive(); });
}

bool VLHardwareGetSizes(uint64_t* resident, uint64_t* virtual_size) noexcept {
    for (uint64_t* const size : {resident, virtual_size})
        if (size != nullptr) *size = 0;
    return asked(false, [=](auto& machine) { return machine.getRSIZE(resident, virtual_size); });
}

int32_t VLHardwareBootTime() noexcept {
    return asked(int32_t{-1}, [](auto& machine) { return machine.boottime(); });
}

int64_t VLHardwareBootTime64() noexcept {
    return asked(int64_t{-1}, [](auto& machine) { return machine.boottime64(); });
}

const VLString* VLHardwareCreateReport() noexcept {
    return unlessOutOfMemory(static_cast<const VLString*>(nullptr), [] {
        const std::string report = hardwareReport();
        return createString(std::string_view(report));
    });
}

}  // namespace veltra
