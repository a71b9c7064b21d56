// SPDX-License-Identifier: MIT
#include "veltra/platform/preferences.h"

#include "veltra/base/installable_source.h"
#include "veltra/platform/port.h"

namespace veltra {

Preferences::~Preferences() = default;

std::optional<DamagedPreferences> Preferences::takeDamageReport() noexcept {
    return std::nullopt;
}

template <>
struct OwnImplementation<Preferences> : OwnFrom<platformPreferences> {};
template class Installable<Preferences>;

bool Preferences::setApplicationName(std::string_view name) noexcept {
    return setPlatformApplicationName(name);
}

}  // namespace veltra
