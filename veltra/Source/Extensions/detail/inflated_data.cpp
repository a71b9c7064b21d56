// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/detail/inflated_data.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/compression.h"

#include <algorithm>
#include <cstdlib>

namespace veltra::detail {

namespace {

// Memory that grows where it stands or by moving its pages, and by half of itself at least: the
// steps of its size may be many and small.
class GrowingBuffer {
public:
    GrowingBuffer() noexcept = default;
    GrowingBuffer(const GrowingBuffer&) = delete;
    GrowingBuffer& operator=(const GrowingBuffer&) = delete;
    ~GrowingBuffer() { std::free(m_bytes); }

    // False when memory is out.
    bool grow(std::size_t size) noexcept {
        if (size > m_capacity) {
            const std::size_t wanted = std::max(size, m_capacity + m_capacity / 2);
            void* const bytes = std::realloc(m_bytes, wanted);
            if (bytes == nullptr) return false;
            m_bytes = static_cast<std::uint8_t*>(bytes);
            m_capacity = wanted;
        }
        m_size = size;
        return true;
    }

    std::span<std::uint8_t> bytes() const noexcept { return {m_bytes, m_size}; }

private:
    std::uint8_t* m_bytes = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

template <typename Bytes>
Bytes startOf(Bytes bytes, std::size_t largestSize) noexcept {
    return bytes.first(std::min(bytes.size(), largestSize));
}

}  // namespace

std::optional<PropertyValue::Data> inflatedData(std::span<const std::uint8_t> stream,
                                                std::size_t maximumSize,
                                                std::size_t largestPiece) noexcept {
    if (stream.empty()) return std::nullopt;
    // One byte beyond the maximum shows that there are more.
    const std::size_t most = maximumSize < SIZE_MAX ? maximumSize + 1 : SIZE_MAX;
    const std::size_t half = stream.size() / 2;
    const std::unique_ptr<Inflater> inflater = Compression::current().makeInflater();
    GrowingBuffer buffer;
    if (inflater == nullptr || !buffer.grow(std::min(stream.size() + half, most)))
        return std::nullopt;

    std::size_t made = 0;
    for (auto state = Inflater::State::More; state != Inflater::State::End;) {
        if (made == buffer.bytes().size() && !buffer.grow(std::min(made + half, most)))
            return std::nullopt;
        const Inflater::Step step = inflater->inflate(
            startOf(stream, largestPiece), startOf(buffer.bytes().subspan(made), largestPiece));
        state = step.state;
        if (state == Inflater::State::Failed) return std::nullopt;
        made += step.made;
        if (made > maximumSize) return std::nullopt;
        stream = stream.subspan(step.taken);
    }
    return unlessOutOfMemory(std::nullopt, [&]() -> std::optional<PropertyValue::Data> {
        const auto unpacked = buffer.bytes().first(made);
        return PropertyValue::Data(unpacked.begin(), unpacked.end());
    });
}

}  // namespace veltra::detail
