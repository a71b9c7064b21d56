#include "veltra/platform/preferences.h"

#include "veltra/platform/detail/platform_preferences.h"

#include <atomic>

namespace veltra {

namespace {

std::atomic<Preferences*> installedPreferences{nullptr};

}  // namespace

Preferences::~Preferences() = default;

std::optional<DamagedPreferences> Preferences::takeDamageReport() noexcept {
    return std::nullopt;
}

Preferences& Preferences::current() noexcept {
    Preferences* installed =
        installedPreferences.load(std::memory_order_acquire);  // with install()
    return installed != nullptr ? *installed : platformPreferences();
}

Preferences* Preferences::install(Preferences* preferences) noexcept {
    return installedPreferences.exchange(preferences, std::memory_order_acq_rel);  // with current()
}

bool Preferences::setApplicationName(std::string_view name) noexcept {
    return setPlatformApplicationName(name);
}

}  // namespace veltra
