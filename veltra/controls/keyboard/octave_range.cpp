// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/octave_range.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

// A place in keys as a whole number; beyond any row and below its beginning it stops. NaN is 0.
std::uint32_t whole(float keys) noexcept {
    constexpr float kFar = 1e9F;
    return keys > 0.0F ? static_cast<std::uint32_t>(std::min(keys, kFar)) : 0U;
}

}  // namespace

float OctaveRow::left(KeyRange range) const noexcept {
    return std::floor(keyWidth() * static_cast<float>(range.location)) + kMargin;
}

float OctaveRow::right(KeyRange range) const noexcept {
    return std::floor(keyWidth() * static_cast<float>(range.end()) - 1.0F) + kMargin;
}

KeyRange OctaveRow::kept(KeyRange range) const noexcept {
    const std::uint32_t length = std::clamp(range.length, 1U, count);
    return {std::min(range.location, count - length), length};
}

KeyRange OctaveRow::moved(KeyRange range, float x, float offset,
                          std::int32_t raster) const noexcept {
    std::uint32_t key = whole(std::floor((x - offset - kMargin) / keyWidth()));
    if (raster > 1) {
        const auto step = static_cast<std::uint32_t>(raster);
        key = key / step * step;
    }
    return kept({key, range.length});
}

std::uint32_t OctaveRow::borderAt(float x, std::int32_t raster) const noexcept {
    const float step = raster > 1 ? static_cast<float>(raster) : 1.0F;
    const float keys = std::round((x - kMargin) / keyWidth() / step) * step;
    return std::min(whole(keys), count);
}

KeyRange OctaveRow::withLeftAt(KeyRange range, float x, std::int32_t raster) const noexcept {
    const std::uint32_t end = std::max(range.end(), 1U);
    const std::uint32_t begin = std::min(borderAt(x, raster), end - 1U);
    return {begin, end - begin};
}

KeyRange OctaveRow::withRightAt(KeyRange range, float x, std::int32_t raster) const noexcept {
    const std::uint32_t end = std::max(borderAt(x, raster), range.location + 1U);
    return {range.location, end - range.location};
}

}  // namespace veltra
