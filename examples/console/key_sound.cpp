// SPDX-License-Identifier: MIT
#include "key_sound.h"

#include "fold.h"
#include "glide.h"
#include "measurement.h"
#include "mixing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veltra::console {

namespace {

using Channels = std::vector<std::vector<float>>;

constexpr std::size_t kMostLevels = 8;
constexpr std::size_t kShortest = 64;  // frames of a level that is halved once more
constexpr int kReach = 31;             // of the filter, to either side

// Lets through the lower half of what the rate can hold; every other weight but the middle one is
// 0.
std::array<float, kReach + 1> halfBand() {
    std::array<double, kReach + 1> weights{};
    double sum = 0.0;
    for (int i = 0; i <= kReach; ++i) {
        const double angle = std::numbers::pi * i / (kReach + 1);
        const double window = 0.42 + 0.5 * std::cos(angle) + 0.08 * std::cos(2.0 * angle);
        const double x = std::numbers::pi * i / 2.0;
        weights[static_cast<std::size_t>(i)] = window * (i == 0 ? 1.0 : std::sin(x) / x);
        sum += weights[static_cast<std::size_t>(i)] * (i == 0 ? 1.0 : 2.0);
    }
    std::array<float, kReach + 1> result{};
    std::transform(weights.begin(), weights.end(), result.begin(),
                   [sum](double weight) { return static_cast<float>(weight / sum); });
    return result;
}

Channels halved(const Channels& channels) {
    static const auto weights = halfBand();
    Channels result;
    for (const std::vector<float>& source : channels) {
        const auto count = static_cast<std::ptrdiff_t>(source.size());
        std::vector<float>& half = result.emplace_back();
        half.reserve((source.size() + 1) / 2);
        const auto at = [&](std::ptrdiff_t place) {
            return place >= 0 && place < count ? source[static_cast<std::size_t>(place)] : 0.0F;
        };
        for (std::ptrdiff_t place = 0; place < count; place += 2) {
            float sum = weights[0] * at(place);
            for (int i = 1; i <= kReach; i += 2)
                sum += weights[static_cast<std::size_t>(i)] * (at(place - i) + at(place + i));
            half.push_back(sum);
        }
    }
    return result;
}

void fadeOut(Channels& channels, double rate) {
    for (std::vector<float>& samples : channels) {
        const std::size_t count = std::min(samples.size(), Glide::framesAt(rate));
        float* const tail = samples.data() + samples.size() - count;
        scale(tail, tail, count, Ramp{1.0F, -1.0F, 0.0F, static_cast<float>(count)});
    }
}

KeySound::Level levelOf(const Channels& channels) {
    KeySound::Level level;
    level.frames = channels.front().size();
    for (const std::vector<float>& source : channels) {
        std::vector<float>& padded = level.channels.emplace_back(
            KeySound::Level::kBefore + level.frames + KeySound::Level::kBehind);
        std::copy(source.begin(), source.end(), padded.begin() + KeySound::Level::kBefore);
    }
    return level;
}

// At most kMostFrames frames of two outputs, or of one channel; nothing when it was stopped.
Channels folded(AudioFile& file, const std::atomic<bool>& stop) {
    const auto count = static_cast<std::size_t>(file.format().channels);
    std::vector<Weights> weights;
    for (std::size_t c = 0; c < count; ++c)
        weights.push_back(foldWeights(file.format().plan, c, count));
    Channels chunk(count, std::vector<float>(kChunkFrames));
    std::vector<float*> places;
    for (std::vector<float>& channel : chunk)
        places.push_back(channel.data());
    Channels result(count == 1 ? 1 : 2);
    for (std::size_t done = 0, got = kChunkFrames; got == kChunkFrames;) {
        if (stop.load(std::memory_order_relaxed)) return {};
        got = file.read(places.data(), kChunkFrames);
        for (float* const samples : places)
            measure(samples, got, 1.0F);  // silences what is not finite
        const std::size_t taken = std::min(got, KeySound::kMostFrames - done);
        for (std::vector<float>& channel : result)
            channel.resize(done + taken);
        for (std::size_t c = 0; c < count; ++c) {
            addToMix(result.front().data() + done, places[c], taken, weights[c].left);
            if (count > 1)
                addToMix(result.back().data() + done, places[c], taken, weights[c].right);
        }
        done += taken;
        if (done == KeySound::kMostFrames) break;
    }
    return result;
}

}  // namespace

std::shared_ptr<const KeySound> KeySound::read(AudioFile& file, const std::atomic<bool>& stop) {
    Channels channels = folded(file, stop);
    if (channels.empty() || channels.front().empty()) return nullptr;
    std::shared_ptr<KeySound> sound(new KeySound);
    sound->m_rate = file.format().rate;
    fadeOut(channels, sound->m_rate);
    sound->m_levels.push_back(levelOf(channels));
    while (sound->m_levels.size() < kMostLevels && channels.front().size() >= kShortest) {
        if (stop.load(std::memory_order_relaxed)) return nullptr;
        channels = halved(channels);
        sound->m_levels.push_back(levelOf(channels));
    }
    return sound;
}

}  // namespace veltra::console
