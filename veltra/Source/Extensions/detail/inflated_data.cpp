// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/inflated_data.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/compression.h"

#include <algorithm>

namespace veltra::detail {

namespace {

using Data = PropertyValue::Data;

constexpr std::size_t kFirstSize = std::size_t{128} << 10;
constexpr std::size_t kFirstStep = kFirstSize / 2;
constexpr std::size_t kLargestStep = std::size_t{256} << 10;  // stays in the processor's cache
constexpr std::size_t kLargestGuess = std::size_t{64} << 20;

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
    return std::min(std::min(streamSize, kFirstSize) * 64, kFirstSize);
}

// How large the whole is likely to be, going by what was made since `start`, and a little more, so
// that it need not grow again. What is reserved and not used costs no time; but the rest of the
// stream may be made otherwise, so a guess goes only so far.
std::size_t nextSize(Progress start, Progress now, std::size_t left) noexcept {
    if (start.made == now.made) start = {};
    const std::size_t taken = std::max(now.taken - start.taken, std::size_t{1});
    const double perByte = static_cast<double>(now.made - start.made) / static_cast<double>(taken);
    const double rest = static_cast<double>(left) * perByte * (9.0 / 8.0);
    const std::size_t least = now.made / 4 + 1;
    const std::size_t most =
        std::max(now.made, now.made < kLargestGuess / 63 ? now.made * 63 : kLargestGuess);
    return now.made + static_cast<std::size_t>(
                          std::clamp(rest, static_cast<double>(least), static_cast<double>(most)));
}

// Room for the next step.
void makeRoom(Data& data, Progress start, Progress now, std::size_t streamSize,
              std::size_t largestSize) {
    if (data.capacity() == now.made) {
        const std::size_t size =
            now.made == 0 ? firstSize(streamSize) : nextSize(start, now, streamSize - now.taken);
        data.reserve(std::min(size, largestSize));
    }
    const std::size_t step = std::clamp(now.made, kFirstStep, kLargestStep);
    data.resize(std::min({now.made + step, data.capacity(), largestSize}));
}

// Memory that was asked for in vain goes back, unless it is little.
void trim(Data& data) {
    if (data.capacity() - data.size() > data.size() / 4) data.shrink_to_fit();
}

std::optional<Data> unpacked(Inflater& inflater, std::span<const std::uint8_t> stream,
                             std::size_t maximumSize, std::size_t largestPiece) {
    // One byte beyond the maximum shows that there are more.
    const std::size_t most = std::min(maximumSize, Data().max_size() - 1) + 1;
    Data data;
    Progress start;  // behind the first step: the head of a stream makes nothing
    Progress now;
    for (auto state = Inflater::State::More; state != Inflater::State::End;) {
        if (now.made == data.size()) {
            if (start.made == 0) start = now;
            makeRoom(data, start, now, stream.size(), most);
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
