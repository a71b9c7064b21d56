// SPDX-License-Identifier: MIT
// Points, sizes and rectangles, in logical points: one pixel at scale 1, two pixels at scale 2.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/export.h"

#include <algorithm>

namespace veltra {

// A place in a plane, or the way from one place to another.
struct Point {
    float x = 0.0F;  // to the right
    float y = 0.0F;  // up, or down in flipped coordinates

    // Whether both coordinates are equal, exactly.
    friend constexpr bool operator==(Point left, Point right) noexcept = default;

    // A place moved by a way, or the sum of two ways.
    friend constexpr Point operator+(Point left, Point right) noexcept {
        return {left.x + right.x, left.y + right.y};
    }

    // The way from `right` to `left`.
    friend constexpr Point operator-(Point left, Point right) noexcept {
        return {left.x - right.x, left.y - right.y};
    }
};

// How wide and high something is.
struct Size {
    float width = 0.0F;   // 0 or below is empty, as the next
    float height = 0.0F;  // along the y axis, either way that points

    // Whether both are equal, exactly.
    friend constexpr bool operator==(Size left, Size right) noexcept = default;
};

// `origin` is the corner with the least coordinates: top left in a flipped view, bottom left in any
// other. A rectangle without width or height is empty: it contains and meets nothing.
struct Rect {
    Point origin;  // the corner with the least x and y
    Size size;     // to the opposite corner

    // The sides: the least and the greatest coordinate along each axis.
    constexpr float minX() const noexcept { return origin.x; }
    constexpr float minY() const noexcept { return origin.y; }
    constexpr float maxX() const noexcept { return origin.x + size.width; }
    constexpr float maxY() const noexcept { return origin.y + size.height; }

    // The point in the middle.
    constexpr Point center() const noexcept {
        return {origin.x + size.width * 0.5F, origin.y + size.height * 0.5F};
    }

    // Whether width or height is not above 0; true for NaN.
    constexpr bool isEmpty() const noexcept { return !(size.width > 0.0F && size.height > 0.0F); }

    // Whether they share some area. Rectangles that only touch do not.
    constexpr bool intersects(const Rect& other) const noexcept {
        return !isEmpty() && !other.isEmpty() && minX() < other.maxX() && other.minX() < maxX() &&
               minY() < other.maxY() && other.minY() < maxY();
    }

    // Empty at the origin of coordinates when the two do not meet.
    constexpr Rect intersection(const Rect& other) const noexcept {
        if (!intersects(other)) return {};
        const float left = std::max(minX(), other.minX());
        const float low = std::max(minY(), other.minY());
        return {{left, low},
                {std::min(maxX(), other.maxX()) - left, std::min(maxY(), other.maxY()) - low}};
    }

    // The least rectangle around both; an empty one adds nothing.
    constexpr Rect united(const Rect& other) const noexcept {
        if (isEmpty()) return other;
        if (other.isEmpty()) return *this;
        const float left = std::min(minX(), other.minX());
        const float low = std::min(minY(), other.minY());
        return {{left, low},
                {std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - low}};
    }

    // Every side moved inwards; negative insets move outwards.
    constexpr Rect inset(float horizontal, float vertical) const noexcept {
        return {{origin.x + horizontal, origin.y + vertical},
                {size.width - 2.0F * horizontal, size.height - 2.0F * vertical}};
    }

    // The same size elsewhere: `offset` is added to the origin.
    constexpr Rect movedBy(Point offset) const noexcept { return {origin + offset, size}; }

    // Whether origin and size are equal, exactly; two empty ones may differ.
    friend constexpr bool operator==(const Rect& left, const Rect& right) noexcept = default;
};

// The sides with the least coordinates belong to the rectangle, those opposite do not.
constexpr bool pointInRect(Point point, const Rect& rect) noexcept {
    return !rect.isEmpty() && point.x >= rect.minX() && point.x < rect.maxX() &&
           point.y >= rect.minY() && point.y < rect.maxY();
}

// Whether the pixel under a pointer's hot spot belongs to the rectangle: on screen the left and the
// upper side do. In a view that is not flipped the upper side is the one at maxY().
constexpr bool mouseInRect(Point point, const Rect& rect, bool isFlipped) noexcept {
    if (isFlipped) return pointInRect(point, rect);
    return !rect.isEmpty() && point.x >= rect.minX() && point.x < rect.maxX() &&
           point.y > rect.minY() && point.y <= rect.maxY();
}

}  // namespace veltra
