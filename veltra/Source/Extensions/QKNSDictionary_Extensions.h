// SPDX-License-Identifier: MIT
// Dictionaries from data.
#pragma once

#include "veltra/base/property_value.h"
#include "veltra/export.h"

#include <cstdint>
#include <optional>
#include <span>

namespace veltra {

// The dictionary that the bytes hold as JSON text, in the form in which preferences are kept: data
// and numbers that JSON cannot say stand in objects with one key, "$data" or "$real". Nothing when
// the bytes are no JSON object in UTF-8, when it nests too deep or holds a number beyond the range
// of a double, and when memory is out.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT std::optional<PropertyValue::Dictionary> initWithData(
    std::span<const std::uint8_t> bytes) noexcept;

}  // namespace veltra
