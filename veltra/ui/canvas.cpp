// SPDX-License-Identifier: MIT
#include "veltra/ui/canvas.h"

namespace veltra {

CanvasPort::~CanvasPort() = default;

Canvas::StateScope::StateScope(Canvas& canvas)
    : m_canvas(canvas),
      m_origin(canvas.m_origin),
      m_isFlipped(canvas.m_isFlipped),
      m_strokeColor(canvas.m_strokeColor),
      m_fillColor(canvas.m_fillColor) {
    canvas.m_port.saveState();
}

Canvas::StateScope::~StateScope() {
    m_canvas.m_port.restoreState();
    m_canvas.m_origin = m_origin;
    m_canvas.m_isFlipped = m_isFlipped;
    m_canvas.m_strokeColor = m_strokeColor;
    m_canvas.m_fillColor = m_fillColor;
}

Point Canvas::toPort(Point point) const noexcept {
    return {m_origin.x + point.x, m_isFlipped ? m_origin.y + point.y : m_origin.y - point.y};
}

Rect Canvas::toPort(const Rect& rect) const noexcept {
    const float top = m_isFlipped ? m_origin.y + rect.minY() : m_origin.y - rect.maxY();
    return {{m_origin.x + rect.minX(), top}, rect.size};
}

Rect Canvas::fromPort(const Rect& rect) const noexcept {
    const float low = m_isFlipped ? rect.minY() - m_origin.y : m_origin.y - rect.maxY();
    return {{rect.minX() - m_origin.x, low}, rect.size};
}

Path Canvas::toPort(const Path& path) const {
    Path result;
    for (const Path::Element& element : path.elements()) {
        const Point* points = element.points;
        switch (element.verb) {
            case Path::Verb::Move:
                result.moveTo(toPort(points[0]));
                break;
            case Path::Verb::Line:
                result.lineTo(toPort(points[0]));
                break;
            case Path::Verb::Curve:
                result.curveTo(toPort(points[0]), toPort(points[1]), toPort(points[2]));
                break;
            case Path::Verb::Close:
                result.close();
                break;
        }
    }
    return result;
}

void Canvas::enter(const Rect& frame, bool isFlipped) {
    const Rect place = toPort(frame);
    m_port.clipTo(place);
    m_origin = {place.minX(), isFlipped ? place.minY() : place.maxY()};
    m_isFlipped = isFlipped;
}

Rect Canvas::alignedToDevice(const Rect& rect) const {
    return fromPort(m_port.alignedToDevice(toPort(rect)));
}

void Canvas::fillRect(const Rect& rect, Color color) {
    if (!rect.isEmpty()) m_port.fillRect(toPort(rect), color);
}

void Canvas::fillPath(const Path& path, Color color) {
    if (!path.isEmpty()) m_port.fillPath(toPort(path), color);
}

void Canvas::fillPath(const Path& path, const LinearGradient& gradient) {
    if (path.isEmpty()) return;
    m_port.fillPath(toPort(path), LinearGradient{gradient.from, gradient.to, toPort(gradient.start),
                                                 toPort(gradient.end)});
}

void Canvas::strokePath(const Path& path, Color color, float lineWidth) {
    if (!path.isEmpty()) m_port.strokePath(toPort(path), color, lineWidth);
}

void Canvas::strokeLine(Point from, Point to, Color color, float lineWidth) {
    Path line;
    line.moveTo(toPort(from));
    line.lineTo(toPort(to));
    m_port.strokePath(line, color, lineWidth);
}

void Canvas::drawImage(const Image& image, Point upperLeft) {
    const Size size = image.size();
    const float low = m_isFlipped ? upperLeft.y : upperLeft.y - size.height;
    drawImage(image, {{}, size}, {{upperLeft.x, low}, size});
}

void Canvas::drawImage(const Image& image, const Rect& source, const Rect& destination,
                       float alpha) {
    const Rect inside = source.intersection({{}, image.size()});
    if (inside.isEmpty() || destination.isEmpty()) return;
    Rect place = toPort(destination);
    if (!(inside == source)) {
        const float across = place.size.width / source.size.width;
        const float down = place.size.height / source.size.height;
        const Point cut = inside.origin - source.origin;
        place = {{place.minX() + cut.x * across, place.minY() + cut.y * down},
                 {inside.size.width * across, inside.size.height * down}};
    }
    m_port.drawImage(image, inside, place, alpha);
}

void Canvas::drawText(const StyledText& text, const Rect& rect, TextPlacement placement) {
    if (text.isEmpty() || rect.isEmpty()) return;
    m_port.drawText(text, toPort(rect), placement);
}

}  // namespace veltra
