// SPDX-License-Identifier: MIT
#include "veltra/qt/painter_canvas.h"

#include "veltra/qt/qt_image.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/qt_text.h"
#include "veltra/qt/qt_types.h"

#include <QLinearGradient>
#include <QPaintEngine>
#include <QPainterPath>
#include <QPen>
#include <algorithm>
#include <cmath>
#include <typeinfo>

namespace veltra {

namespace {

constexpr int kFar = 1 << 20;               // device pixels: beyond every surface
constexpr double kTolerance = 1.0 / 256.0;  // device pixels: below what anti-aliasing shows

// The border between pixels that the painter, too, takes. Quicker than std::floor().
int nearestBorder(double value) {
    const double inReach = std::min<double>(kFar, std::max<double>(-kFar, value));
    return static_cast<int>(inReach + (kFar + 0.5)) - kFar;
}

bool isWhole(double value) {
    return std::abs(value - nearestBorder(value)) < kTolerance;
}

// Asked for more often than anything is drawn, and Qt's own is no inline function.
QRect shared(const QRect& one, const QRect& other) {
    return {QPoint(std::max(one.left(), other.left()), std::max(one.top(), other.top())),
            QPoint(std::min(one.right(), other.right()), std::min(one.bottom(), other.bottom()))};
}

QPainterPath painterPath(const Path& path) {
    QPainterPath result;
    for (const Path::Element& element : path.elements()) {
        const Point* points = element.points;
        switch (element.verb) {
            case Path::Verb::Move:
                result.moveTo(toQt(points[0]));
                break;
            case Path::Verb::Line:
                result.lineTo(toQt(points[0]));
                break;
            case Path::Verb::Curve:
                result.cubicTo(toQt(points[0]), toQt(points[1]), toQt(points[2]));
                break;
            case Path::Verb::Close:
                result.closeSubpath();
                break;
        }
    }
    return result;
}

// Anti-aliasing for as long as it lives. Elsewhere it stays off: rectangles and images that lie on
// borders between pixels are filled and copied much faster without it.
class Smooth {
public:
    explicit Smooth(QPainter& painter) : m_painter(painter) {
        painter.setRenderHint(QPainter::Antialiasing, true);
    }
    Smooth(const Smooth&) = delete;
    Smooth& operator=(const Smooth&) = delete;
    ~Smooth() { m_painter.setRenderHint(QPainter::Antialiasing, false); }

private:
    QPainter& m_painter;
};

}  // namespace

PainterCanvas::PainterCanvas(QPainter& painter, Keeper keeper)
    : m_painter(painter),
      m_points(painter.worldTransform()),
      m_pixels(painter.deviceTransform().inverted() * m_points),
      m_scale(painter.deviceTransform().m11()),
      m_origin(painter.deviceTransform().dx(), painter.deviceTransform().dy()),
      m_whole(QPoint(-kFar, -kFar), QPoint(kFar, kFar)) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (keeper == Keeper::Canvas) m_kept = painter.paintEngine()->systemClip();
    if (m_kept.isEmpty()) {
        m_rects.push_back(m_whole);
        return;
    }
    m_whole = m_kept.boundingRect();
    m_rects.assign(m_kept.begin(), m_kept.end());
    painter.paintEngine()->setSystemClip({});
}

PainterCanvas::~PainterCanvas() {
    if (!m_kept.isEmpty()) m_painter.paintEngine()->setSystemClip(m_kept);
    m_painter.restore();
}

void PainterCanvas::saveState() {
    m_state.count = m_rects.size();
    m_saved.push_back(m_state);
}

void PainterCanvas::restoreState() {
    if (m_saved.empty()) return;
    const State state = m_saved.back();
    m_saved.pop_back();
    if (m_rects.size() != state.count) m_isNarrow = false;
    m_rects.resize(state.count);
    m_state = state;
}

// The rectangles are in the order of a region: from top to bottom, no two at different heights
// overlap vertically.
void PainterCanvas::clipTo(const Rect& rect) {
    const QRect clip = pixels(rect);
    const std::size_t end = m_rects.size();
    const auto isAbove = [&clip](const QRect& each) { return each.bottom() < clip.top(); };
    const auto begin = m_rects.begin();
    auto at = static_cast<std::size_t>(
        std::partition_point(begin + static_cast<std::ptrdiff_t>(m_state.first), m_rects.end(),
                             isAbove) -
        begin);
    for (; at < end && m_rects[at].top() <= clip.bottom(); ++at) {
        const QRect& each = m_rects[at];
        if (each.right() < clip.left() || each.left() > clip.right()) continue;
        m_rects.push_back(shared(each, clip));
    }
    m_state.first = end;
    m_isNarrow = false;
}

// Between the nearest borders.
QRect PainterCanvas::pixels(const Rect& rect, bool* isAligned) const {
    const QRectF points = toQt(rect);
    const double left = points.left() * m_scale + m_origin.x();
    const double top = points.top() * m_scale + m_origin.y();
    const double right = points.right() * m_scale + m_origin.x();
    const double bottom = points.bottom() * m_scale + m_origin.y();
    if (isAligned != nullptr)
        *isAligned = isWhole(left) && isWhole(top) && isWhole(right) && isWhole(bottom);
    return {QPoint(nearestBorder(left), nearestBorder(top)),
            QPoint(nearestBorder(right) - 1, nearestBorder(bottom) - 1)};
}

