// SPDX-License-Identifier: MIT
// Two locks, for all objects together, because a lock that forks know must live as long as the
// process. `fileLock` is held while files are in use, which may take seconds; a forked child finds
// it free. `valuesLock` is held across forks, so that the child finds whole values: under it things
// are only looked up, swapped and linked. Nothing is allocated, freed or waited for.
#include "veltra/platform/linux/json_preferences.h"

#include "veltra/base/immortal.h"
#include "veltra/base/json_text.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/base/well_formed_utf8.h"
#include "veltra/platform/fork_safe_lock.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

#include <errno.h>
#include <pwd.h>
#include <unistd.h>

namespace veltra {

namespace {

constinit AdaptiveLock fileLock;
constinit ForkSafeLock valuesLock;

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

JsonPreferences::JsonPreferences(std::string_view path, const FileCalls& calls)
    : m_calls(calls), m_path(path) {
    addForkHandler({fileLock, ForkPolicy::ResetInChild});
    valuesLock.holdAcrossForks();
}

std::error_code JsonPreferences::locate() const {
    if (!m_path.empty()) return {};
    const std::string folder = configurationFolder();
    if (folder.empty()) return std::make_error_code(std::errc::no_such_file_or_directory);
    std::string name = m_application;
    if (name.empty() && isUsableName(program_invocation_short_name)) {
        name = program_invocation_short_name;
    }
    std::string path = folder + '/' + (name.empty() ? "application" : name) + ".json";
    const std::lock_guard lock(valuesLock);
    m_path.swap(path);
    return {};
}

std::error_code JsonPreferences::setAside(PreferencesFile& file, std::error_code lockError) const {
    std::optional damage(DamagedPreferences{m_path, {}});
    const std::error_code error = lockError ? lockError : file.setAside(damage->keptAs);
    const bool isKnown = error && m_isDamageInPlaceReported;
    m_isDamageInPlaceReported = static_cast<bool>(error);
    if (isKnown) return error;
    const std::lock_guard lock(valuesLock);
    m_damage.swap(damage);
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
    const NoCancellation whileFilesAreRead;
    const std::lock_guard inTurn(fileLock);
    if (m_isRead) return;
    PropertyValue::Dictionary values;  // empty when they cannot be read
    if (!locate()) {
        PreferencesFile file(m_path, m_calls);
        (void)read(file, values);
    }
    const std::lock_guard lock(valuesLock);
    m_stored.swap(values);
    m_isRead = true;
}

PropertyValue JsonPreferences::value(std::string_view key) const noexcept {
    return unlessOutOfMemory(PropertyValue(), [&]() -> PropertyValue {
        // Without memory for it the file is as good as unread: the next call reads it.
        if (!m_isRead) (void)isDoneUnlessOutOfMemory([this] { readAtFirstUse(); });
        std::string repaired;  // stays empty in all but odd cases: reading takes no memory
        if (!isWellFormedUtf8(key)) key = repaired = wellFormedUtf8(std::string(key));
        const std::lock_guard lock(valuesLock);
        for (const auto* values : {&m_pending, &m_writing, &std::as_const(m_stored)}) {
            if (const auto found = values->find(key); found != values->end()) return found->second;
        }
        return {};
    });
}

bool JsonPreferences::setValue(std::string_view key, const PropertyValue& value) noexcept {
    return isDoneUnlessOutOfMemory([&] {
        PropertyValue::Dictionary change;
        const auto& name = change.emplace(wellFormedUtf8(std::string(key)), value).first->first;
        const std::lock_guard lock(valuesLock);
        m_pending.merge(change);
        if (!change.empty()) std::swap(m_pending.find(name)->second, change.begin()->second);
    });
}

// What a failure, or a fork in the middle, has left is written with the rest; later values stay.
void JsonPreferences::startWriting() {
    PropertyValue::Dictionary overridden;
    const std::lock_guard lock(valuesLock);
    m_pending.merge(m_writing);
    overridden.swap(m_writing);
    m_writing.swap(m_pending);
}

std::error_code JsonPreferences::synchronise() noexcept {
    const NoCancellation whileFilesAreInUse;
    return unlessOutOfMemory(outOfMemory(), [&]() -> std::error_code {
        const std::lock_guard inTurn(fileLock);
        if (const std::error_code error = locate()) return error;
        PreferencesFile file(m_path, m_calls);
        startWriting();
        if (!m_writing.empty()) {
            if (const std::error_code error = file.lock()) return error;
        }
        PropertyValue::Dictionary values;
        if (const std::error_code error = read(file, values)) return error;

        bool isChanged = false;
        for (const auto& [key, value] : m_writing) {
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
        PropertyValue::Dictionary written;
        const std::lock_guard lock(valuesLock);
        m_stored.swap(values);
        m_writing.swap(written);
        m_isRead = true;
        return {};
    });
}

std::error_code JsonPreferences::reload() noexcept {
    const NoCancellation whileFilesAreInUse;
    return unlessOutOfMemory(outOfMemory(), [&]() -> std::error_code {
        const std::lock_guard inTurn(fileLock);
        if (const std::error_code error = locate()) return error;
        PreferencesFile file(m_path, m_calls);
        PropertyValue::Dictionary values;
        if (const std::error_code error = read(file, values)) return error;
        const std::lock_guard lock(valuesLock);
        m_stored.swap(values);
        m_isRead = true;
        return {};
    });
}

std::optional<DamagedPreferences> JsonPreferences::takeDamageReport() noexcept {
    const std::lock_guard lock(valuesLock);
    return std::exchange(m_damage, std::nullopt);
}

bool JsonPreferences::setApplicationName(std::string_view name) noexcept {
    return unlessOutOfMemory(false, [&] {
        std::string application(name);
        const std::lock_guard inTurn(fileLock);
        if (m_isRead || !m_path.empty() || !isUsableName(name)) return false;
        const std::lock_guard lock(valuesLock);
        m_application.swap(application);
        return true;
    });
}

std::string JsonPreferences::path() const noexcept {
    const NoCancellation whileFilesAreRead;
    return unlessOutOfMemory(std::string(), [&] {
        const std::lock_guard inTurn(fileLock);
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
