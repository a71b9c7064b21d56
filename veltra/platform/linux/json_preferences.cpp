// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/json_preferences.h"

#include "veltra/base/immortal.h"
#include "veltra/base/json_text.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/base/well_formed_utf8.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include <errno.h>
#include <pwd.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr std::size_t kLongestApplicationName = 200;  // room for what is appended to file names

std::error_code outOfMemory() noexcept {
    return std::make_error_code(std::errc::not_enough_memory);
}

bool isAbsolute(const char* path) noexcept {
    return path != nullptr && path[0] == '/';
}

bool isUsableName(std::string_view name) noexcept {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    return !name.empty() && name.size() <= kLongestApplicationName && name.front() != '.' &&
           name.find('/') == std::string_view::npos && std::ranges::none_of(name, isControl);
}

// Empty when the user has no home.
std::string configurationFolder() {
    // NOLINTBEGIN(concurrency-mt-unsafe): a host that changes its environment does so at start
    const char* configuration = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    // NOLINTEND(concurrency-mt-unsafe)
    if (isAbsolute(configuration)) return configuration;
    if (isAbsolute(home)) return std::string(home) + "/.config";

    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    while (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    if (found == nullptr || !isAbsolute(found->pw_dir)) return {};
    return std::string(found->pw_dir) + "/.config";
}

JsonPreferences& applicationPreferences() noexcept {
    static const Immortal<JsonPreferences> preferences;
    return *preferences;
}

}  // namespace

std::error_code JsonPreferences::locate() const {
    if (!m_path.empty()) return {};
    const std::string folder = configurationFolder();
    if (folder.empty()) return std::make_error_code(std::errc::no_such_file_or_directory);
    std::string name = m_application;
    if (name.empty() && isUsableName(program_invocation_short_name)) {
        name = program_invocation_short_name;
    }
    m_path = folder + '/' + (name.empty() ? "application" : name) + ".json";
    return {};
}

std::error_code JsonPreferences::setAside(PreferencesFile& file, std::error_code lockError) const {
    DamagedPreferences damage{m_path, {}};
    const std::error_code error = lockError ? lockError : file.setAside(damage.keptAs);
    const bool isKnown = error && m_isDamageInPlaceReported;
    m_isDamageInPlaceReported = static_cast<bool>(error);
    if (!isKnown) m_damage = std::move(damage);
    return error;
}

std::error_code JsonPreferences::read(PreferencesFile& file,
                                      PropertyValue::Dictionary& values) const {
    for (;;) {
        values.clear();
        std::string text;
        const std::error_code error = file.read(text);
        if (error == std::errc::no_such_file_or_directory) return {};
        if (error) return error;
        if (auto found = dictionaryFromJson(text)) {
            values = std::move(*found);
            m_isDamageInPlaceReported = false;
            return {};
        }
        if (file.isLocked()) return setAside(file, {});
        // Another process may be putting a sound file there: look again when nobody else writes.
        if (const std::error_code lockError = file.lock()) return setAside(file, lockError);
    }
}

void JsonPreferences::readAtFirstUse() const {
    if (std::exchange(m_isRead, true)) return;
    const NoCancellation whileFilesAreRead;
    if (locate()) return;
    PreferencesFile file(m_path, m_calls);
    PropertyValue::Dictionary values;
    if (!read(file, values)) m_stored = std::move(values);
}

PropertyValue JsonPreferences::value(std::string_view key) const noexcept {
    return unlessOutOfMemory(PropertyValue(), [&]() -> PropertyValue {
        const std::lock_guard lock(m_mutex);
        // Without memory for it the file is as good as unread: the next call reads it.
        if (!isDoneUnlessOutOfMemory([this] { readAtFirstUse(); })) m_isRead = false;
        std::string repaired;  // stays empty in all but odd cases: reading takes no memory
        if (!isWellFormedUtf8(key)) key = repaired = wellFormedUtf8(std::string(key));
        for (const PropertyValue::Dictionary* values : {&m_pending, &std::as_const(m_stored)}) {
            if (const auto found = values->find(key); found != values->end()) return found->second;
        }
        return {};
    });
}

bool JsonPreferences::setValue(std::string_view key, const PropertyValue& value) noexcept {
    return unlessOutOfMemory(false, [&] {
        const std::lock_guard lock(m_mutex);
        m_pending.insert_or_assign(wellFormedUtf8(std::string(key)), value);
        return true;
    });
}

std::error_code JsonPreferences::synchronise() noexcept {
    const NoCancellation whileFilesAreInUse;
    return unlessOutOfMemory(outOfMemory(), [&]() -> std::error_code {
        const std::lock_guard lock(m_mutex);
        if (const std::error_code error = locate()) return error;
        PreferencesFile file(m_path, m_calls);
        if (!m_pending.empty()) {
            if (const std::error_code error = file.lock()) return error;
        }
        PropertyValue::Dictionary values;
        if (const std::error_code error = read(file, values)) return error;

        bool isChanged = false;
        for (const auto& [key, value] : m_pending) {
            const auto found = values.find(key);
            if (value.isNull()) {
                isChanged |= found != values.end();
                values.erase(key);
            } else if (found == values.end() || !(found->second == value)) {
                isChanged = true;
                values.insert_or_assign(key, value);
            }
        }
        if (isChanged) {
            if (const std::error_code error = file.replace(jsonFromDictionary(values)))
                return error;
        }
        m_isRead = true;
        m_stored = std::move(values);
        m_pending.clear();
        return {};
    });
}

std::error_code JsonPreferences::reload() noexcept {
    const NoCancellation whileFilesAreInUse;
    return unlessOutOfMemory(outOfMemory(), [&]() -> std::error_code {
        const std::lock_guard lock(m_mutex);
        if (const std::error_code error = locate()) return error;
        PreferencesFile file(m_path, m_calls);
        PropertyValue::Dictionary values;
        if (const std::error_code error = read(file, values)) return error;
        m_isRead = true;
        m_stored = std::move(values);
        return {};
    });
}

std::optional<DamagedPreferences> JsonPreferences::takeDamageReport() noexcept {
    return unlessOutOfMemory(std::optional<DamagedPreferences>(), [&] {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_damage, std::nullopt);
    });
}

bool JsonPreferences::setApplicationName(std::string_view name) noexcept {
    return unlessOutOfMemory(false, [&] {
        const std::lock_guard lock(m_mutex);
        if (m_isRead || !m_path.empty() || !isUsableName(name)) return false;
        m_application = name;
        return true;
    });
}

std::string JsonPreferences::path() const noexcept {
    const NoCancellation whileFilesAreRead;
    return unlessOutOfMemory(std::string(), [&] {
        const std::lock_guard lock(m_mutex);
        (void)locate();
        return m_path;
    });
}

Preferences& platformPreferences() noexcept {
    return applicationPreferences();
}

bool setPlatformApplicationName(std::string_view name) noexcept {
    return applicationPreferences().setApplicationName(name);
}

}  // namespace veltra
