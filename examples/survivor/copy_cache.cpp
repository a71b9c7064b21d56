// SPDX-License-Identifier: MIT
#include "copy_cache.h"

#include "veltra/memory/low_memory_notification_center.h"

#include <cmath>

namespace veltra::survivor {

namespace {

Recording transposed(const Recording& original, std::size_t key) noexcept {
    const double step = std::exp2(static_cast<double>(key) / double{CopyCache::kKeys});
    Recording copy;
    copy.channels = original.channels;
    copy.frames = static_cast<std::size_t>(static_cast<double>(original.frames) / step);
    LowMemoryNotificationCenter::CheckPoint(copy.bytes());
    copy.samples = takeBlock<float>(copy.channels * copy.frames);
    if (copy.samples == nullptr) return {};
    for (std::size_t channel = 0; channel < copy.channels; ++channel) {
        const float* from = original.channel(channel);
        float* to = copy.samples.get() + channel * copy.frames;
        for (std::size_t frame = 0; frame < copy.frames; ++frame) {
            const double place = static_cast<double>(frame) * step;
            const auto before = static_cast<std::size_t>(place);
            const std::size_t after = before + 1 < original.frames ? before + 1 : before;
            const auto share = static_cast<float>(place - static_cast<double>(before));
            to[frame] = from[before] + share * (from[after] - from[before]);
        }
    }
    return copy;
}

}  // namespace

const Recording* CopyCache::copy(const Recording& original, std::size_t index,
                                 std::size_t key) noexcept {
    Copy& copy = m_copies[index * kKeys + key];
    if (copy.recording.samples == nullptr) {
        copy.recording = transposed(original, key);
        if (copy.recording.samples == nullptr) return nullptr;
        m_bytes += copy.recording.bytes();
    }
    copy.lastUse = ++m_uses;
    return &copy.recording;
}

Dropped CopyCache::dropOlderHalf() noexcept {
    const std::size_t goal = m_bytes / 2;
    Dropped all;
    while (all.bytes < goal) {
        const Dropped one = drop(*oldest());
        all = {all.count + one.count, all.bytes + one.bytes};
    }
    return all;
}

Dropped CopyCache::dropAll() noexcept {
    Dropped all;
    for (Copy& copy : m_copies) {
        const Dropped one = drop(copy);
        all = {all.count + one.count, all.bytes + one.bytes};
    }
    return all;
}

Dropped CopyCache::drop(Copy& copy) noexcept {
    if (copy.recording.samples == nullptr) return {};
    const std::size_t bytes = copy.recording.bytes();
    copy.recording = {};
    m_bytes -= bytes;
    return {1, bytes};
}

CopyCache::Copy* CopyCache::oldest() noexcept {
    Copy* found = nullptr;
    for (Copy& copy : m_copies)
        if (copy.recording.samples != nullptr &&
            (found == nullptr || copy.lastUse < found->lastUse))
            found = &copy;
    return found;
}

}  // namespace veltra::survivor
