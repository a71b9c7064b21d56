// SPDX-License-Identifier: MIT
// What the user decided, kept between launches, and a log that also tells what went wrong with it.
#include "veltra/diagnostics/log.h"
#include "veltra/platform/preferences.h"

#include <cstdio>

int main() {
    veltra::Preferences::setApplicationName("veltra-example");
    veltra::Preferences& preferences = veltra::Preferences::current();

    const std::int64_t launches = preferences.value("Launches").asInteger() + 1;
    preferences.setValue("Launches", launches);
    preferences.setValue("Device", veltra::PropertyValue::Dictionary{
                                       {"Name", "auto"},
                                       {"BlockSize", 256},
                                   });
    if (const std::error_code error = preferences.synchronise()) {
        veltra::QKLogCString(veltra::kLogWarning, veltra::QKLogWithSyslogBanner(), "preferences",
                             "not stored: %s", error.message().c_str());
    }
    if (const auto damage = preferences.takeDamageReport()) {
        veltra::QKLogCString(veltra::kLogWarning, veltra::QKLogWithSyslogBanner(), "preferences",
                             "%s was damaged, kept as %s", damage->file.c_str(),
                             damage->keptAs.c_str());
    }

    const auto blockSize = preferences.value("Device").valueAtPath({"BlockSize"}).asInteger();
    std::printf("launch %lld, blocks of %lld frames\n", static_cast<long long>(launches),
                static_cast<long long>(blockSize));
    return blockSize == 256 ? 0 : 1;
}
