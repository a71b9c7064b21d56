// SPDX-License-Identifier: MIT
#include "veltra/platform/application_facts.h"

#include "veltra/platform/bundle_information.h"
#include "veltra/platform/port.h"
#include "veltra/platform/process.h"

namespace veltra {

std::string applicationName() {
    std::string name = BundleInformation::current().text("CFBundleName");
    return name.empty() ? std::string(Process::current().programName()) : name;
}

std::string applicationVersion() {
    const BundleInformation& bundle = BundleInformation::current();
    std::string shortVersion = bundle.text("CFBundleShortVersionString");
    const std::string version = bundle.text("CFBundleVersion");
    const std::string build = bundle.text("ProductBuildVersion");
    if (shortVersion.empty()) return "?.??";
    if (version.empty()) return shortVersion;
    const std::string both = shortVersion + '(' + version + ')';
    return build.empty() ? both : both + ' ' + build;
}

std::string systemVersion() {
    const std::optional<SystemVersion> found = platformSystemVersion();
    if (!found) return "Unknown";
    return found->product + ' ' + found->version + " (Build " + found->build + ')';
}

}  // namespace veltra