// What the painter's coordinates are from here on; pixels are those of the device.
void PainterCanvas::use(Unit unit) {
    if (unit == m_unit) return;
    m_unit = unit;
    if (m_points != m_pixels)
        m_painter.setWorldTransform(unit == Unit::Point ? m_points : m_pixels);
}

// For what is cut to the clip before it is drawn.
void PainterCanvas::openClip() {
    use(Unit::Pixel);
    if (m_isOpen) return;
    m_painter.setClipRect(m_whole);
    m_isOpen = true;
    m_isNarrow = false;
}

// For all else. Whether any of that can be seen.
bool PainterCanvas::narrowClip() {
    const std::size_t count = m_rects.size() - m_state.first;
    if (count == 0) return false;
    if (!m_isNarrow) {
        use(Unit::Pixel);
        const QRect* const first = &m_rects[m_state.first];
        if (count == 1) {
            m_painter.setClipRect(*first);
        } else {
            QRegion region;
            for (const QRect* rect = first; rect != first + count; ++rect)
                region += *rect;
            m_painter.setClipRegion(region);
        }
        m_isOpen = false;
        m_isNarrow = true;
    }
    use(Unit::Point);
    return true;
}

Rect PainterCanvas::alignedToDevice(const Rect& rect) const {
    const auto border = [](double origin, double scale, float value) {
        return static_cast<float>((std::round(value * scale + origin) - origin) / scale);
    };
    const float left = border(m_origin.x(), m_scale, rect.minX());
    const float top = border(m_origin.y(), m_scale, rect.minY());
    const auto pixel = static_cast<float>(1.0 / m_scale);
    const float right = border(m_origin.x(), m_scale, rect.maxX());
    const float bottom = border(m_origin.y(), m_scale, rect.maxY());
    return {{left, top}, {std::max(right - left, pixel), std::max(bottom - top, pixel)}};
}

void PainterCanvas::fillRect(const Rect& rect, Color color) {
    bool isAligned = false;
    const QRect place = pixels(rect, &isAligned);
    if (isAligned) {
        openClip();
        const QColor filling = toQt(color);
        for (std::size_t i = m_state.first; i < m_rects.size(); ++i) {
            const QRect part = shared(place, m_rects[i]);
            if (!part.isEmpty()) m_painter.fillRect(part, filling);
        }
        return;
    }
    if (!narrowClip()) return;
    const Smooth smooth(m_painter);
    m_painter.fillRect(toQt(rect), toQt(color));
}

void PainterCanvas::fillPath(const Path& path, Color color) {
    if (!narrowClip()) return;
    const Smooth smooth(m_painter);
    m_painter.fillPath(painterPath(path), toQt(color));
}

void PainterCanvas::fillPath(const Path& path, const LinearGradient& gradient) {
    if (!narrowClip()) return;
    QLinearGradient colors(toQt(gradient.start), toQt(gradient.end));
    colors.setColorAt(0.0, toQt(gradient.from));
    colors.setColorAt(1.0, toQt(gradient.to));
    const Smooth smooth(m_painter);
    m_painter.fillPath(painterPath(path), colors);
}

void PainterCanvas::strokePath(const Path& path, Color color, float lineWidth) {
    if (!narrowClip()) return;
    const QPen pen(toQt(color), lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    const Smooth smooth(m_painter);
    m_painter.strokePath(painterPath(path), pen);
}

void PainterCanvas::drawImage(const Image& image, const Rect& source, const Rect& destination,
                              float alpha) {
    QImage copy;  // of an image that is not one of Qt's
    const auto* const own =
        typeid(image) == typeid(QtImage) ? static_cast<const QtImage*>(&image) : nullptr;
    if (own == nullptr) copy = toQImage(image);
    const QImage& all = own != nullptr ? own->pixels() : copy;

    const double imageScale = image.scale();
    // Whole pixels of the image where floats miss them by a rounding.
    const auto pixel = [imageScale](float points) {
        const double exact = static_cast<double>(points) * imageScale;
        return isWhole(exact) ? nearestBorder(exact) : exact;
    };
    const QRectF from(pixel(source.minX()), pixel(source.minY()), pixel(source.size.width),
                      pixel(source.size.height));
    const double width = destination.size.width * m_scale;
    const double height = destination.size.height * m_scale;
    const bool isCopy = isWhole(from.width() - width) && isWhole(from.height() - height) &&
                        std::abs(from.width() - width) < 0.5 &&
                        std::abs(from.height() - height) < 0.5;
    if (alpha != 1.0F) m_painter.setOpacity(alpha);
    bool isAligned = false;
    const QRect place = pixels(destination, &isAligned);
    if (isCopy && isAligned) {
        openClip();
        for (std::size_t i = m_state.first; i < m_rects.size(); ++i) {
            const QRect part = shared(place, m_rects[i]);
            if (part.isEmpty()) continue;
            const QPointF moved(part.topLeft() - place.topLeft());
            m_painter.drawImage(QRectF(part), all, QRectF(from.topLeft() + moved, part.size()));
        }
    } else if (narrowClip()) {
        const Smooth smooth(m_painter);
        m_painter.drawImage(toQt(destination), all, from);
    }
    if (alpha != 1.0F) m_painter.setOpacity(1.0);
}

void PainterCanvas::drawText(const StyledText& text, const Rect& rect, TextPlacement placement) {
    if (narrowClip()) drawQtText(m_painter, text, rect, placement, m_state.smoothsFonts);
}

}  // namespace veltra
