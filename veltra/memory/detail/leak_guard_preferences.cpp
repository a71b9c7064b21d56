// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/leak_guard_preferences.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/preferences.h"

#include <algorithm>
#include <charconv>
#include <mutex>

namespace veltra::detail {

namespace {

constexpr std::string_view kGroups = "LeakGuard";
constexpr std::string_view kEnabled = "LeakGuardEnabled";
constexpr std::string_view kPrintLimit = "LeakGuardPrintLimit";

// Leading blanks, a sign, digits; whatever follows does not count. Without digits 0.
std::int64_t numberAtStart(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (error == std::errc::result_out_of_range || magnitude > INT64_MAX) magnitude = INT64_MAX;
    const auto number = static_cast<std::int64_t>(magnitude);
    return isNegative ? -number : number;
}

std::int64_t numberOf(const PropertyValue& value) noexcept {
    if (value.kind() != PropertyValue::Kind::String) return value.asInteger();
    return numberAtStart(value.asString());
}

}  // namespace

void LeakGuardPreferences::load() noexcept {
    const Preferences& preferences = Preferences::current();
    m_lock.holdAcrossForks();
    m_stored.value = preferences.value(kGroups);
    m_isEnabled = preferences.value(kEnabled).asBool();
    const std::int64_t limit = numberOf(preferences.value(kPrintLimit));
    m_printLimit = static_cast<std::uint64_t>(std::max<std::int64_t>(limit, 0));
}

std::int64_t LeakGuardPreferences::value(std::string_view group, std::string_view key) noexcept {
    const PropertyValue overriding = read(m_overrides).value.valueAtPath({group, key});
    if (!overriding.isNull()) return overriding.asInteger();
    const PropertyValue stored = read(m_stored).value.valueAtPath({group, key});
    const std::int64_t number = numberOf(stored);
    if (stored.kind() == PropertyValue::Kind::String && change(m_stored, group, key, number)) {
        Preferences& preferences = Preferences::current();
        preferences.setValue(kGroups, read(m_stored).value);
        preferences.synchronise();
    }
    return number;
}

bool LeakGuardPreferences::setOverride(std::string_view group, std::string_view key,
                                       std::uint32_t value) noexcept {
    return change(m_overrides, group, key, value);
}

LeakGuardPreferences::Dictionary LeakGuardPreferences::read(const Dictionary& dictionary) noexcept {
    const std::lock_guard lock(m_lock);
    return dictionary;
}

bool LeakGuardPreferences::change(Dictionary& dictionary, std::string_view group,
                                  std::string_view key, std::int64_t number) noexcept {
    return isDoneUnlessOutOfMemory([&] {
        for (;;) {
            const Dictionary before = read(dictionary);
            PropertyValue after = before.value.settingValueAtPath({group, key}, number);
            const std::lock_guard lock(m_lock);
            if (dictionary.changes != before.changes) continue;
            std::swap(dictionary.value, after);  // the old value is destroyed with `before`
            ++dictionary.changes;
            return;
        }
    });
}

}  // namespace veltra::detail
