// SPDX-License-Identifier: MIT
#include "veltra/platform/preferences.h"

#include "veltra/base/replaceable.h"
#include "veltra/platform/detail/platform_preferences.h"

namespace veltra {

namespace {

constinit Replaceable<Preferences, &platformPreferences> replaceablePreferences;

}  // namespace

Preferences::~Preferences() = default;

std::optional<DamagedPreferences> Preferences::takeDamageReport() noexcept {
    return std::nullopt;
}

Preferences& Preferences::current() noexcept {
    return replaceablePreferences.current();
}

Preferences* Preferences::install(Preferences* preferences) noexcept {
    return replaceablePreferences.install(preferences);
}

bool Preferences::setApplicationName(std::string_view name) noexcept {
    return setPlatformApplicationName(name);
}

}  // namespace veltra
