// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/hardware_report.h"

#include "veltra/base/number_text.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/infrastructure/hardware_utilities.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/memory_system.h"
#include "veltra/platform/optical_drives.h"
#include "veltra/platform/port.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace veltra {

namespace {

using Bytes = std::optional<std::uint64_t>;

constexpr double kMebibyte = 1 << 20U;

class Lines {
public:
    void add(std::string_view name, std::string_view line) {
        if (!line.empty()) text.append(name).append(": ").append(line).append(1, '\n');
    }

    std::string text;
};

std::string size(std::uint64_t bytes) {
    const double mebibytes = static_cast<double>(bytes) / kMebibyte;
    return std::string(NumberText::fixed(mebibytes, 1).view()) + " MiB";
}

// "limit 8192.0 MiB, room 100.5 MiB"
std::string sizes(const char* name, Bytes one, const char* otherName, Bytes other) {
    std::string text;
    if (one) text.append(name).append(size(*one));
    if (one && other) text += ", ";
    if (other) text.append(otherName).append(size(*other));
    return text;
}

std::string processor(QKHardwareUtilities& machine) {
    std::string text(NumberText(machine.cpuCount()).view());
    text += " in use";
    if (const std::uint32_t megahertz = machine.cpuClockSpeed(); megahertz != 0)
        text.append(", ").append(NumberText(megahertz).view()).append(" MHz");
    text.append(", class ").append(NumberText(machine.cpuType()).view());
    text += machine.hasVectorUnit() ? ", vector unit" : ", no vector unit";
    if (!machine.hasFloatingPoint()) text += ", no floating point";
    return text;
}

void addMemory(Lines& lines, const QKHardwareUtilities* machine) {
    MemoryFacts facts = MemoryFactsReader().read();
    if (machine != nullptr && machine->physicalRAM64() != 0) facts.total = machine->physicalRAM64();
    lines.add("memory of the machine", sizes("", facts.total, "available ", facts.available));
    const std::string group = sizes("limit ", facts.groupLimit, "room ", facts.groupRoom);
    lines.add("memory of the control groups", group.empty() ? "no limit" : group);
    std::uint64_t resident = 0;
    std::uint64_t virtualSize = 0;
    if (machine == nullptr || !machine->getRSIZE(&resident, &virtualSize)) return;
    std::string process = sizes("resident ", resident, "virtual ", virtualSize);
    process += ", address space ";
    process += facts.addressSpaceLimit ? size(*facts.addressSpaceLimit) : "without a limit";
    lines.add("memory of the process", process);
}

std::string opticalDrives() {
    std::string text;
    for (const OpticalDrive& drive : OpticalDrives::current().list())
        text.append(text.empty() ? "" : ", ").append(drive.className);
    return text;
}

}  // namespace

std::string hardwareReport() {
    Lines lines;
    auto* const machine = QKHardwareUtilities::sharedHardwareUtilities();
    lines.add("application", applicationName() + ' ' + applicationVersion());
    lines.add("system", systemVersion());
    if (machine != nullptr) lines.add("processors", processor(*machine));
    addMemory(lines, machine);
    for (const MachineLine& line : platformMachineLines())
        lines.add(line.name, line.text);
    lines.add("optical drives", opticalDrives());
    return lines.text + reportSections();
}

}  // namespace veltra
