// SPDX-License-Identifier: MIT
// Any bytes as a compressed stream, which is nothing or the same in pieces of any size; and as data
// that comes back from its own stream, and from no part of it.
#include "fuzz/require.h"
#include "veltra/Source/Extensions/QKNSData_Extensions.h"
#include "veltra/Source/Extensions/detail/inflated_data.h"
#include "veltra/platform/compression.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace veltra;
    if (Compression::current().makeInflater() == nullptr) return 0;  // built without zlib
    const std::span input(data, size);
    const std::size_t number = size > 0 ? data[size - 1] : 0;
    const std::size_t most = std::size_t{1} << 16U;
    const auto unpacked = decompressedData(input, most);
    require(detail::inflatedData(input, most, number + 1) == unpacked, "unpacks alike in pieces");
    if (unpacked) {
        require(unpacked->size() <= most, "is no larger than the maximum");
        require(unpacked->empty() || !decompressedData(input, unpacked->size() - 1),
                "is nothing beyond the maximum");
    }
    const auto stream = compressedData(input);
    require(stream.has_value() == (size > 0), "all but nothing can be compressed");
    if (!stream) return 0;
    const auto again = decompressedData(*stream);
    require(again && std::equal(again->begin(), again->end(), input.begin(), input.end()),
            "unpacks to what it was");
    require(!decompressedData(std::span(*stream).first(number % stream->size())),
            "is nothing when it is cut short");
    return 0;
}
