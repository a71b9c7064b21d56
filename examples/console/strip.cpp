// SPDX-License-Identifier: MIT
#include "strip.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

std::unique_ptr<Resampler> resamplerFor(const FileFormat& format, double outputRate) {
    const auto rate = static_cast<double>(format.rate);
    if (outputRate <= 0.0 || outputRate == rate) return nullptr;
    return Resampler::make(static_cast<std::size_t>(format.channels), rate, outputRate);
}

std::size_t rampFrames(double rate) {
    constexpr double kRampSeconds = 0.005;
    return std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(rate * kRampSeconds)));
}

}  // namespace

Strip::Strip(std::unique_ptr<AudioFile> file, double outputRate, std::size_t ringFrames)
    : m_file(std::move(file)),
      m_ring(static_cast<std::size_t>(format().channels), std::max(ringFrames, kChunkFrames)),
      m_rampFrames(rampFrames(outputRate > 0.0 ? outputRate : format().rate)),
      m_open(m_rampFrames),
      m_resampler(resamplerFor(format(), outputRate)),
      m_speed(m_resampler ? format().rate / outputRate : 1.0),
      m_fullScale(fullScaleMagnitude(format().bits)),
      m_loudest(static_cast<std::size_t>(format().channels), format().rate),
      m_places(static_cast<std::size_t>(format().channels)),
      m_chunkPlaces(m_places.size()),
      m_peaks(m_places.size()) {
    if (m_resampler) m_chunk.assign(m_places.size(), std::vector<float>(kChunkFrames));
}

bool Strip::feed() {
    if (m_inputEnded.load(std::memory_order_relaxed)) return false;  // own flag
    return m_resampler ? feedResampled() : feedDirectly();
}

bool Strip::isReadyFor(std::size_t frames) const noexcept {
    return m_inputEnded.load(std::memory_order_relaxed) || m_ring.readable() >= frames;
}

// Reads into m_places.
std::size_t Strip::readAndMeasure(std::size_t frames) {
    if (m_progress && !m_progress->goOn()) {
        m_stopped = true;
        m_fileEnded = true;
        return 0;
    }
    const std::size_t got = m_file->read(m_places.data(), frames);
    for (std::size_t done = 0; done < got;) {
        const std::size_t piece = std::min(got - done, m_loudest.framesLeft());
        for (std::size_t c = 0; c < m_places.size(); ++c) {
            const Measurement measured = measure(m_places[c] + done, piece, m_fullScale);
            m_measurement.add(measured);
            m_loudest.add(c, measured.sumOfSquares);
        }
        m_loudest.advance(piece);
        done += piece;
    }
    m_fileEnded = got < frames;
    if (m_fileEnded && m_progress) m_progress->goOn();  // the last value
    return got;
}

// The usual way: the frames are converted straight into the ring.
bool Strip::feedDirectly() {
    const std::size_t room = std::min(m_ring.writable(), kChunkFrames);
    if (room == 0) return false;
    for (std::size_t c = 0; c < m_places.size(); ++c)
        m_places[c] = m_ring.writePlace(c);
    m_ring.publish(readAndMeasure(room));
    if (m_fileEnded) m_inputEnded.store(true, std::memory_order_release);  // with mix()
    return true;
}

bool Strip::feedResampled() {
    const std::size_t room = m_ring.writable();
    if (room == 0) return false;
    if (m_chunkUsed == m_chunkFrames && !m_fileEnded) {
        for (std::size_t c = 0; c < m_places.size(); ++c)
            m_places[c] = m_chunk[c].data();
        m_chunkFrames = readAndMeasure(kChunkFrames);
        m_chunkUsed = 0;
    }

    for (std::size_t c = 0; c < m_places.size(); ++c) {
        m_chunkPlaces[c] = m_chunk[c].data() + m_chunkUsed;
        m_places[c] = m_ring.writePlace(c);
    }
    const Resampler::Progress progress = m_resampler->process(
        m_chunkPlaces.data(), m_chunkFrames - m_chunkUsed, m_places.data(), room, m_fileEnded);
    m_chunkUsed += progress.used;
    m_ring.publish(progress.made);
    const bool spent = m_chunkUsed == m_chunkFrames;
    if (m_fileEnded && spent && progress.made == 0) {
        m_inputEnded.store(true, std::memory_order_release);  // with mix()
    }
    return true;
}

void Strip::render(void* strip, std::uint32_t message, void* data) noexcept {
    if (message == kRenderMessage) static_cast<Strip*>(strip)->mix(*static_cast<Block*>(data));
}

void Strip::mix(const Block& block) noexcept {
    // The flag first: what was published before it was raised is then seen by readable().
    const bool ended = m_inputEnded.load(std::memory_order_acquire);  // with feed…()
    const std::size_t target = isMuted() ? 0 : m_rampFrames;
    if (m_ring.consumed() == 0) m_open = target;  // nothing was heard that could click
    std::size_t done = 0;
    while (done < block.frames) {
        std::size_t piece = std::min(m_ring.readableInOnePiece(), block.frames - done);
        if (piece == 0) break;
        if (block.outputCount > 0) piece = mixPiece(block, done, piece, target);
        m_ring.consume(piece);
        done += piece;
    }
    if (done == block.frames) return;

    if (ended) {
        m_drained.store(true, std::memory_order_release);  // with isDrained()
    } else {
        m_missedFrames.fetch_add(block.frames - done, std::memory_order_relaxed);
        m_underruns.fetch_add(1, std::memory_order_relaxed);
    }
}

// Mixes the next `frames` of the ring into the block from frame `done` on, or as many of them as
// the gain takes to its target; answers how many. One channel goes to all outputs; otherwise
// channel c goes to output c, and those beyond the last output begin again at the first.
std::size_t Strip::mixPiece(const Block& block, std::size_t done, std::size_t frames,
                            std::size_t target) noexcept {
    const bool moves = m_open != target;
    if (!moves && target == 0) return frames;  // silence
    const bool rises = m_open < target;
    if (moves) frames = std::min(frames, rises ? target - m_open : m_open - target);
    const Ramp ramp{static_cast<float>(m_open), rises ? 1.0F : -1.0F,
                    static_cast<float>(m_rampFrames)};
    const std::size_t channels = m_places.size();
    for (std::size_t c = 0; c < channels; ++c) {
        const float* source = m_ring.readPlace(c);
        const std::size_t last = channels == 1 ? block.outputCount : c % block.outputCount + 1;
        float peak = 0.0F;
        for (std::size_t out = channels == 1 ? 0 : last - 1; out < last; ++out) {
            float* mix = block.outputs[out] + done;
            peak = std::max(
                peak, moves ? addToMix(mix, source, frames, ramp) : addToMix(mix, source, frames));
        }
        m_peaks[c].raise(peak);
    }
    if (moves) m_open = rises ? m_open + frames : m_open - frames;
    return frames;
}

std::vector<float> Strip::takePeaks() {
    std::vector<float> peaks(m_peaks.size());
    std::transform(m_peaks.begin(), m_peaks.end(), peaks.begin(),
                   [](PeakHold& peak) { return peak.take(); });
    return peaks;
}

std::uint64_t Strip::framesPlayed() const noexcept {
    const double frames = static_cast<double>(m_ring.consumed()) * m_speed;
    const auto whole = static_cast<std::uint64_t>(frames);
    return framesTotal() == 0 ? whole : std::min(whole, framesTotal());
}

}  // namespace veltra::console
