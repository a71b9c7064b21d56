// SPDX-License-Identifier: MIT
#include "requests.h"

#include "audio_output.h"
#include "text.h"
#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/exception_report.h"
#include "veltra/infrastructure/hardware_report.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/bundle_information.h"

#include <cstdio>

namespace veltra::console {

namespace {

// Not inlined, so that it has a line of its own in the backtrace.
[[gnu::noinline]] void raiseOnPurpose() {
    raiseException("DemonstrationException", "raised on purpose, to show what a report looks like");
}

int print(const std::string& text) {
    return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
}

// "pulse:Speakers *" and its rates, a line each; the star is at the default device of a system.
std::string devicesText() {
    std::string text = "auto\nnull\n";
    for (const DeviceInfo& device : listDevices()) {
        text.append(printable(device.id)).append(device.isDefault ? " *  " : "  ");
        for (const std::int32_t rate : device.rates)
            text.append(" ").append(std::to_string(rate));
        text += "\n";
    }
    return text;
}

}  // namespace

void introduceProgram() {
    setBundleInformationText("CFBundleName", "Veltra Console");
    setBundleInformationText("CFBundleShortVersionString", CONSOLE_VERSION);
}

std::string aboutText() {
    return applicationName() + " " + applicationVersion() + "\n" + systemVersion() + "\n";
}

void demonstrateException() {
    VLBacktracingException::install();
    try {
        raiseOnPurpose();
    } catch (const Exception& exception) {
        QKDisplayExceptionReport(exception);
    }
}

std::optional<int> answerRequest(const Options& options) {
    switch (options.request) {
        case Request::Files:
            return std::nullopt;
        case Request::Help:
            return print(kHelpText);
        case Request::Version:
            return print(aboutText());
        case Request::Machine:
            return print(hardwareReport());
        case Request::Devices:
            return print(devicesText());
        case Request::Exception:
            demonstrateException();
            return 0;
    }
    return std::nullopt;
}

}  // namespace veltra::console
