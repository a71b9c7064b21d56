// SPDX-License-Identifier: MIT
// Unpacking a stream of unknown unpacked size.
#pragma once

#include "veltra/base/property_value.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace veltra::detail {

// As decompressedData(). The inflater gets at most `largestPiece` bytes at once, and makes at most
// as many; at least 1, at most Inflater::kLargestPiece.
std::optional<PropertyValue::Data> inflatedData(std::span<const std::uint8_t> stream,
                                                std::size_t maximumSize,
                                                std::size_t largestPiece) noexcept;

}  // namespace veltra::detail
