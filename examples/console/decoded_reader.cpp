// SPDX-License-Identifier: MIT
// Compressed data: libsndfile decodes, we only sort the channels.
#include "frame_reader.h"

#include <vector>

#include <dlfcn.h>

// libmpg123 writes what it thinks of a damaged file to standard error unless it is told not to, and
// libsndfile, which loads it, has no word for that. So its decoders are made here, quiet from the
// beginning. Nothing calls this where libsndfile does without that library.
extern "C" {
struct mpg123_handle_struct;
[[gnu::visibility("default")]] mpg123_handle_struct* mpg123_new(const char* decoder, int* error);
}

mpg123_handle_struct* mpg123_new(const char* decoder, int* error) {
    constexpr int kAddFlags = 2;   // MPG123_ADD_FLAGS
    constexpr long kQuiet = 0x20;  // MPG123_QUIET
    using New = mpg123_handle_struct*(const char*, int*);
    using SetParameter = int(mpg123_handle_struct*, int, long, double);
    static const auto create = reinterpret_cast<New*>(::dlsym(RTLD_NEXT, "mpg123_new"));
    static const auto set = reinterpret_cast<SetParameter*>(::dlsym(RTLD_NEXT, "mpg123_param"));
    mpg123_handle_struct* const decoding = create != nullptr ? create(decoder, error) : nullptr;
    if (decoding != nullptr && set != nullptr) set(decoding, kAddFlags, kQuiet, 0.0);
    return decoding;
}

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
