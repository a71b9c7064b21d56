// SPDX-License-Identifier: MIT
// String objects as the library's own code sees them. The exported functions are wrappers of these.
#pragma once

#include "veltra/base/string_object.h"

#include <atomic>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

extern "C" {

// One block of memory: this header, then the units that `units` points to.
struct VLString {
    // 0: counted by nobody, lives as long as the process (see constantString()).
    mutable std::atomic<std::uint32_t> references;
    std::u16string_view units;
};
}

// What exported string constants are made of:
//     constexpr VLString kName = constantString(u"name");
// Retain and release leave such an object alone.
constexpr VLString constantString(std::u16string_view wellFormed) noexcept {
    return {{0}, wellFormed};
}

// One reference for the caller; null as documented for the exported functions.
const VLString* createString(std::string_view utf8) noexcept;
const VLString* createString(std::u16string_view utf16) noexcept;

const VLString* retainString(const VLString* string) noexcept;
void releaseString(const VLString* string) noexcept;

// The UTF-8 length in bytes; 0 for null.
std::size_t utf8LengthOf(const VLString* string) noexcept;

// Writes as many whole characters as fit into `capacity` bytes, no terminator, and answers how many
// bytes that were. Nothing for null.
std::size_t copyUtf8(const VLString* string, char* destination, std::size_t capacity) noexcept;

// The text, or nothing for null or when memory is out.
std::optional<std::string> textOf(const VLString* string) noexcept;

}  // namespace veltra
