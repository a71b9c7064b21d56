// SPDX-License-Identifier: MIT
// A keyed archive: named values that a control writes its settings to and reads them from. It is a
// dictionary of property values, which can be kept in a file or in preferences.
//
// Thread: one at a time. Realtime-safe: no.
#pragma once

#include "veltra/base/property_value.h"
#include "veltra/export.h"
#include "veltra/ui/color.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

class VELTRA_EXPORT KeyedCoder {
public:
    KeyedCoder() = default;
    // Reads what another one has written; whatever is not a dictionary counts as an empty one.
    explicit KeyedCoder(const PropertyValue& archive) : m_values(archive.asDictionary()) {}

    PropertyValue archive() const { return m_values; }
    bool contains(std::string_view key) const { return m_values.find(key) != m_values.end(); }

    // A key that is there already gets the new value.
    void encodeInt64(std::int64_t value, std::string_view key) { put(key, value); }
    void encodeBool(bool value, std::string_view key) { put(key, value); }
    void encodeDouble(double value, std::string_view key) { put(key, value); }
    void encodeString(std::string_view value, std::string_view key) { put(key, value); }
    void encodeColor(std::optional<Color> color, std::string_view key);
    void encodeRect(const Rect& rect, std::string_view key);

    // A key that is missing or holds something else answers `fallback`.
    std::int64_t decodeInt64(std::string_view key, std::int64_t fallback = 0) const;
    bool decodeBool(std::string_view key, bool fallback = false) const;
    double decodeDouble(std::string_view key, double fallback = 0.0) const;
    std::string decodeString(std::string_view key, std::string_view fallback = {}) const;
    std::optional<Color> decodeColor(std::string_view key,
                                     std::optional<Color> fallback = std::nullopt) const;
    Rect decodeRect(std::string_view key, const Rect& fallback = {}) const;

private:
    void put(std::string_view key, PropertyValue value) {
        m_values.insert_or_assign(std::string(key), std::move(value));
    }
    const PropertyValue* find(std::string_view key) const;
    // The four numbers of an array; nothing when it is something else.
    struct Four {
        float numbers[4];
    };
    std::optional<Four> findFour(std::string_view key) const;

    PropertyValue::Dictionary m_values;
};

}  // namespace veltra
