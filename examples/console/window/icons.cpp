// SPDX-License-Identifier: MIT
#include "icons.h"

#include "veltra/ui/drawing.h"
#include "veltra/ui/theme.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace veltra::console {

namespace {

constexpr float kDash = 6.0F;
constexpr float kDashGap = 5.0F;

// Draws with places counted from the upper left corner of the square.
class Pen {
public:
    Pen(Canvas& canvas, Point upperLeft, Color color)
        : m_canvas(canvas), m_origin(upperLeft), m_color(color) {}

    Pen& at(float x, float y) {
        m_path.moveTo(place(x, y));
        return *this;
    }
    Pen& to(float x, float y) {
        m_path.lineTo(place(x, y));
        return *this;
    }
    Pen& curve(Point control1, Point control2, Point end) {
        m_path.curveTo(place(control1.x, control1.y), place(control2.x, control2.y),
                       place(end.x, end.y));
        return *this;
    }
    Pen& fill() {
        m_path.close();
        m_canvas.fillPath(m_path, m_color);
        m_path = Path();
        return *this;
    }
    Pen& stroke(float width) {
        m_canvas.strokePath(m_path, m_color, width);
        m_path = Path();
        return *this;
    }
    Pen& dot(float x, float y, float radius) {
        const Point middle = place(x, y);
        m_canvas.fillPath(
            Path::ellipse({{middle.x - radius, middle.y - radius}, {2.0F * radius, 2.0F * radius}}),
            m_color);
        return *this;
    }
    Pen& box(float x, float y, float width, float height, float radius) {
        const Point corner = place(x, m_canvas.isFlipped() ? y : y + height);
        m_canvas.fillPath(Path::roundedRect({corner, {width, height}}, radius), m_color);
        return *this;
    }

private:
    Point place(float x, float y) const {
        return {m_origin.x + x, m_canvas.isFlipped() ? m_origin.y + y : m_origin.y - y};
    }

    Canvas& m_canvas;
    const Point m_origin;
    const Color m_color;
    Path m_path;
};

}  // namespace

void drawPlayIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen(canvas, upperLeft, color)
        .at(4.5F, 2.8F)
        .curve({4.5F, 2.1F}, {5.0F, 1.7F}, {5.6F, 2.1F})
        .to(13.4F, 7.4F)
        .curve({13.9F, 7.7F}, {13.9F, 8.3F}, {13.4F, 8.6F})
        .to(5.6F, 13.9F)
        .curve({5.0F, 14.3F}, {4.5F, 13.9F}, {4.5F, 13.2F})
        .fill();
}

void drawStopIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen(canvas, upperLeft, color).box(3.0F, 3.0F, 10.0F, 10.0F, 1.5F);
}

void drawReturnIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen(canvas, upperLeft, color)
        .box(2.4F, 2.8F, 1.8F, 10.4F, 0.9F)
        .at(13.0F, 3.4F)
        .curve({13.0F, 2.8F}, {12.6F, 2.6F}, {12.1F, 2.9F})
        .to(5.5F, 7.4F)
        .curve({5.1F, 7.7F}, {5.1F, 8.3F}, {5.5F, 8.6F})
        .to(12.1F, 13.1F)
        .curve({12.6F, 13.4F}, {13.0F, 13.2F}, {13.0F, 12.6F})
        .fill();
}

void drawLoopIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen(canvas, upperLeft, color)
        .at(4.6F, 12.2F)
        .to(9.8F, 12.2F)
        .curve({12.0F, 12.2F}, {13.7F, 10.5F}, {13.7F, 8.3F})
        .stroke(1.7F)
        .at(11.4F, 4.2F)
        .to(6.2F, 4.2F)
        .curve({4.0F, 4.2F}, {2.3F, 5.9F}, {2.3F, 8.1F})
        .stroke(1.7F)
        .at(10.4F, 1.5F)
        .to(13.8F, 4.2F)
        .to(10.4F, 6.9F)
        .fill()
        .at(5.6F, 9.5F)
        .to(2.2F, 12.2F)
        .to(5.6F, 14.9F)
        .fill();
}

void drawPlusIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen(canvas, upperLeft, color)
        .box(7.15F, 3.0F, 1.7F, 10.0F, 0.8F)
        .box(3.0F, 7.15F, 10.0F, 1.7F, 0.8F);
}

void drawCloseIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen(canvas, upperLeft, color)
        .at(4.2F, 4.2F)
        .to(11.8F, 11.8F)
        .at(11.8F, 4.2F)
        .to(4.2F, 11.8F)
        .stroke(1.6F);
}

void drawMoreIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen pen(canvas, upperLeft, color);
    for (const float x : {3.5F, 8.0F, 12.5F})
        pen.dot(x, 8.0F, 1.35F);
}

void drawKeysIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen pen(canvas, upperLeft, color);
    pen.at(2.0F, 3.5F).to(14.0F, 3.5F).to(14.0F, 12.5F).to(2.0F, 12.5F).to(2.0F, 2.8F).stroke(1.4F);
    for (const float x : {6.0F, 10.0F}) {
        pen.box(x - 1.1F, 3.5F, 2.2F, 5.0F, 0.0F);
        pen.box(x - 0.5F, 8.0F, 1.0F, 4.5F, 0.0F);
    }
}

void drawWarningIcon(Canvas& canvas, Point upperLeft, Color color) {
    Pen(canvas, upperLeft, color)
        .at(1.8F, 13.1F)
        .to(8.0F, 2.2F)
        .to(14.2F, 13.1F)
        .to(1.8F, 13.1F)
        .to(8.0F, 2.2F)
        .stroke(1.6F)
        .box(7.2F, 6.2F, 1.6F, 3.4F, 0.8F)
        .dot(8.0F, 11.2F, 0.95F);
}

void drawClipIcon(Canvas& canvas, Point upperLeft, Color /*color*/) {
    Pen(canvas, upperLeft, theme(Appearance::Dark).clip).dot(8.0F, 8.0F, 4.5F);
}

void strokeDashed(Canvas& canvas, const Rect& rect, float radius, Color color, float width) {
    const float line = deviceWidth(canvas, width);
    const Rect middle = canvas.alignedToDevice(rect).inset(line * 0.5F, line * 0.5F);
    // The outline as a polygon, of which every other part is drawn.
    std::vector<Point> outline;
    const Point corners[] = {{middle.maxX(), middle.minY()},
                             {middle.maxX(), middle.maxY()},
                             {middle.minX(), middle.maxY()},
                             {middle.minX(), middle.minY()}};
    constexpr int kSteps = 8;  // of a corner
    for (int corner = 0; corner < 4; ++corner) {
        const bool isRight = corner < 2;
        const bool isFar = corner == 1 || corner == 2;
        const Point turn{corners[corner].x + (isRight ? -radius : radius),
                         corners[corner].y + (isFar ? -radius : radius)};
        for (int step = 0; step <= kSteps; ++step) {
            const float angle = std::numbers::pi_v<float> * 0.5F *
                                (static_cast<float>(corner) - 1.0F +
                                 static_cast<float>(step) / static_cast<float>(kSteps));
            outline.push_back(
                {turn.x + radius * std::cos(angle), turn.y + radius * std::sin(angle)});
        }
    }
    outline.push_back(outline.front());
    Path dashes;
    bool isDash = true;
    float left = kDash;  // of the present dash or gap
    dashes.moveTo(outline.front());
    for (std::size_t i = 1; i < outline.size(); ++i) {
        Point from = outline[i - 1];
        const Point to = outline[i];
        float way = std::hypot(to.x - from.x, to.y - from.y);
        while (way > left) {
            const float part = left / way;
            from = {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
            way -= left;
            if (isDash) {
                dashes.lineTo(from);
            } else {
                dashes.moveTo(from);
            }
            isDash = !isDash;
            left = isDash ? kDash : kDashGap;
        }
        left -= way;
        if (isDash) dashes.lineTo(to);
    }
    canvas.strokePath(dashes, color, line);
}

}  // namespace veltra::console
