// SPDX-License-Identifier: MIT
// Compressed streams in the zlib format (RFC 1950).
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace veltra {

// Unpacks one stream, piece by piece.
class VELTRA_EXPORT Inflater {
public:
    // How much may be given to it at once, in bytes.
    static constexpr std::size_t kLargestPiece = std::size_t{1} << 30;

    // Whether there is more to unpack, the stream has ended, or nothing came of the call.
    enum class State : std::uint8_t { More, End, Failed };

    // What one call of inflate() has done.
    struct Step {
        State state;        // after End the inflater is of no more use
        std::size_t taken;  // bytes of the stream that are used up
        std::size_t made;   // bytes that were written
    };

    Inflater() noexcept = default;
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    virtual ~Inflater();

    // Goes on until `stream` is used up, `destination` is full or the stream ends. Failed: the
    // stream is damaged, memory is out, or there was nothing to do.
    virtual Step inflate(std::span<const std::uint8_t> stream,
                         std::span<std::uint8_t> destination) noexcept = 0;
};

class Compression;
extern template class VELTRA_EXPORT Installable<const Compression>;

// The platform's own is zlib, when the library was built with it; else nothing can be compressed.
// Thread: any; each inflater one thread at a time. Realtime-safe: no.
class VELTRA_EXPORT Compression : public Installable<const Compression> {
public:
    virtual ~Compression();

    // Room that is enough for `size` bytes, whatever they are.
    virtual std::size_t largestCompressedSize(std::size_t size) const noexcept = 0;

    // Writes one whole stream, compressed at the default level, and returns its length. Nothing
    // when it does not fit, when memory is out, or when nothing can be compressed.
    virtual std::optional<std::size_t> compress(
        std::span<const std::uint8_t> bytes,
        std::span<std::uint8_t> destination) const noexcept = 0;

    // Null when memory is out, or when nothing can be unpacked.
    virtual std::unique_ptr<Inflater> makeInflater() const noexcept = 0;
};

}  // namespace veltra
