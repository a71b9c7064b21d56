// SPDX-License-Identifier: MIT
// A surface of veltra/ui on a QPainter: a widget's, or an image's.
#pragma once

#include "veltra/ui/canvas.h"

#include <QPointF>
#include <vector>

class QPainter;

namespace veltra {

class PainterCanvas final : public CanvasPort {
public:
    // Draws with `painter` (not owned), whose coordinates are points from the upper left corner.
    explicit PainterCanvas(QPainter& painter);

    void saveState() override;
    void restoreState() override;
    void clipTo(const Rect& rect) override;
    void setFontSmoothing(bool isOn) override { m_smoothsFonts = isOn; }
    float scale() const override { return static_cast<float>(m_scale); }
    Rect alignedToDevice(const Rect& rect) const override;
    void fillRect(const Rect& rect, Color color) override;
    void fillPath(const Path& path, Color color) override;
    void fillPath(const Path& path, const LinearGradient& gradient) override;
    void strokePath(const Path& path, Color color, float lineWidth) override;
    void drawImage(const Image& image, const Rect& source, const Rect& destination,
                   float alpha) override;
    void drawText(const StyledText& text, const Rect& rect, TextPlacement placement) override;

private:
    bool isAligned(const Rect& rect) const;

    QPainter& m_painter;
    double m_scale;    // device pixels a point
    QPointF m_origin;  // of the surface, in device pixels
    bool m_smoothsFonts = true;
    std::vector<bool> m_smoothing;  // of the states that are saved
};

}  // namespace veltra
