// SPDX-License-Identifier: MIT
// Plain sample data: the file's own bytes go through the framework's sample conversion.
#include "frame_reader.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/sample_conversion.h"

#include <algorithm>
#include <vector>

namespace veltra::console {

namespace {

// Bytes are fetched in larger pieces than they are converted: few system calls, and floats that
// stay in a near cache until they are measured.
constexpr std::size_t kRawFrames = 16384;

class PcmReader final : public FrameReader {
public:
    PcmReader(SoundHandle file, const FileFormat& format)
        : m_file(std::move(file)),
          m_layout(format.layout),
          m_channels(static_cast<std::size_t>(format.channels)),
          m_convert(GetConvertNToFloat(m_layout.converterFormat, m_layout.swapped)),
          m_frameBytes(m_channels * m_layout.bytes),
          m_places(m_channels),
          m_raw(kRawFrames * m_frameBytes) {
        if (!isPlanarAtOnce()) m_interleaved.resize(kRawFrames * m_channels);
    }

    std::size_t read(float* const* channels, std::size_t frames) override {
        std::copy_n(channels, m_channels, m_places.begin());
        std::size_t done = 0;
        while (done < frames) {
            if (m_next == m_end) refill();
            const std::size_t got = std::min(frames - done, m_end - m_next);
            if (got == 0) break;
            convert(m_raw.data() + m_next * m_frameBytes, got);
            for (float*& place : m_places)
                place += got;
            m_next += got;
            done += got;
        }
        return done;
    }

    bool seek(std::uint64_t frame) override {
        m_next = m_end = 0;
        const auto place = static_cast<sf_count_t>(frame);
        return sf_seek(m_file.get(), place, SEEK_SET) == place;
    }

private:
    // The converters split a two-channel stream while they convert it, except for 32-bit integers
    // and 64-bit floats, which have no such form.
    bool isPlanarAtOnce() const noexcept {
        const bool splits =
            m_layout.converterFormat != kSampleInt32 && m_layout.converterFormat != kSampleFloat64;
        return m_channels == 1 || (m_channels == 2 && splits);
    }

    void refill() {
        const sf_count_t bytes =
            sf_read_raw(m_file.get(), m_raw.data(), static_cast<sf_count_t>(m_raw.size()));
        m_next = 0;
        m_end = bytes > 0 ? static_cast<std::size_t>(bytes) / m_frameBytes : 0;
        if (!m_layout.foreignFloat) return;
        // Float converters take the machine's own floats: the bytes are turned round first.
        const auto count = static_cast<std::uint32_t>(m_end * m_channels);
        if (m_layout.bytes == 8) {
            PSwapLongLong(m_raw.data(), count);
        } else {
            PSwapLong(m_raw.data(), count);
        }
    }

    // To m_places.
    void convert(const unsigned char* raw, std::size_t frames) noexcept {
        const std::size_t samples = frames * m_channels;
        if (isPlanarAtOnce()) {
            m_convert(m_places[0], raw, frames, m_channels == 2 ? m_places[1] : nullptr);
        } else {
            m_convert(m_interleaved.data(), raw, samples, nullptr);
            deinterleave(m_places.data(), m_interleaved.data(), m_channels, frames);
        }
    }

    SoundHandle m_file;
    SampleLayout m_layout;
    std::size_t m_channels;
    ConvertNToFloatProc m_convert;
    std::size_t m_frameBytes;
    std::vector<float*> m_places;  // where the next frames go, a channel each
    std::vector<unsigned char> m_raw;
    std::size_t m_next = 0;  // frames of m_raw: what was converted,
    std::size_t m_end = 0;   // and what was read
    std::vector<float> m_interleaved;
};

}  // namespace

std::unique_ptr<FrameReader> makePcmReader(SoundHandle file, const FileFormat& format) {
    return std::make_unique<PcmReader>(std::move(file), format);
}

}  // namespace veltra::console
