// SPDX-License-Identifier: MIT
// A keyed archive: named values that a control writes its settings to and reads them from. It is a
// dictionary of property values, which can be kept in a file or in preferences.
//
// Thread: one at a time. Realtime-safe: no.
#pragma once

#include "veltra/base/property_value.h"
#include "veltra/export.h"
#include "veltra/ui/color.h"
#include "veltra/ui/font.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

class VELTRA_EXPORT KeyedCoder {
public:
    KeyedCoder() = default;
    // Reads the archive() of another coder. Any value but a dictionary counts as an empty archive.
    explicit KeyedCoder(const PropertyValue& archive) : m_values(archive.asDictionary()) {}

    // All that was encoded, as a dictionary: what to keep, and to make another coder of.
    PropertyValue archive() const { return m_values; }

    // Whether there is a value for this key, null included.
    bool contains(std::string_view key) const { return m_values.find(key) != m_values.end(); }

    // A key that is there already gets the new value.
    void encodeInt64(std::int64_t value, std::string_view key) { put(key, value); }
    void encodeBool(bool value, std::string_view key) { put(key, value); }
    void encodeDouble(double value, std::string_view key) { put(key, value); }
    void encodeString(std::string_view value, std::string_view key) { put(key, value); }
    void encodeColor(std::optional<Color> color, std::string_view key);
    void encodeRect(const Rect& rect, std::string_view key);
    void encodeFont(const Font& font, std::string_view key);
    void encodeValue(const PropertyValue& value, std::string_view key) { put(key, value); }

    // An object inside the archive, with keys of its own: `object.encodeWithCoder(inner)`.
    template <typename Encodable>
    void encodeObject(const Encodable& object, std::string_view key) {
        KeyedCoder inner;
        object.encodeWithCoder(inner);
        put(key, inner.archive());
    }

    // A key that is missing or holds something else returns `fallback`.
    std::int64_t decodeInt64(std::string_view key, std::int64_t fallback = 0) const;
    bool decodeBool(std::string_view key, bool fallback = false) const;
    double decodeDouble(std::string_view key, double fallback = 0.0) const;
    std::string decodeString(std::string_view key, std::string_view fallback = {}) const;
    std::optional<Color> decodeColor(std::string_view key,
                                     std::optional<Color> fallback = std::nullopt) const;
    Rect decodeRect(std::string_view key, const Rect& fallback = {}) const;
    // What an archive leaves out of a font is that of the fallback.
    Font decodeFont(std::string_view key, const Font& fallback = {}) const;
    // An enumerator that was encoded as its number; numbers beyond `last` count as missing.
    template <typename Enum>
    Enum decodeEnum(std::string_view key, Enum fallback, Enum last) const {
        const std::int64_t number = decodeInt64(key, -1);
        return number >= 0 && number <= static_cast<std::int64_t>(last) ? static_cast<Enum>(number)
                                                                        : fallback;
    }
    // Null for a key that is missing.
    PropertyValue decodeValue(std::string_view key) const;

    // Lets the object read its part of the archive. A key that is missing or holds something else
    // is an empty archive, from which objects keep what they have.
    template <typename Encodable>
    void decodeObject(Encodable& object, std::string_view key) const {
        object.decodeWithCoder(KeyedCoder(decodeValue(key)));
    }

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
