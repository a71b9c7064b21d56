// SPDX-License-Identifier: MIT
// Compressed data: libsndfile decodes, we only sort the channels.
#include "frame_reader.h"

#include <vector>

namespace veltra::console {

namespace {

class DecodedReader final : public FrameReader {
public:
    DecodedReader(SoundHandle file, const FileFormat& format)
        : m_file(std::move(file)),
          m_channels(static_cast<std::size_t>(format.channels)),
          m_interleaved(kChunkFrames * m_channels) {}

    std::size_t read(float* const* channels, std::size_t frames) override {
        const sf_count_t answer =
            sf_readf_float(m_file.get(), m_interleaved.data(), static_cast<sf_count_t>(frames));
        const std::size_t got = answer > 0 ? static_cast<std::size_t>(answer) : 0;
        deinterleave(channels, m_interleaved.data(), m_channels, got);
        return got;
    }

    bool seek(std::uint64_t frame) override {
        const auto place = static_cast<sf_count_t>(frame);
        return sf_seek(m_file.get(), place, SEEK_SET) == place;
    }

private:
    SoundHandle m_file;
    std::size_t m_channels;
    std::vector<float> m_interleaved;
};

}  // namespace

std::unique_ptr<FrameReader> makeDecodedReader(SoundHandle file, const FileFormat& format) {
    return std::make_unique<DecodedReader>(std::move(file), format);
}

void deinterleave(float* const* channels, const float* interleaved, std::size_t channelCount,
                  std::size_t frames) noexcept {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        float* destination = channels[channel];
        const float* source = interleaved + channel;
        for (std::size_t frame = 0; frame < frames; ++frame) {
            destination[frame] = source[frame * channelCount];
        }
    }
}

}  // namespace veltra::console
