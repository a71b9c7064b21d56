#include "strip.h"

#include "mixing.h"

#include <algorithm>

namespace veltra::console {

namespace {

std::unique_ptr<Resampler> resamplerFor(const FileFormat& format, double outputRate) {
    const auto rate = static_cast<double>(format.rate);
    if (outputRate <= 0.0 || outputRate == rate) return nullptr;
    return Resampler::make(static_cast<std::size_t>(format.channels), rate, outputRate);
}

}  // namespace

Strip::Strip(std::unique_ptr<AudioFile> file, double outputRate, std::size_t ringFrames)
    : m_file(std::move(file)),
      m_ring(static_cast<std::size_t>(format().channels), std::max(ringFrames, kChunkFrames)),
      m_resampler(resamplerFor(format(), outputRate)),
      m_fullScale(fullScaleMagnitude(format().bits)),
      m_places(static_cast<std::size_t>(format().channels)),
      m_chunkPlaces(m_places.size()) {
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
    const std::size_t got = m_file->read(m_places.data(), frames);
    for (float* samples : m_places)
        m_measurement.add(measure(samples, got, m_fullScale));
    m_fileEnded = got < frames;
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

// One channel goes to all outputs; otherwise channel c goes to output c, and those beyond the last
// output begin again at the first.
void Strip::mix(const Block& block) noexcept {
    // The flag first: what was published before it was raised is then seen by readable().
    const bool ended = m_inputEnded.load(std::memory_order_acquire);  // with feed…()
    const std::size_t channels = m_places.size();
    std::size_t done = 0;
    float peak = m_peak.load(std::memory_order_relaxed);
    while (done < block.frames) {
        const std::size_t piece = std::min(m_ring.readableInOnePiece(), block.frames - done);
        if (piece == 0) break;
        for (std::size_t c = 0; c < channels; ++c) {
            const float* source = m_ring.readPlace(c);
            const std::size_t last = channels == 1 ? block.outputCount : c % block.outputCount + 1;
            for (std::size_t out = channels == 1 ? 0 : last - 1; out < last; ++out) {
                peak = std::max(peak, addToMix(block.outputs[out] + done, source, piece));
            }
        }
        m_ring.consume(piece);
        done += piece;
    }
    m_peak.store(peak, std::memory_order_relaxed);
    if (done == block.frames) return;

    if (ended) {
        m_drained.store(true, std::memory_order_release);  // with isDrained()
    } else {
        m_missedFrames.fetch_add(block.frames - done, std::memory_order_relaxed);
        m_underruns.fetch_add(1, std::memory_order_relaxed);
    }
}

}  // namespace veltra::console
