// SPDX-License-Identifier: MIT
// Vectors of floats for the loops over samples, written as such because the compiler may not
// reorder sums of floats by itself. Every processor's compiler knows how to do them; results are
// the same everywhere.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace veltra::console {

// Samples are taken in groups of four vectors of four lanes, so that four additions are always on
// their way.
inline constexpr std::size_t kWidth = 4;
inline constexpr std::size_t kVectors = 4;
inline constexpr std::size_t kLanes = kWidth * kVectors;
using Floats [[gnu::vector_size(kWidth * sizeof(float))]] = float;

inline Floats load(const float* samples) noexcept {
    Floats values;
    std::memcpy(&values, samples, sizeof values);
    return values;
}

inline void store(float* samples, Floats values) noexcept {
    std::memcpy(samples, &values, sizeof values);
}

// The range of the samples that were shown to it, 0 included. A NaN leaves it as it is.
class Range {
public:
    void show(std::size_t vector, Floats values) noexcept {
        m_highest[vector] = values > m_highest[vector] ? values : m_highest[vector];
        m_lowest[vector] = values < m_lowest[vector] ? values : m_lowest[vector];
    }

    float largestMagnitude() const noexcept {
        float result = 0.0F;
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            result = std::max(result, m_highest[lane / kWidth][lane % kWidth]);
            result = std::max(result, -m_lowest[lane / kWidth][lane % kWidth]);
        }
        return result;
    }

private:
    std::array<Floats, kVectors> m_highest{};
    std::array<Floats, kVectors> m_lowest{};
};

}  // namespace veltra::console
