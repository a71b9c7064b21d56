// SPDX-License-Identifier: MIT
// A surface of veltra/ui on a QPainter: a widget's, or an image's.
#pragma once

#include "veltra/ui/canvas.h"

#include <QImage>
#include <QPainter>
#include <QRect>
#include <QRegion>
#include <QTransform>
#include <cstddef>
#include <vector>

namespace veltra {

// Keeps the clip itself, as a list of rectangles of device pixels: rectangles and images that lie
// on borders between pixels are cut to them, and the painter, to which a clip and its way back are
// dear, hears of one only for the rest.
class PainterCanvas final : public CanvasPort {
public:
    // Whose rectangles a painter of a widget is held to while the canvas lives.
    enum class Keeper {
        Painter,
        Canvas,  // sees to it that drawing many small ones stays cheap; for the raster engine
    };

    // Draws with `painter` (not owned), whose coordinates are points from the upper left corner and
    // which has no clip of its own. Leaves it as it was.
    explicit PainterCanvas(QPainter& painter, Keeper keeper = Keeper::Painter);
    ~PainterCanvas() override;

    void saveState() override;
    void restoreState() override;
    void clipTo(const Rect& rect) override;
    void setFontSmoothing(bool isOn) override { m_state.smoothsFonts = isOn; }
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
    enum class Unit { Point, Pixel };

    struct State {
        std::size_t first = 0;  // of m_rects: the clip is what lies from there to the end
        std::size_t count = 0;  // of m_rects, when it was saved
        bool smoothsFonts = true;
    };

    QRect pixels(const Rect& rect, bool* isAligned = nullptr) const;
    void use(Unit unit);
    void openClip();
    bool narrowClip();

    QPainter& m_painter;
    const QTransform m_points;  // the painter's transform for points,
    const QTransform m_pixels;  // and for pixels of the device
    const double m_scale;       // device pixels a point
    const QPointF m_origin;     // of the surface, in device pixels
    QRegion m_kept;             // the engine's own clip, which is out of force meanwhile
    QRect m_whole;              // all that can be drawn on
    std::vector<QRect> m_rects;
    State m_state;
    std::vector<State> m_saved;
    Unit m_unit = Unit::Point;
    bool m_isOpen = false;    // the painter's clip is m_whole,
    bool m_isNarrow = false;  // or what the state says
};

}  // namespace veltra
