// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <new>
#include <utility>

#define ZLIB_CONST  // its input is not written to
#include <zlib.h>

namespace veltra {

namespace {

uInt pieceOf(std::size_t size) noexcept {
    return static_cast<uInt>(std::min(size, Inflater::kLargestPiece));
}

class ZlibInflater final : public Inflater {
public:
    ~ZlibInflater() override {
        if (m_isOpen) inflateEnd(&m_stream);
    }

    bool open() noexcept { return m_isOpen = inflateInit(&m_stream) == Z_OK; }

    Step inflate(std::span<const std::uint8_t> stream,
                 std::span<std::uint8_t> destination) noexcept override {
        const uInt given = m_stream.avail_in = pieceOf(stream.size());
        const uInt room = m_stream.avail_out = pieceOf(destination.size());
        m_stream.next_in = stream.data();
        m_stream.next_out = destination.data();
        const int status = ::inflate(&m_stream, Z_SYNC_FLUSH);
        State state = status == Z_OK ? State::More : State::Failed;
        if (status == Z_STREAM_END) {
            m_isOpen = false;
            if (inflateEnd(&m_stream) == Z_OK) state = State::End;
        }
        return {state, given - m_stream.avail_in, room - m_stream.avail_out};
    }

private:
    z_stream m_stream{};
    bool m_isOpen = false;
};

class ZlibCompression final : public Compression {
public:
    std::size_t largestCompressedSize(std::size_t size) const noexcept override {
        return isCountable(size) ? compressBound(static_cast<uLong>(size)) : size;
    }

    std::optional<std::size_t> compress(
        std::span<const std::uint8_t> bytes,
        std::span<std::uint8_t> destination) const noexcept override {
        if (!isCountable(bytes.size()) || !isCountable(destination.size())) return std::nullopt;
        uLongf length = static_cast<uLongf>(destination.size());
        const int status =
            ::compress(destination.data(), &length, bytes.data(), static_cast<uLong>(bytes.size()));
        if (status != Z_OK) return std::nullopt;
        return length;
    }

    std::unique_ptr<Inflater> makeInflater() const noexcept override {
        std::unique_ptr<ZlibInflater> inflater(new (std::nothrow) ZlibInflater);
        if (inflater == nullptr || !inflater->open()) return nullptr;
        return inflater;
    }

private:
    static bool isCountable(std::size_t size) noexcept { return std::in_range<uLong>(size); }
};

}  // namespace

const Compression& platformCompression() noexcept {
    static const Immortal<ZlibCompression> compression;
    return *compression;
}

}  // namespace veltra
