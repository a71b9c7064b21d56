// SPDX-License-Identifier: MIT
// Between the values of veltra/ui and those of Qt.
#pragma once

#include "veltra/ui/color.h"
#include "veltra/ui/geometry.h"

#include <QColor>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QString>
#include <cmath>
#include <string>

namespace veltra {

inline QPointF toQt(Point point) {
    return {point.x, point.y};
}
inline QRectF toQt(const Rect& rect) {
    return {rect.minX(), rect.minY(), rect.size.width, rect.size.height};
}
inline QColor toQt(Color color) {
    return QColor::fromRgbF(color.red, color.green, color.blue, color.alpha);
}
inline QString toQt(const std::string& text) {
    return QString::fromStdString(text);
}

inline Point fromQt(const QPointF& point) {
    return {static_cast<float>(point.x()), static_cast<float>(point.y())};
}
inline Rect fromQt(const QRectF& rect) {
    return {fromQt(rect.topLeft()),
            {static_cast<float>(rect.width()), static_cast<float>(rect.height())}};
}

// The least rectangle of whole points around it.
inline QRect around(const Rect& rect) {
    return toQt(rect).toAlignedRect();
}
// The nearest rectangle of whole points, at least one point wide and high.
inline QRect nearest(const Rect& rect) {
    const auto whole = [](float value) { return static_cast<int>(std::lround(value)); };
    return {whole(rect.minX()), whole(rect.minY()), std::max(whole(rect.size.width), 1),
            std::max(whole(rect.size.height), 1)};
}

}  // namespace veltra
