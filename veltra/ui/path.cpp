// SPDX-License-Identifier: MIT
#include "veltra/ui/path.h"

#include <algorithm>

namespace veltra {

namespace {

// How far the control points of a quarter of a circle lie from its corner, as a part of the radius.
constexpr float kFromCorner = 1.0F - 0.55228475F;

}  // namespace

Path Path::rect(const Rect& rect) {
    return roundedRect(rect, 0.0F);
}

Path Path::roundedRect(const Rect& rect, float radius) {
    Path path;
    if (rect.isEmpty()) return path;
    const float r = std::clamp(radius, 0.0F, std::min(rect.size.width, rect.size.height) * 0.5F);
    const float c = r * kFromCorner;
    const float left = rect.minX();
    const float right = rect.maxX();
    const float low = rect.minY();
    const float high = rect.maxY();
    if (r == 0.0F) {
        path.moveTo({left, low});
        path.lineTo({right, low});
        path.lineTo({right, high});
        path.lineTo({left, high});
    } else {
        path.moveTo({left + r, low});
        path.lineTo({right - r, low});
        path.curveTo({right - c, low}, {right, low + c}, {right, low + r});
        path.lineTo({right, high - r});
        path.curveTo({right, high - c}, {right - c, high}, {right - r, high});
        path.lineTo({left + r, high});
        path.curveTo({left + c, high}, {left, high - c}, {left, high - r});
        path.lineTo({left, low + r});
        path.curveTo({left, low + c}, {left + c, low}, {left + r, low});
    }
    path.close();
    return path;
}

Path Path::ellipse(const Rect& rect) {
    Path path;
    if (rect.isEmpty()) return path;
    const Point middle = rect.center();
    const float cx = rect.size.width * 0.5F * kFromCorner;
    const float cy = rect.size.height * 0.5F * kFromCorner;
    path.moveTo({rect.maxX(), middle.y});
    path.curveTo({rect.maxX(), rect.maxY() - cy}, {rect.maxX() - cx, rect.maxY()},
                 {middle.x, rect.maxY()});
    path.curveTo({rect.minX() + cx, rect.maxY()}, {rect.minX(), rect.maxY() - cy},
                 {rect.minX(), middle.y});
    path.curveTo({rect.minX(), rect.minY() + cy}, {rect.minX() + cx, rect.minY()},
                 {middle.x, rect.minY()});
    path.curveTo({rect.maxX() - cx, rect.minY()}, {rect.maxX(), rect.minY() + cy},
                 {rect.maxX(), middle.y});
    path.close();
    return path;
}

void Path::moveTo(Point point) {
    m_elements.push_back({Verb::Move, {point, {}, {}}});
}

void Path::lineTo(Point point) {
    m_elements.push_back({m_elements.empty() ? Verb::Move : Verb::Line, {point, {}, {}}});
}

void Path::curveTo(Point control1, Point control2, Point end) {
    if (m_elements.empty()) {
        moveTo(end);
    } else {
        m_elements.push_back({Verb::Curve, {control1, control2, end}});
    }
}

void Path::close() {
    if (!m_elements.empty()) m_elements.push_back({Verb::Close, {}});
}

}  // namespace veltra
