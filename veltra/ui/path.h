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
    // What a step does: begins a new outline, adds a line or a curve, or a line back to the
    // beginning.
    enum class Verb : std::uint8_t { Move, Line, Curve, Close };

    // `points` has 1 point for Move and Line, the two control points and the end for Curve, none
    // for Close.
    struct Element {
        Verb verb;        // what this step does
        Point points[3];  // in the coordinates of whoever draws it
    };

    // One closed outline of four corners.
    static Path rect(const Rect& rect);
    // `radius` is cut to half of the shorter side; 0 or less makes square corners.
    static Path roundedRect(const Rect& rect, float radius);

    // The ellipse that touches all four sides.
    static Path ellipse(const Rect& rect);

    // Begins an outline at this point; those before stay as they are, open or closed.
    void moveTo(Point point);
    // Without a point to start from, lineTo() and curveTo() count as moveTo() to their end.
    void lineTo(Point point);
    void curveTo(Point control1, Point control2, Point end);

    // A line back to the beginning of the outline, with a corner there.
    void close();

    // The steps in order; good until the path changes.
    const std::vector<Element>& elements() const noexcept { return m_elements; }

    // Whether there are no steps: nothing is drawn then.
    bool isEmpty() const noexcept { return m_elements.empty(); }

private:
    std::vector<Element> m_elements;
};

}  // namespace veltra
