// SPDX-License-Identifier: MIT
// Preferences in a JSON file: "<application>.json" in the user's configuration folder, which is
// $XDG_CONFIG_HOME if that is absolute, else ".config" in $HOME if that is absolute, else ".config"
// in the home folder of the user database.
#pragma once

#include "veltra/platform/linux/preferences_file.h"
#include "veltra/platform/preferences.h"

#include <atomic>

namespace veltra {

class JsonPreferences final : public Preferences {
public:
    // Those of the running application; their file is located at first use.
    JsonPreferences() noexcept : JsonPreferences(std::string_view()) {}

    // `calls` must outlive the object. Throws std::bad_alloc.
    explicit JsonPreferences(std::string_view path, const FileCalls& calls = kSystemFileCalls);

    PropertyValue value(std::string_view key) const noexcept override;
    bool setValue(std::string_view key, const PropertyValue& value) noexcept override;
    std::error_code synchronise() noexcept override;
    std::error_code reload() noexcept override;
    std::optional<DamagedPreferences> takeDamageReport() noexcept override;

    // As Preferences::setApplicationName().
    bool setApplicationName(std::string_view name) noexcept;

    // Where the values are kept; empty when the user has no home or memory is out.
    std::string path() const noexcept;

private:
    // These use files, one call at a time in the process.
    void readAtFirstUse() const;
    std::error_code locate() const;
    std::error_code read(PreferencesFile& file, PropertyValue::Dictionary& values) const;
    std::error_code setAside(PreferencesFile& file, std::error_code lockError) const;
    void startWriting();

    const FileCalls& m_calls = kSystemFileCalls;
    // Changed by whoever uses files, under the lock of the values.
    mutable std::atomic<bool> m_isRead{false};
    mutable std::string m_path;
    std::string m_application;
    mutable PropertyValue::Dictionary m_stored;  // as the file was last seen
    PropertyValue::Dictionary m_writing;         // set here and on its way into the file
    mutable bool m_isDamageInPlaceReported = false;
    // Changed by others too, under the same lock.
    PropertyValue::Dictionary m_pending;  // set here since; null: removed
    mutable std::optional<DamagedPreferences> m_damage;
};

}  // namespace veltra
