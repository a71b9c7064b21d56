// SPDX-License-Identifier: MIT
#include "veltra/qt/painter_canvas.h"

#include "veltra/qt/qt_port.h"
#include "veltra/qt/qt_text.h"
#include "veltra/qt/qt_types.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <cmath>

namespace veltra {

namespace {

constexpr double kTolerance = 1.0 / 256.0;  // device pixels: below what anti-aliasing shows

bool isWhole(double value) {
    return std::abs(value - std::round(value)) < kTolerance;
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

PainterCanvas::PainterCanvas(QPainter& painter)
    : m_painter(painter),
      m_scale(painter.deviceTransform().m11()),
      m_origin(painter.deviceTransform().dx(), painter.deviceTransform().dy()) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
}

void PainterCanvas::saveState() {
    m_painter.save();
    m_smoothing.push_back(m_smoothsFonts);
}

void PainterCanvas::restoreState() {
    if (m_smoothing.empty()) return;
    m_painter.restore();
    m_smoothsFonts = m_smoothing.back();
    m_smoothing.pop_back();
}

void PainterCanvas::clipTo(const Rect& rect) {
    m_painter.setClipRect(toQt(rect), Qt::IntersectClip);
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

bool PainterCanvas::isAligned(const Rect& rect) const {
    return isWhole(rect.minX() * m_scale + m_origin.x()) &&
           isWhole(rect.maxX() * m_scale + m_origin.x()) &&
           isWhole(rect.minY() * m_scale + m_origin.y()) &&
           isWhole(rect.maxY() * m_scale + m_origin.y());
}

void PainterCanvas::fillRect(const Rect& rect, Color color) {
    if (isAligned(rect)) return m_painter.fillRect(toQt(rect), toQt(color));
    const Smooth smooth(m_painter);
    m_painter.fillRect(toQt(rect), toQt(color));
}

void PainterCanvas::fillPath(const Path& path, Color color) {
    const Smooth smooth(m_painter);
    m_painter.fillPath(painterPath(path), toQt(color));
}

void PainterCanvas::fillPath(const Path& path, const LinearGradient& gradient) {
    QLinearGradient colors(toQt(gradient.start), toQt(gradient.end));
    colors.setColorAt(0.0, toQt(gradient.from));
    colors.setColorAt(1.0, toQt(gradient.to));
    const Smooth smooth(m_painter);
    m_painter.fillPath(painterPath(path), colors);
}

void PainterCanvas::strokePath(const Path& path, Color color, float lineWidth) {
    const QPen pen(toQt(color), lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    const Smooth smooth(m_painter);
    m_painter.strokePath(painterPath(path), pen);
}

void PainterCanvas::drawImage(const Image& image, const Rect& source, const Rect& destination,
                              float alpha) {
    const QImage pixels = toQImage(image);
    const double imageScale = image.scale();
    // Whole pixels of the image where floats miss them by a rounding.
    const auto pixel = [imageScale](float points) {
        const double exact = static_cast<double>(points) * imageScale;
        return isWhole(exact) ? std::round(exact) : exact;
    };
    const QRectF from(pixel(source.minX()), pixel(source.minY()), pixel(source.size.width),
                      pixel(source.size.height));
    QRectF to = toQt(destination);
    m_painter.setOpacity(alpha);
    const bool isCopy = isWhole(from.width() - to.width() * m_scale) &&
                        isWhole(from.height() - to.height() * m_scale) &&
                        std::abs(from.width() - to.width() * m_scale) < 0.5 &&
                        std::abs(from.height() - to.height() * m_scale) < 0.5;
    if (isCopy && isAligned(destination) && m_scale == 1.0) {
        m_painter.drawImage(QRectF(to.topLeft(), from.size()), pixels, from);
    } else if (isCopy && isAligned(destination)) {
        // In device pixels the painter sees a plain copy.
        const QTransform before = m_painter.worldTransform();
        m_painter.scale(1.0 / m_scale, 1.0 / m_scale);
        to = QRectF(to.topLeft() * m_scale, from.size());
        m_painter.drawImage(to, pixels, from);
        m_painter.setWorldTransform(before);
    } else {
        const Smooth smooth(m_painter);
        m_painter.drawImage(to, pixels, from);
    }
    m_painter.setOpacity(1.0);
}

void PainterCanvas::drawText(const StyledText& text, const Rect& rect, TextPlacement placement) {
    drawQtText(m_painter, text, rect, placement, m_smoothsFonts);
}

}  // namespace veltra
