// SPDX-License-Identifier: MIT
// An outline of straight lines and curves, to be filled or stroked.
//
// Thread: one at a time. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <vector>

namespace veltra {

class VELTRA_EXPORT Path {
public:
    enum class Verb : std::uint8_t { Move, Line, Curve, Close };

    // `points` has 1 point for Move and Line, the two control points and the end for Curve, none
    // for Close.
    struct Element {
        Verb verb;
        Point points[3];
    };

    static Path rect(const Rect& rect);
    // `radius` is cut to half of the shorter side; 0 or less makes square corners.
    static Path roundedRect(const Rect& rect, float radius);
    static Path ellipse(const Rect& rect);

    void moveTo(Point point);
    // Without a point to start from, lineTo() and curveTo() count as moveTo() to their end.
    void lineTo(Point point);
    void curveTo(Point control1, Point control2, Point end);
    void close();

    const std::vector<Element>& elements() const noexcept { return m_elements; }
    bool isEmpty() const noexcept { return m_elements.empty(); }

private:
    std::vector<Element> m_elements;
};

}  // namespace veltra
