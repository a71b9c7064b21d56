// SPDX-License-Identifier: MIT
// What program this is, what machine it runs on, and the text that belongs into a bug report.
#include "veltra/diagnostics/report_sections.h"
#include "veltra/infrastructure/hardware_report.h"
#include "veltra/infrastructure/hardware_utilities.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/bundle_information.h"

#include <atomic>
#include <cstdio>
#include <string>

namespace {

std::atomic<int> tracks{48};

// May run in the worst moment of the process: no locks, no allocations.
void writeSession(char* text, std::size_t capacity) noexcept {
    std::snprintf(text, capacity, "%d tracks", tracks.load());
}
constexpr veltra::ReportSection kSession{"session", writeSession};

void introduce() {
    veltra::setBundleInformation({{{"CFBundleName", "Mixer"},
                                   {"CFBundleShortVersionString", "2.1"},
                                   {"CFBundleVersion", "14"}}});
    veltra::addReportSection(kSession);
}

// A voice for each processor but one, fewer where there is little memory.
std::uint32_t voicesToBeginWith() {
    auto* const machine = veltra::QKHardwareUtilities::sharedHardwareUtilities();
    if (machine == nullptr) return 1;
    const bool isSmall = machine->physicalRAM64() < (std::uint64_t{2} << 30U);
    return machine->cpuCount() > 1 && !isSmall ? machine->cpuCount() - 1 : 1;
}

}  // namespace

int main() {
    introduce();
    const std::string version = veltra::applicationName() + ' ' + veltra::applicationVersion();
    std::printf("%s on %s\n", version.c_str(), veltra::systemVersion().c_str());
    std::printf("%u voices to begin with\n\n", voicesToBeginWith());

    const std::string report = veltra::hardwareReport();
    std::fputs(report.c_str(), stdout);
    const bool isTold = report.find("application: Mixer 2.1(14)\n") != std::string::npos &&
                        report.find("session: 48 tracks\n") != std::string::npos;
    return isTold && voicesToBeginWith() > 0 ? 0 : 1;
}
