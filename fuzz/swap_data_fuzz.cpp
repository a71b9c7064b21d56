// SPDX-License-Identifier: MIT
// Any bytes as a description and the fields that it copies, apart or overlapping at any distance
// and alignment. The input: where the copy comes from and goes to, the length (two bytes), how
// long the description is, the description, the fields.
#include "fuzz/require.h"
#include "veltra/processor/record_swap.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// Copies the fields in front of the first that does not fit, to `to` unless that is null. Answers
// how much of `length` they take.
std::size_t slowSwapData(unsigned char* to, const unsigned char* from,
                         const std::vector<std::int8_t>& description, std::size_t length) {
    std::size_t taken = 0;
    for (const std::int8_t field : description) {
        const auto size = static_cast<std::size_t>(std::abs(int{field}));
        if (size == 0 || length - taken < size) break;
        if (to != nullptr) {
            Bytes value(from + taken, from + taken + size);
            if (field == 2 || field == 4 || field == 8) std::reverse(value.begin(), value.end());
            std::copy(value.begin(), value.end(), to + taken);
        }
        taken += size;
    }
    return taken;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size < 5) return 0;
    const std::size_t from = data[0];
    const std::size_t to = data[1];
    const std::size_t length = data[2] * 256U + data[3];
    const std::size_t end = std::min<std::size_t>(size, 5U + data[4]);
    std::vector<std::int8_t> description(end - 5 + 1);  // and its 0
    std::transform(data + 5, data + end, description.begin(),
                   [](unsigned char byte) { return static_cast<std::int8_t>(byte); });
    const std::size_t taken = slowSwapData(nullptr, nullptr, description, length);

    // One block for both that ends with the last byte that may be touched.
    Bytes block(std::max(from, to) + taken);
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<unsigned char>(end < size ? data[end + i % (size - end)] : i);
    Bytes expected = block;
    const Bytes original = block;
    veltra::SwapData(block.data() + to, block.data() + from, description.data(), length);
    slowSwapData(expected.data() + to, expected.data() + from, description, length);
    require(block == expected, "field by field");

    block.assign(original.begin(), original.end());
    for (int time = 0; time < 2; ++time)
        veltra::SwapData(block.data() + to, block.data() + to, description.data(), length);
    require(block == original, "twice in place is not at all");

    const Bytes source(original.begin(), original.begin() + static_cast<std::ptrdiff_t>(taken));
    Bytes copy(taken);
    Bytes slowCopy(taken);
    veltra::SwapData(copy.data(), source.data(), description.data(), length);
    slowSwapData(slowCopy.data(), source.data(), description, length);
    require(copy == slowCopy, "between two blocks");
    return 0;
}
