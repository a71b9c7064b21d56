// Plain sample data: the file's own bytes go through the framework's sample conversion.
#include "frame_reader.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/sample_conversion.h"

#include <vector>

namespace veltra::console {

namespace {

class PcmReader final : public FrameReader {
public:
    PcmReader(SoundHandle file, const FileFormat& format)
        : m_file(std::move(file)),
          m_layout(format.layout),
          m_channels(static_cast<std::size_t>(format.channels)),
          m_convert(GetConvertNToFloat(m_layout.converterFormat, m_layout.swapped)),
          m_raw(kChunkFrames * m_channels * m_layout.bytes) {
        if (!isPlanarAtOnce()) m_interleaved.resize(kChunkFrames * m_channels);
    }

    std::size_t read(float* const* channels, std::size_t frames) override {
        const std::size_t frameBytes = m_channels * m_layout.bytes;
        const sf_count_t bytes =
            sf_read_raw(m_file.get(), m_raw.data(), static_cast<sf_count_t>(frames * frameBytes));
        const std::size_t got = bytes > 0 ? static_cast<std::size_t>(bytes) / frameBytes : 0;
        convert(channels, got);
        return got;
    }

private:
    // The converters split a two-channel stream while they convert it, except for 32-bit integers
    // and 64-bit floats, which have no such form.
    bool isPlanarAtOnce() const noexcept {
        const bool splits = m_layout.converterFormat != 4 && m_layout.converterFormat != -8;
        return m_channels == 1 || (m_channels == 2 && splits);
    }

    void convert(float* const* channels, std::size_t frames) noexcept {
        const std::size_t samples = frames * m_channels;
        if (m_layout.foreignFloat) {
            // Float converters take the machine's own floats: the bytes are turned round first.
            const auto count = static_cast<std::uint32_t>(samples);
            if (m_layout.bytes == 8) {
                PSwapLongLong(m_raw.data(), count);
            } else {
                PSwapLong(m_raw.data(), count);
            }
        }
        if (isPlanarAtOnce()) {
            m_convert(channels[0], m_raw.data(), frames, m_channels == 2 ? channels[1] : nullptr);
        } else {
            m_convert(m_interleaved.data(), m_raw.data(), samples, nullptr);
            deinterleave(channels, m_interleaved.data(), m_channels, frames);
        }
    }

    SoundHandle m_file;
    SampleLayout m_layout;
    std::size_t m_channels;
    ConvertNToFloatProc m_convert;
    std::vector<unsigned char> m_raw;
    std::vector<float> m_interleaved;
};

}  // namespace

std::unique_ptr<FrameReader> makePcmReader(SoundHandle file, const FileFormat& format) {
    return std::make_unique<PcmReader>(std::move(file), format);
}

}  // namespace veltra::console
