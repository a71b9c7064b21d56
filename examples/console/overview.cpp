// SPDX-License-Identifier: MIT
#include "overview.h"

#include "file_progress.h"
#include "measurement.h"

#include <algorithm>
#include <span>

namespace veltra::console {

namespace {

// Between half of it and all of it are in use, for however long the file turns out to be.
constexpr std::size_t kMostColumns = 1024;

class ColumnMaker {
public:
    void push(std::span<const float> samples) {
        for (const float sample : samples) {
            m_column.low = std::min(m_column.low, sample);
            m_column.high = std::max(m_column.high, sample);
            if (++m_filled == m_columnFrames) endColumn();
        }
    }

    // What there is so far, with a column that has only begun.
    void copyTo(Overview& overview) const {
        overview.columns = m_columns;
        if (m_filled > 0) overview.columns.push_back(m_column);
        overview.columnFrames = m_columnFrames;
    }

private:
    void endColumn() {
        m_columns.push_back(m_column);
        m_column = {};
        m_filled = 0;
        if (m_columns.size() < kMostColumns) return;
        for (std::size_t i = 0; i < kMostColumns / 2; ++i) {
            const auto& left = m_columns[2 * i];
            const auto& right = m_columns[2 * i + 1];
            m_columns[i] = {std::min(left.low, right.low), std::max(left.high, right.high)};
        }
        m_columns.resize(kMostColumns / 2);
        m_columnFrames *= 2;
    }

    std::vector<Overview::Column> m_columns;
    Overview::Column m_column;
    std::uint64_t m_columnFrames = 64;
    std::uint64_t m_filled = 0;
};

}  // namespace

std::size_t Overview::wholeColumns() const noexcept {
    const auto whole = static_cast<std::size_t>((frames + columnFrames - 1) / columnFrames);
    return isComplete ? columns.size() : std::max(whole, columns.size());
}

std::shared_ptr<const Overview> readOverview(AudioFile& file, const std::atomic<bool>& stop,
                                             const GrowingOverview& growing) {
    constexpr std::uint64_t kSteps = 100;
    const std::uint64_t announced = file.format().lengthUnknown ? 0 : file.format().frames;
    const std::uint64_t step = std::max<std::uint64_t>(announced / kSteps, 16 * kChunkFrames);
    std::uint64_t shown = 0;
    const auto channels = static_cast<std::size_t>(file.format().channels);
    std::vector<std::vector<float>> samples(channels, std::vector<float>(kChunkFrames));
    std::vector<float*> places;
    places.reserve(channels);
    for (auto& channel : samples)
        places.push_back(channel.data());

    ColumnMaker columns;
    OnsetDetector detector(file.format().rate);
    FileProgress progress(file);
    for (std::size_t got = kChunkFrames; got == kChunkFrames;) {
        // Both are only a wish to end early.
        if (!progress.goOn() || stop.load(std::memory_order_relaxed)) return nullptr;
        got = file.read(places.data(), kChunkFrames);
        for (std::vector<float>& channel : samples)
            measure(channel.data(), got, 1.0F);  // silences what is not finite
        for (std::size_t i = 0; i < got; ++i) {
            float sum = 0.0F;
            for (const auto& channel : samples)
                sum += channel[i];
            samples[0][i] = sum / static_cast<float>(channels);
        }
        const auto mean = std::span(samples[0]).first(got);
        columns.push(mean);
        detector.push(mean);
        if (!growing || file.framesRead() - shown < step) continue;
        shown = file.framesRead();
        auto soFar = std::make_shared<Overview>();
        columns.copyTo(*soFar);
        soFar->frames = announced;
        soFar->rate = file.format().rate;
        growing(std::move(soFar));
    }
    progress.goOn();  // the last value
    auto overview = std::make_shared<Overview>();
    columns.copyTo(*overview);
    overview->isComplete = true;
    overview->frames = file.framesRead();
    overview->rate = file.format().rate;
    overview->onsets = detector.onsets();
    return overview;
}

}  // namespace veltra::console
