// SPDX-License-Identifier: MIT
// How many lines or records were lost since it was last told. A forked child starts from 0: what
// its parent has lost is the parent's to tell.
#pragma once

#include "veltra/platform/fork_generation.h"

#include <atomic>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace veltra {

// Thread: any. Realtime-safe: yes.
class LossCount {
public:
    // Relaxed throughout: the numbers publish nothing.
    void add(std::size_t count) noexcept {
        forgetInheritance();
        m_count.fetch_add(count, std::memory_order_relaxed);
    }

    // Who takes it tells it, or adds it again.
    std::size_t take() noexcept {
        forgetInheritance();
        return m_count.load(std::memory_order_relaxed) != 0
                   ? m_count.exchange(0, std::memory_order_relaxed)
                   : 0;
    }

private:
    void forgetInheritance() noexcept {
        const std::uint32_t generation = forkGeneration();
        if (m_generation.load(std::memory_order_relaxed) == generation) return;
        if (m_generation.exchange(generation, std::memory_order_relaxed) != generation)
            m_count.store(0, std::memory_order_relaxed);
    }

    std::atomic<std::size_t> m_count{0};
    std::atomic<std::uint32_t> m_generation{forkGeneration()};
};

// "<words><count>", on the stack; nothing for 0.
class LossText {
public:
    LossText(std::string_view words, std::size_t count) noexcept {
        if (count == 0) return;
        m_size = words.copy(m_text, sizeof m_text - kMostDigits);
        m_size = static_cast<std::size_t>(
            std::to_chars(m_text + m_size, m_text + sizeof m_text, count).ptr - m_text);
    }

    std::string_view view() const noexcept { return {m_text, m_size}; }

private:
    static constexpr std::size_t kMostDigits = 20;

    char m_text[64];
    std::size_t m_size = 0;
};

}  // namespace veltra
