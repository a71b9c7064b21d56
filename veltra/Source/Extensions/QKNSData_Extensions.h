// SPDX-License-Identifier: MIT
// Compression of data. The compressed form is one zlib stream (RFC 1950) and nothing else: neither
// a mark nor the unpacked size stands in front of it.
//
// All of it returns nothing when the library was built without zlib; compressing then counts as an
// assertion, too.
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/base/property_value.h"
#include "veltra/export.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace veltra {

// The bytes compressed by zlib at its default level; other programs that use zlib so produce the
// same bytes. Nothing for no bytes.
//
// Nothing also when zlib fails, which means that memory is out. That counts as an assertion: it is
// logged and the user is asked, as dbgASSERT() in veltra/diagnostics/assertion.h describes.
VELTRA_EXPORT std::optional<PropertyValue::Data> compressedData(
    std::span<const std::uint8_t> bytes) noexcept;

// What was compressed. Nothing for no bytes, for a stream that is cut short or damaged as far as
// its checksum tells, and when memory is out. Bytes behind the end of the stream are ignored. The
// stream of nothing unpacks to data of no bytes.
//
// A small stream may unpack to a thousand times its size. For streams from outside, use the form
// with a limit.
VELTRA_EXPORT std::optional<PropertyValue::Data> decompressedData(
    std::span<const std::uint8_t> stream) noexcept;

// The same; nothing also when the unpacked data has more than `maximumSize` bytes. For a moment it
// takes memory for twice the unpacked data, and may reserve up to 64 MiB more that it never
// touches.
VELTRA_EXPORT std::optional<PropertyValue::Data> decompressedData(
    std::span<const std::uint8_t> stream, std::size_t maximumSize) noexcept;

}  // namespace veltra
