// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_meter_scale.h"

#include "veltra/base/number_text.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace veltra {

namespace {

constexpr float kLeastFromEnd = 8.0F;  // points, of a label

struct Row {
    double decibels;
    std::int32_t rank;  // among the labels, the first to be placed first
    bool isMajor;
};

constexpr std::array<Row, 10> kRows{{
    {0.0, 0, true},
    {-3.0, 8, true},
    {-6.0, 5, false},
    {-12.0, 1, true},
    {-18.0, 6, false},
    {-24.0, 2, false},
    {-30.0, 7, false},
    {-40.0, 3, false},
    {-50.0, 9, false},
    {-60.0, 4, false},
}};

}  // namespace

std::int32_t levelMeterRowsBelow(double decibels, std::int32_t rows,
                                 LevelMeterLevels levels) noexcept {
    constexpr double kRounding = 1e-4;  // of a row: positions are floats
    if (rows < 1) return 0;
    const auto position = static_cast<double>(meterPositionOfDecibels(decibels, levels));
    return static_cast<std::int32_t>(std::floor(position * rows + 0.5 + kRounding));
}

LevelMeterScale::LevelMeterScale(float length, std::int32_t rows, float scale,
                                 LevelMeterLevels levels, float distance) noexcept
    : m_length(length > 0.0F ? length : 0.0F),
      m_rows(std::max(rows, 0)),
      m_scale(scale > 0.0F ? scale : 1.0F),
      m_levels(levels) {
    for (std::size_t i = 0; i < kRows.size(); ++i)
        m_ticks[i] = {kRows[i].decibels, edgeOf(kRows[i].decibels), kRows[i].isMajor, false};
    for (std::int32_t rank = 0; rank < static_cast<std::int32_t>(kRows.size()); ++rank) {
        const auto row = std::find_if(kRows.begin(), kRows.end(),
                                      [rank](const Row& each) { return each.rank == rank; });
        LevelMeterTick& tick = m_ticks[static_cast<std::size_t>(row - kRows.begin())];
        const bool isFree =
            std::none_of(m_ticks.begin(), m_ticks.end(), [&](const LevelMeterTick& other) {
                return other.isLabelled && std::fabs(other.edge - tick.edge) < distance;
            });
        tick.isLabelled = rank == 0 || (isFree && m_length - tick.edge >= kLeastFromEnd);
    }
}

float LevelMeterScale::edgeOf(double decibels) const noexcept {
    if (m_rows > 0) {
        const auto rows = static_cast<float>(m_rows);
        const auto below = static_cast<float>(levelMeterRowsBelow(decibels, m_rows, m_levels));
        return (rows - below) * m_length / rows;
    }
    return std::round((1.0F - meterPositionOfDecibels(decibels, m_levels)) * m_length * m_scale) /
           m_scale;
}

std::string LevelMeterScale::label(double decibels) {
    const NumberText digits = NumberText::fixed(std::fabs(decibels), 0);
    return decibels < 0.0 ? "\u2212" + std::string(digits.view()) : std::string(digits.view());
}

}  // namespace veltra
