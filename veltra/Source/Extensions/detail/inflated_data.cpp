// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/inflated_data.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/compression.h"

#include <algorithm>

namespace veltra::detail {

namespace {

using Data = PropertyValue::Data;

constexpr std::size_t kFirstSize = std::size_t{64} << 10;
constexpr std::size_t kFirstStep = kFirstSize / 2;
constexpr std::size_t kLargestStep = std::size_t{256} << 10;  // stays in the processor's cache

template <typename Bytes>
Bytes startOf(Bytes bytes, std::size_t largestSize) noexcept {
    return bytes.first(std::min(bytes.size(), largestSize));
}

// How far a stream is unpacked.
struct Progress {
    std::size_t made = 0;
    std::size_t taken = 0;
};

std::size_t firstSize(std::size_t streamSize) noexcept {
    return std::min(std::min(streamSize, kFirstSize) * 16, kFirstSize);
}

// How large the whole is likely to be, going by what was made since `before`, and a little more, so
// that it need not grow again; but sixteen times as much as there is, at most: the rest of the
// stream may be made otherwise.
std::size_t nextSize(Progress before, Progress now, std::size_t left,
                     std::size_t largestSize) noexcept {
    const std::size_t taken = std::max(now.taken - before.taken, std::size_t{1});
    const double perByte = static_cast<double>(now.made - before.made) / static_cast<double>(taken);
    const auto bytes = static_cast<double>(now.made);
    const double rest = std::clamp(static_cast<double>(left) * perByte * (17.0 / 16.0),
                                   bytes / 4 + 1, bytes * 15 + 1);
    const auto room = static_cast<double>(largestSize - now.made);
    return now.made + static_cast<std::size_t>(std::min(rest, room));
}

// Room for the next step. What is reserved beyond it is not touched: too much of it costs no time.
void makeRoom(Data& data, Progress before, Progress now, std::size_t streamSize,
              std::size_t largestSize) {
    if (data.capacity() == now.made) {
        const std::size_t size = now.made == 0
                                     ? firstSize(streamSize)
                                     : nextSize(before, now, streamSize - now.taken, largestSize);
        data.reserve(std::min(size, largestSize));
    }
    const std::size_t step = std::clamp(now.made, kFirstStep, kLargestStep);
    data.resize(std::min({now.made + step, data.capacity(), largestSize}));
}

// Memory that was asked for in vain goes back, unless it is little.
void trim(Data& data) {
    if (data.capacity() - data.size() > data.size() / 8) data.shrink_to_fit();
}

std::optional<Data> unpacked(Inflater& inflater, std::span<const std::uint8_t> stream,
                             std::size_t maximumSize, std::size_t largestPiece) {
    // One byte beyond the maximum shows that there are more.
    const std::size_t most = std::min(maximumSize, Data().max_size() - 1) + 1;
    Data data;
    Progress before;
    Progress now;
    for (auto state = Inflater::State::More; state != Inflater::State::End;) {
        if (now.made == data.size()) {
            makeRoom(data, before, now, stream.size(), most);
            before = now;
        }
        const Inflater::Step step =
            inflater.inflate(startOf(stream.subspan(now.taken), largestPiece),
                             startOf(std::span(data).subspan(now.made), largestPiece));
        state = step.state;
        now.made += step.made;
        now.taken += step.taken;
        if (state == Inflater::State::Failed || now.made == most) return std::nullopt;
    }
    data.resize(now.made);
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
