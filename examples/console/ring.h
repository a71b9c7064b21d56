// SPDX-License-Identifier: MIT
// The bridge between the thread that reads files and the thread that plays them: a ring of planar
// float frames for exactly one writer and one reader.
//
// How it works. Both sides count frames from the beginning of time: m_written is changed by the
// writer only, m_read by the reader only. The invariant is
//     m_read <= m_written <= m_read + capacity,
// the frames in between are the reader's, all others the writer's. A count is published (release)
// after the frames were touched, and read by the other side (acquire) before it touches them, so
// no frame is ever in both hands. Nobody waits: who finds no room or no frames does something else.
// The counts are 64 bits wide and never wrap; the capacity is a power of two, so a place in the
// ring is a bit mask away from a count.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace veltra::console {

// The padding keeps what the writer changes and what the reader changes in cache lines of their
// own. NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
class Ring {
public:
    // `frames` is rounded up to a power of two.
    Ring(std::size_t channels, std::size_t frames)
        : m_capacity(std::bit_ceil(frames)), m_samples(channels * m_capacity) {}

    // Writer only. How many frames may be written in one piece; they begin at writePlace().
    std::size_t writable() const noexcept {
        const std::uint64_t written = m_written.load(std::memory_order_relaxed);  // own count
        const std::uint64_t read = m_read.load(std::memory_order_acquire);        // with consume()
        return std::min(m_capacity - static_cast<std::size_t>(written - read),
                        m_capacity - place(written));
    }
    float* writePlace(std::size_t channel) noexcept {
        return &m_samples[channel * m_capacity + place(m_written.load(std::memory_order_relaxed))];
    }
    void publish(std::size_t frames) noexcept {
        m_written.store(m_written.load(std::memory_order_relaxed) + frames,
                        std::memory_order_release);  // with readable()
    }

    // Writer only. All frames published since the beginning.
    std::uint64_t written() const noexcept { return m_written.load(std::memory_order_relaxed); }

    std::size_t capacity() const noexcept { return m_capacity; }

    // Reader only, except that anybody may ask readable() for a number to show. readPlace() holds
    // at most readableInOnePiece() frames; the rest follows after consume().
    std::size_t readable() const noexcept {
        const std::uint64_t read = m_read.load(std::memory_order_relaxed);           // own count
        return static_cast<std::size_t>(m_written.load(std::memory_order_acquire) -  // with publish
                                        read);
    }
    std::size_t readableInOnePiece() const noexcept {
        return std::min(readable(), m_capacity - place(m_read.load(std::memory_order_relaxed)));
    }
    const float* readPlace(std::size_t channel) const noexcept {
        return &m_samples[channel * m_capacity + place(m_read.load(std::memory_order_relaxed))];
    }
    void consume(std::size_t frames) noexcept {
        m_read.store(m_read.load(std::memory_order_relaxed) + frames,
                     std::memory_order_release);  // with writable()
    }

    // All frames consumed since the beginning. Thread: any, for a number to show.
    std::uint64_t consumed() const noexcept { return m_read.load(std::memory_order_relaxed); }

private:
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

    std::size_t place(std::uint64_t count) const noexcept {
        return static_cast<std::size_t>(count) & (m_capacity - 1);
    }

    const std::size_t m_capacity;                         // any thread
    std::vector<float> m_samples;                         // channel after channel
    alignas(64) std::atomic<std::uint64_t> m_written{0};  // writer changes, reader reads
    alignas(64) std::atomic<std::uint64_t> m_read{0};     // reader changes, writer reads
};

}  // namespace veltra::console
