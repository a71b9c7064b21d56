// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_groups.h"

#include <algorithm>
#include <limits>

namespace veltra {

namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

std::int64_t sum(std::int64_t left, std::int64_t right) noexcept {
    if (right > 0 && left > kMost - right) return kMost;
    if (right < 0 && left < kLeast - right) return kLeast;
    return left + right;
}

std::int64_t product(std::int64_t left, std::int64_t factor) noexcept {  // factor above 0
    if (left > kMost / factor) return kMost;
    if (left < kLeast / factor) return kLeast;
    return left * factor;
}

std::int64_t sizeOf(const NumberGroup& group) noexcept {
    return std::max(group.size, 1);
}

}  // namespace

std::vector<std::int32_t> NumberGroups::split(std::int64_t number) const {
    std::vector<std::int32_t> values(m_groups.size());
    for (std::size_t i = m_groups.size(); i-- > 0;) {
        const NumberGroup& group = m_groups[i];
        std::int64_t value = number;
        if (i > 0) {
            const std::int64_t size = sizeOf(group);
            value = number % size;
            number /= size;
            if (value < 0) {
                value += size;
                --number;
            }
        }
        using Limits = std::numeric_limits<std::int32_t>;
        values[i] = static_cast<std::int32_t>(
            std::clamp<std::int64_t>(sum(value, group.first), Limits::min(), Limits::max()));
    }
    return values;
}

std::int64_t NumberGroups::join(std::span<const std::int32_t> values) const noexcept {
    std::int64_t number = 0;
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        if (i > 0) number = product(number, sizeOf(m_groups[i]));
        if (i < values.size()) number = sum(number, std::int64_t{values[i]} - m_groups[i].first);
    }
    return number;
}

}  // namespace veltra
