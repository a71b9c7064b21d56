// SPDX-License-Identifier: MIT
// A range of white keys on a row of equally wide ones, and how the pointer moves it: the arithmetic
// of DfOctavePickerView without the view.
//
// Places are in points from the left side of the view; keys count from 0 at the left.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/export.h"

#include <cstdint>

namespace veltra {

// Some white keys side by side.
struct KeyRange {
    std::uint32_t location = 0;  // the first key
    std::uint32_t length = 0;    // how many keys

    // The key behind the last one.
    constexpr std::uint32_t end() const noexcept { return location + length; }

    // Whether both begin and end at the same keys.
    friend constexpr bool operator==(KeyRange left, KeyRange right) noexcept = default;
};

struct VELTRA_EXPORT OctaveRow {
    // What lies between the left side of the view and the first key.
    static constexpr float kMargin = 6.0F;

    float totalWidth = 0.0F;  // of all keys; above 0
    std::uint32_t count = 0;  // of the keys; above 0

    // In points, not rounded.
    float keyWidth() const noexcept { return totalWidth / static_cast<float>(count); }

    // The two sides of a range, in whole points from the margin. The line between two keys belongs
    // to the key on its left, and the right side lies before that line.
    float left(KeyRange range) const noexcept;
    float right(KeyRange range) const noexcept;

    // The range that is nearest to `range` on this row: at least one key long, between the ends.
    KeyRange kept(KeyRange range) const noexcept;

    // The range, in its length, where the pointer at `x` wants it that holds it `offset` to the
    // right of its left side. Above 1, `raster` is a number of keys: the range begins at a multiple
    // of it, except where it would go beyond the last key.
    KeyRange moved(KeyRange range, float x, float offset, std::int32_t raster) const noexcept;

    // The range with its left or its right side at the border between keys that is nearest to `x`,
    // at a multiple of `raster` where that is above 1. At least one key remains.
    KeyRange withLeftAt(KeyRange range, float x, std::int32_t raster) const noexcept;
    KeyRange withRightAt(KeyRange range, float x, std::int32_t raster) const noexcept;

private:
    std::uint32_t borderAt(float x, std::int32_t raster) const noexcept;
};

}  // namespace veltra
