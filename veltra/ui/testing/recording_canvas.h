// SPDX-License-Identifier: MIT
// A surface that notes what is drawn on it, and images made on such surfaces.
#pragma once

#include "veltra/ui/canvas.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace veltra::testing {

class RecordingCanvas final : public CanvasPort {
public:
    enum class What { FillRect, FillPath, StrokePath, Image, Text };

    struct Call {
        What what;
        Rect rect;  // on the surface; of a path, the rectangle around its points
        Rect clip;  // in force
        Color color{};
        const veltra::Image* image = nullptr;
        Rect source{};
        std::string text{};
        bool isSmoothed = true;
        StyledText styled{};
        bool isAtTop = false;
        // Another number for other points of a path, end of a gradient, line width or alpha.
        double fingerprint = 0.0;
        std::vector<Call> drawn{};  // what is on an image that was drawn on such a surface
    };

    explicit RecordingCanvas(float scale = 1.0F) : m_scale(scale) {}

    std::vector<Call> calls;

    // Those of one kind.
    static std::vector<Call> only(What what, const std::vector<Call>& calls) {
        std::vector<Call> found;
        for (const Call& call : calls) {
            if (call.what == what) found.push_back(call);
        }
        return found;
    }

    // The rectangle around the points of a path.
    static Rect around(const Path& path) {
        constexpr int kPoints[] = {1, 1, 3, 0};
        float left = 1e9F;
        float top = 1e9F;
        float right = -1e9F;
        float bottom = -1e9F;
        for (const Path::Element& element : path.elements()) {
            for (int i = 0; i < kPoints[static_cast<int>(element.verb)]; ++i) {
                left = std::min(left, element.points[i].x);
                right = std::max(right, element.points[i].x);
                top = std::min(top, element.points[i].y);
                bottom = std::max(bottom, element.points[i].y);
            }
        }
        return {{left, top}, {right - left, bottom - top}};
    }

    void saveState() override { m_states.push_back(m_state); }
    void restoreState() override {
        m_state = m_states.back();
        m_states.pop_back();
    }
    void clipTo(const Rect& rect) override { m_state.clip = m_state.clip.intersection(rect); }
    void setFontSmoothing(bool isOn) override { m_state.isSmoothed = isOn; }
    float scale() const override { return m_scale; }
    Rect alignedToDevice(const Rect& rect) const override {
        const auto align = [this](float value) { return std::round(value * m_scale) / m_scale; };
        const float left = align(rect.minX());
        const float top = align(rect.minY());
        return {{left, top}, {align(rect.maxX()) - left, align(rect.maxY()) - top}};
    }

    void fillRect(const Rect& rect, Color color) override {
        note(What::FillRect, rect).color = color;
    }
    void fillPath(const Path& path, Color color) override {
        note(What::FillPath, path, {}).color = color;
    }
    void fillPath(const Path& path, const LinearGradient& gradient) override {
        const auto& [from, to, start, end] = gradient;
        note(What::FillPath, path,
             {to.red, to.green, to.blue, to.alpha, start.x, start.y, end.x, end.y})
            .color = from;
    }
    void strokePath(const Path& path, Color color, float lineWidth) override {
        note(What::StrokePath, path, {lineWidth}).color = color;
    }
    void drawImage(const veltra::Image& image, const Rect& source, const Rect& destination,
                   float alpha) override;
    void drawText(const StyledText& text, const Rect& rect, TextPlacement placement) override {
        const bool isAtTop = placement == TextPlacement::Top;
        Call& call =
            note(What::Text,
                 {rect.origin, {rect.size.width, isAtTop ? text.size().height : rect.size.height}});
        call.text = text.string;
        call.styled = text;
        call.isAtTop = isAtTop;
        call.color = text.color;
    }

private:
    struct State {
        Rect clip{{-1e6F, -1e6F}, {2e6F, 2e6F}};
        bool isSmoothed = true;
    };

    Call& note(What what, const Rect& rect) {
        calls.push_back({what, rect, m_state.clip});
        calls.back().isSmoothed = m_state.isSmoothed;
        return calls.back();
    }
    Call& note(What what, const Path& path, std::vector<float> numbers) {
        for (const Path::Element& element : path.elements()) {
            for (const Point point : element.points)
                numbers.insert(numbers.end(), {point.x, point.y});
        }
        Call& call = note(what, around(path));
        for (std::size_t i = 0; i < numbers.size(); ++i)
            call.fingerprint += static_cast<double>(numbers[i]) * static_cast<double>(i + 1);
        return call;
    }

    const float m_scale;
    State m_state;
    std::vector<State> m_states;
};

class RecordedImage final : public Image {
public:
    RecordedImage(std::int32_t pixelWidth, std::int32_t pixelHeight, float scale)
        : canvas(scale),
          m_size{static_cast<float>(pixelWidth) / scale, static_cast<float>(pixelHeight) / scale} {}

    RecordingCanvas canvas;

    Size size() const noexcept override { return m_size; }
    float scale() const noexcept override { return canvas.scale(); }
    std::uint32_t pixelAt(std::int32_t /*x*/, std::int32_t /*y*/) const noexcept override {
        return 0;
    }
    bool writePng(const std::string& /*path*/) const override { return false; }

private:
    const Size m_size;
};

inline void RecordingCanvas::drawImage(const veltra::Image& image, const Rect& source,
                                       const Rect& destination, float alpha) {
    Call& call = note(What::Image, destination);
    call.image = &image;
    call.source = source;
    call.fingerprint = static_cast<double>(alpha);
    if (const auto* recorded = dynamic_cast<const RecordedImage*>(&image))
        call.drawn = recorded->canvas.calls;
}

}  // namespace veltra::testing
