// SPDX-License-Identifier: MIT
// Dictionaries of property values as JSON text (RFC 8259).
//
// What JSON cannot say is written as an object with one member whose key begins with a dollar sign:
//     data                          {"$data": "<base64>"}
//     not-a-number, infinities      {"$real": "nan" | "inf" | "-inf"}
// Keys of dictionaries that begin with a dollar sign get another one in front ("$data" is written
// "$$data"), so that every dictionary comes back as it was. The outermost object is always a
// dictionary. An object that only resembles the above (bad base64, more members) is a dictionary
// and its keys are taken as they stand.
#pragma once

#include "veltra/base/property_value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

// Indented, members in key order, a line end after the last brace. Throws std::bad_alloc.
std::string jsonFromDictionary(const PropertyValue::Dictionary& dictionary);

// AsDigits: a number becomes a string of the digits that stand there, so that "1.10" stays that.
enum class JsonNumbers : std::uint8_t { AsValues, AsDigits };

// Empty when `text` is damaged: not JSON, not UTF-8, not an object, nested deeper than a property
// value can be, or with a number beyond the range of a double. Integers beyond 64 bits with sign
// become reals; of members with equal keys the last wins. Throws std::bad_alloc.
std::optional<PropertyValue::Dictionary> dictionaryFromJson(
    std::string_view text, JsonNumbers numbers = JsonNumbers::AsValues);

}  // namespace veltra
