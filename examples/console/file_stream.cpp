// SPDX-License-Identifier: MIT
#include "file_stream.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace veltra::console {

namespace {

// Frames of the file on either side of a place that the resampler looks at, with a margin.
constexpr double kFilterFrames = 64.0;

std::unique_ptr<Resampler> resamplerFor(const FileFormat& format, double outputRate) {
    const auto rate = static_cast<double>(format.rate);
    if (outputRate <= 0.0 || outputRate == rate) return nullptr;
    return Resampler::make(static_cast<std::size_t>(format.channels), rate, outputRate);
}

}  // namespace

FileStream::FileStream(std::unique_ptr<AudioFile> file, double outputRate)
    : m_file(std::move(file)),
      m_outputRate(std::llround(outputRate)),
      m_resampler(resamplerFor(m_file->format(), outputRate)),
      m_speed(m_resampler ? m_file->format().rate / outputRate : 1.0),
      m_fullScale(m_file->format().fullScale),
      m_loudest(static_cast<std::size_t>(m_file->format().channels), m_file->format().rate) {
    if (!m_resampler) return;
    const auto channels = static_cast<std::size_t>(m_file->format().channels);
    m_chunk.assign(channels, std::vector<float>(kChunkFrames));
    for (std::vector<float>& channel : m_chunk)
        m_chunkPlaces.push_back(channel.data());
    m_chunkRest.resize(channels);
}

// A resampler has to start where a frame of the file and one of the output fall together, and early
// enough to have all of the past that it looks at.
void FileStream::locate(std::int64_t place) {
    if (m_stopped) return;
    std::int64_t frame = std::max<std::int64_t>(place, 0);
    m_unwanted = 0;
    if (m_resampler) {
        const std::int64_t fileRate = m_file->format().rate;
        const std::int64_t common = std::gcd(fileRate, m_outputRate);
        const std::int64_t period = m_outputRate / common;  // frames of output
        const auto past =
            static_cast<std::int64_t>(std::ceil(kFilterFrames * std::max(1.0, 1.0 / m_speed)));
        const std::int64_t start = std::max<std::int64_t>(frame - past, 0) / period * period;
        m_unwanted = frame - start;
        frame = start / period * (fileRate / common);
        m_resampler->reset();
        m_chunkFrames = m_chunkUsed = 0;
    }
    m_fileEnded = !m_file->seek(static_cast<std::uint64_t>(frame));
    m_ended = m_fileEnded;
}

std::size_t FileStream::make(float* const* channels, std::size_t frames) {
    if (m_ended) return 0;
    if (m_resampler) return resample(channels, frames);
    const std::size_t got = read(channels, frames);
    m_ended = m_fileEnded;
    return got;
}

std::size_t FileStream::read(float* const* channels, std::size_t frames) {
    if (m_progress && !m_progress->goOn()) {
        m_stopped = true;
        m_fileEnded = true;
        return 0;
    }
    const std::uint64_t place = m_file->position();
    const std::size_t got = m_file->read(channels, frames);
    measureChunk(channels, place, got);
    m_fileEnded = got < frames;
    m_sawEnd = m_sawEnd || (m_fileEnded && m_file->position() == m_measuredEnd);
    if (m_fileEnded && m_progress) m_progress->goOn();  // the last value
    return got;
}

void FileStream::measureChunk(float* const* channels, std::uint64_t place, std::size_t frames) {
    const auto count = static_cast<std::size_t>(m_file->format().channels);
    if (m_measuredEnd == m_measuredBegin) {
        m_measuredBegin = m_measuredEnd = place;
        m_sawEnd = false;
    }
    const bool isNext = place <= m_measuredEnd && place + frames > m_measuredEnd;
    const std::size_t known = isNext ? static_cast<std::size_t>(m_measuredEnd - place) : frames;
    // All the same: who plays them wants no samples that are not finite.
    for (std::size_t c = 0; c < count && known > 0; ++c)
        measure(channels[c], known, m_fullScale);
    for (std::size_t done = known; done < frames;) {
        const std::size_t piece = std::min(frames - done, m_loudest.framesLeft());
        for (std::size_t c = 0; c < count; ++c) {
            const Measurement measured = measure(channels[c] + done, piece, m_fullScale);
            m_measurement.add(measured);
            m_loudest.add(c, measured.sumOfSquares);
        }
        m_loudest.advance(piece);
        done += piece;
        m_measuredEnd += piece;
    }
}

std::size_t FileStream::resample(float* const* channels, std::size_t frames) {
    if (m_chunkUsed == m_chunkFrames && !m_fileEnded) {
        m_chunkFrames = read(m_chunkPlaces.data(), kChunkFrames);
        m_chunkUsed = 0;
    }
    for (std::size_t c = 0; c < m_chunk.size(); ++c)
        m_chunkRest[c] = m_chunk[c].data() + m_chunkUsed;
    const bool drops = m_unwanted > 0;
    if (drops) frames = std::min(frames, static_cast<std::size_t>(m_unwanted));
    const Resampler::Progress progress = m_resampler->process(
        m_chunkRest.data(), m_chunkFrames - m_chunkUsed, channels, frames, m_fileEnded);
    m_chunkUsed += progress.used;
    m_ended = m_fileEnded && m_chunkUsed == m_chunkFrames && progress.made == 0;
    if (!drops) return progress.made;
    m_unwanted -= static_cast<std::int64_t>(progress.made);
    return 0;
}

}  // namespace veltra::console
