// SPDX-License-Identifier: MIT
// Which scopes are guarded, by group and key.
#pragma once

#include "veltra/base/property_value.h"
#include "veltra/platform/fork_safe_lock.h"

#include <cstdint>
#include <string_view>

namespace veltra::detail {

// Values are exchanged under the lock and made and destroyed outside it, because making them
// allocates.
class LeakGuardPreferences {
public:
    LeakGuardPreferences() noexcept = default;
    LeakGuardPreferences(const LeakGuardPreferences&) = delete;
    LeakGuardPreferences& operator=(const LeakGuardPreferences&) = delete;

    // Reads the application's preferences; before everything else, on one thread.
    //   - LeakGuard: group to dictionary of key to number, or to text as far as it is a number
    //   - LeakGuardEnabled: truth value; without it the guard is off
    //   - LeakGuardPrintLimit: how many leaks a report shows in full; 0, the default, for all
    void load() noexcept;

    bool isEnabled() const noexcept { return m_isEnabled; }
    std::uint64_t printLimit() const noexcept { return m_printLimit; }

    // The overriding value, else the user's, else 0. A string of the user's is replaced by its
    // number here and in the stored preferences.
    std::int64_t value(std::string_view group, std::string_view key) noexcept;

    // In force until the process ends. False when memory is out.
    bool setOverride(std::string_view group, std::string_view key, std::uint32_t value) noexcept;

private:
    struct Dictionary {
        PropertyValue value;
        std::uint32_t changes = 0;
    };
    Dictionary read(const Dictionary& dictionary) noexcept;
    bool change(Dictionary& dictionary, std::string_view group, std::string_view key,
                std::int64_t number) noexcept;

    ForkSafeLock m_lock;  // over both dictionaries
    Dictionary m_stored;
    Dictionary m_overrides;
    bool m_isEnabled = false;
    std::uint64_t m_printLimit = 0;
};

// The guard's preferences, and null when it is off. The first call reads them and, if they say so,
// puts the guard to work.
// Thread: any but audio. Realtime-safe: no.
LeakGuardPreferences* leakGuardInForce() noexcept;

}  // namespace veltra::detail
