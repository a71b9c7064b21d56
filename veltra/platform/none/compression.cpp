// SPDX-License-Identifier: MIT
#include "veltra/base/immortal.h"
#include "veltra/platform/port.h"

namespace veltra {

namespace {

class NoCompression final : public Compression {
public:
    std::size_t largestCompressedSize(std::size_t size) const noexcept override { return size; }
    std::optional<std::size_t> compress(std::span<const std::uint8_t>,
                                        std::span<std::uint8_t>) const noexcept override {
        return std::nullopt;
    }
    std::unique_ptr<Inflater> makeInflater() const noexcept override { return nullptr; }
};

}  // namespace

const Compression& platformCompression() noexcept {
    static const Immortal<NoCompression> compression;
    return *compression;
}

}  // namespace veltra
