// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/inflated_data.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/compression.h"

#include <algorithm>

namespace veltra::detail {

namespace {

using Data = PropertyValue::Data;

constexpr std::size_t kFirstSize = std::size_t{64} << 10;

template <typename Bytes>
Bytes startOf(Bytes bytes, std::size_t largestSize) noexcept {
    return bytes.first(std::min(bytes.size(), largestSize));
}

// How large the whole is likely to be, going by what `taken` bytes of the stream have made, and a
// little more, so that it need not grow again; but eight times as much as there is, at most: the
// rest of the stream may be made otherwise.
std::size_t nextSize(std::size_t made, std::size_t taken, std::size_t left) noexcept {
    const auto bytes = static_cast<double>(made);
    const double perByte = bytes / static_cast<double>(std::max(taken, std::size_t{1}));
    const double rest = static_cast<double>(left) * perByte * (17.0 / 16.0);
    return made + static_cast<std::size_t>(std::clamp(rest, bytes / 4 + 1, bytes * 7 + 1));
}

// To that size and no further: resize() alone would double it.
void grow(Data& data, std::size_t size) {
    data.reserve(size);
    data.resize(size);
}

// Memory that was asked for in vain goes back, unless it is little.
void trim(Data& data) {
    if (data.capacity() - data.size() > data.size() / 8) data.shrink_to_fit();
}

std::optional<Data> unpacked(Inflater& inflater, std::span<const std::uint8_t> stream,
                             std::size_t maximumSize, std::size_t largestPiece) {
    // One byte beyond the maximum shows that there are more.
    const std::size_t most = std::min(maximumSize, Data().max_size() - 1) + 1;
    Data data(std::min({std::min(stream.size(), kFirstSize) * 16, kFirstSize, most}));
    std::size_t made = 0;
    std::size_t taken = 0;
    for (auto state = Inflater::State::More; state != Inflater::State::End;) {
        if (made == data.size())
            grow(data, std::min(nextSize(made, taken, stream.size() - taken), most));
        const Inflater::Step step =
            inflater.inflate(startOf(stream.subspan(taken), largestPiece),
                             startOf(std::span(data).subspan(made), largestPiece));
        state = step.state;
        made += step.made;
        taken += step.taken;
        if (state == Inflater::State::Failed || made == most) return std::nullopt;
    }
    data.resize(made);
    trim(data);
    return data;
}

}  // namespace

std::optional<Data> inflatedData(std::span<const std::uint8_t> stream, std::size_t maximumSize,
                                 std::size_t largestPiece) noexcept {
    if (stream.empty()) return std::nullopt;
    const std::unique_ptr<Inflater> inflater = Compression::current().makeInflater();
    if (inflater == nullptr) return std::nullopt;
    return unlessOutOfMemory(std::optional<Data>(), [&] {
        return unpacked(*inflater, stream, maximumSize, largestPiece);
    });
}

}  // namespace veltra::detail
