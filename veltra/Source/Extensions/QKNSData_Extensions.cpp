// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSData_Extensions.h"

#include "veltra/Source/Extensions/detail/inflated_data.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/diagnostics/failed_assertion.h"
#include "veltra/platform/compression.h"

#include <algorithm>

namespace veltra {

namespace {

// The size that callers have always counted on, or more where the compressor may need more.
std::size_t capacityFor(std::size_t size) noexcept {
    const auto usual = static_cast<std::size_t>(static_cast<double>(size) * 1.001 + 12.0);
    return std::max(usual, Compression::current().largestCompressedSize(size));
}

std::optional<PropertyValue::Data> compressed(std::span<const std::uint8_t> bytes) {
    PropertyValue::Data stream(capacityFor(bytes.size()));
    const std::optional<std::size_t> length = Compression::current().compress(bytes, stream);
    if (!length) return std::nullopt;
    stream.resize(*length);
    stream.shrink_to_fit();
    return stream;
}

}  // namespace

std::optional<PropertyValue::Data> compressedData(std::span<const std::uint8_t> bytes) noexcept {
    if (bytes.empty()) return std::nullopt;
    auto stream = unlessOutOfMemory(std::nullopt, [bytes] { return compressed(bytes); });
    if (!stream && failAssertion("-compressedData error",
                                 "Source/Extensions/QKNSData_Extensions:36", nullptr) != 0)
        __builtin_trap();  // the user wants to look with a debugger
    return stream;
}

std::optional<PropertyValue::Data> decompressedData(std::span<const std::uint8_t> stream) noexcept {
    return decompressedData(stream, SIZE_MAX);
}

std::optional<PropertyValue::Data> decompressedData(std::span<const std::uint8_t> stream,
                                                    std::size_t maximumSize) noexcept {
    return detail::inflatedData(stream, maximumSize, Inflater::kLargestPiece);
}

}  // namespace veltra
