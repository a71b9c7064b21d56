// SPDX-License-Identifier: MIT
// What a view draws on: shapes, images and text in the view's own coordinates. Text and images
// stand upright also where the y axis points up.
//
// A port supplies a CanvasPort, which knows only one direction: its y axis points down. Canvas
// turns a view's coordinates into those.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/color.h"
#include "veltra/ui/geometry.h"
#include "veltra/ui/image.h"
#include "veltra/ui/path.h"
#include "veltra/ui/styled_text.h"

#include <cstdint>
#include <vector>

namespace veltra {

// From `from` at `start` to `to` at `end`, and these colours beyond.
struct LinearGradient {
    Color from;   // where the gradient starts, and before that
    Color to;     // where it ends, and after that
    Point start;  // where `from` is, in the coordinates of what is filled
    Point end;    // where `to` is; colours run along the line between the two
};

// One surface of a port: a window's, an embedded view's or an image's. All coordinates are points
// with the origin in the surface's upper left corner.
class VELTRA_EXPORT CanvasPort {
public:
    CanvasPort() = default;
    CanvasPort(const CanvasPort&) = delete;
    CanvasPort& operator=(const CanvasPort&) = delete;
    virtual ~CanvasPort();

    // The graphics state is the clip and the smoothing of fonts.
    virtual void saveState() = 0;
    virtual void restoreState() = 0;

    // From here on nothing is drawn outside of the rectangle, nor outside of the clip before.
    virtual void clipTo(const Rect& rect) = 0;

    // Whether the edges of letters are blended with the ground.
    virtual void setFontSmoothing(bool isOn) = 0;

    // Device pixels a point.
    virtual float scale() const = 0;
    // The rectangle with its sides on the nearest borders between device pixels.
    virtual Rect alignedToDevice(const Rect& rect) const = 0;

    // Fills an area with one colour or a gradient, over what is there; edges that are not on the
    // borders of device pixels are blended.
    virtual void fillRect(const Rect& rect, Color color) = 0;
    virtual void fillPath(const Path& path, Color color) = 0;
    virtual void fillPath(const Path& path, const LinearGradient& gradient) = 0;

    // Draws a line along the outline, `lineWidth` points wide and half of that on either side. It
    // ends flat where the outline does; corners are pointed.
    virtual void strokePath(const Path& path, Color color, float lineWidth) = 0;
    // `source` is in points of the image, from its upper left corner, and lies inside it.
    virtual void drawImage(const Image& image, const Rect& source, const Rect& destination,
                           float alpha) = 0;
    // Placed in the rectangle's height as `placement` says, in its width as the text says.
    virtual void drawText(const StyledText& text, const Rect& rect, TextPlacement placement) = 0;
};

// What a view is given to draw on, in its own coordinates.
class VELTRA_EXPORT Canvas {
public:
    // Draws on `port`, with the y axis pointing down and no shift.
    explicit Canvas(CanvasPort& port) noexcept : m_port(port) {}
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Keeps the coordinates, the clip, the smoothing and the current colours, and restores them at
    // its end.
    class VELTRA_EXPORT StateScope {
    public:
        // Keeps the state of `canvas`, which must live longer.
        explicit StateScope(Canvas& canvas);
        StateScope(const StateScope&) = delete;
        StateScope& operator=(const StateScope&) = delete;
        ~StateScope();

    private:
        Canvas& m_canvas;
        const Point m_origin;
        const bool m_isFlipped;
        const Color m_strokeColor;
        const Color m_fillColor;
    };

    // From here on (until the StateScope around it ends) coordinates are those of a view that has
    // the rectangle `frame` of the present coordinates, and drawing outside of it has no effect.
    void enter(const Rect& frame, bool isFlipped);

    // Whether the y axis of the present coordinates points down.
    bool isFlipped() const noexcept { return m_isFlipped; }

    // From here on (until the StateScope around it ends) nothing is drawn outside of the rectangle,
    // nor outside of the clip before.
    void clipTo(const Rect& rect) { m_port.clipTo(toPort(rect)); }
    // Smoothing is on at the beginning.
    void setFontSmoothing(bool isOn) { m_port.setFontSmoothing(isOn); }

    // Device pixels a point.
    float scale() const { return m_port.scale(); }

    // The rectangle with its sides on the nearest borders between device pixels: what is filled
    // there has sharp edges at every scale. Never thinner than one device pixel.
    Rect alignedToDevice(const Rect& rect) const;

    // Fills an area with a colour or a gradient, over what is there. Empty rectangles and paths
    // draw nothing.
    void fillRect(const Rect& rect, Color color);
    void fillPath(const Path& path, Color color);
    void fillPath(const Path& path, const LinearGradient& gradient);

    // Draws a line of `lineWidth` points along an outline or from one point to another, with half
    // of the width on either side. Lines end flat, corners are pointed.
    void strokePath(const Path& path, Color color, float lineWidth);
    void strokeLine(Point from, Point to, Color color, float lineWidth);

    // The current colours, for code that sets a colour once and draws several shapes with it, and
    // for colours that convert themselves to those of the canvas. Black at the beginning.
    void setStrokeColor(Color color) noexcept { m_strokeColor = color; }
    void setFillColor(Color color) noexcept { m_fillColor = color; }
    Color strokeColor() const noexcept { return m_strokeColor; }
    Color fillColor() const noexcept { return m_fillColor; }

    // The same in the current colours.
    void fillRect(const Rect& rect) { fillRect(rect, m_fillColor); }
    void fillPath(const Path& path) { fillPath(path, m_fillColor); }
    void strokePath(const Path& path, float lineWidth) {
        strokePath(path, m_strokeColor, lineWidth);
    }
    void strokeLine(Point from, Point to, float lineWidth) {
        strokeLine(from, to, m_strokeColor, lineWidth);
    }

    void drawImage(const Image& image, Point upperLeft);  // "upper" on screen
    // `source` is in points of the image, from its upper left corner; what lies outside of the
    // image is cut off together with its part of the destination.
    void drawImage(const Image& image, const Rect& source, const Rect& destination,
                   float alpha = 1.0F);

    // Placed in the rectangle's height as `placement` says, in its width as the text says. Text
    // that is wider is cut off at the rectangle's sides.
    void drawText(const StyledText& text, const Rect& rect,
                  TextPlacement placement = TextPlacement::Center);

private:
    Point toPort(Point point) const noexcept;
    Rect toPort(const Rect& rect) const noexcept;
    Rect fromPort(const Rect& rect) const noexcept;
    Path toPort(const Path& path) const;

    CanvasPort& m_port;
    Point m_origin;  // of the coordinates, in those of the port
    bool m_isFlipped = true;
    Color m_strokeColor = kBlack;
    Color m_fillColor = kBlack;
};

}  // namespace veltra
