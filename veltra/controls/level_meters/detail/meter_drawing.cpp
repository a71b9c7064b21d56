// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/detail/meter_drawing.h"

#include "veltra/controls/level_meters/detail/picture_cache.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/port.h"

#include <algorithm>
#include <cmath>

namespace veltra::detail {

namespace {

constexpr float kMaximumLine = 2.0F;  // points: the held maximum of a continuous bar

LevelMeterPicture pictureOf(const std::shared_ptr<const LevelMeterLook>& look, MeterPart part,
                            const MeterArea& area, LevelMeterPictureRequest request) {
    if (area.isEmpty()) return {};
    request.length = area.high - area.low;
    request.thickness = area.far - area.near;
    return meterPicture(look, part, request);
}

}  // namespace

void MeterDrawing::fit(const MeterLooks& looks, Size frame,
                       const LevelMeterPictureRequest& request) {
    const UiPort* const port = &UiPort::current();
    const bool fits =
        m_bar.off && port == m_port && looks == m_looks && frame == m_frame && request == m_request;
    if (fits) return;
    m_port = port;
    m_looks = looks;
    m_frame = frame;
    m_request = request;
    m_layout = MeterLayout::make(frame, *looks.bar, *looks.light, request);
    m_bar = pictureOf(looks.bar, MeterPart::Bar, m_layout.bar, request);
    LevelMeterPictureRequest ofLight = request;
    ofLight.ledCount = 0;
    m_light = pictureOf(looks.light, MeterPart::Light, m_layout.light, ofLight);
}

// Where the lit part of the bar ends, in device pixels: after whole LEDs.
std::int32_t MeterDrawing::litEnd(float level) const {
    float part = std::clamp(level, 0.0F, 1.0F);
    if (m_bar.ledCount > 0) {
        const auto count = static_cast<float>(m_bar.ledCount);
        part = std::round(part * count) / count;
    }
    const auto room = static_cast<float>(m_bar.end - m_bar.start);
    return m_bar.start + static_cast<std::int32_t>(std::lround(part * room));
}

void MeterDrawing::drawPart(Canvas& canvas, const Rect& place, const Image* image,
                            const MeterArea& whole, const MeterArea& part) const {
    if (image == nullptr || part.isEmpty()) return;
    const MeterArea inImage{part.low - whole.low, part.high - whole.low, part.near - whole.near,
                            part.far - whole.near};
    canvas.drawImage(
        *image, meterRect(inImage, m_layout.orientation, whole.high - whole.low, m_layout.scale),
        m_layout.inView(part, place, canvas.isFlipped()));
}

void MeterDrawing::draw(Canvas& canvas, const Rect& place, const MeterState& state) const {
    const MeterArea& bar = m_layout.bar;
    drawPart(canvas, place, m_bar.off.get(), bar, bar);

    const std::int32_t inset = devicePixels(state.inset, m_layout.scale);
    const auto drawLit = [&](std::int32_t low, std::int32_t high) {
        drawPart(canvas, place, m_bar.on.get(), bar,
                 bar.part(bar.low + low, bar.low + high).inset(inset));
    };
    drawLit(m_bar.start, litEnd(state.level));
    const std::int32_t top = litEnd(state.maximum);
    if (top > m_bar.start) {
        const std::int32_t line =
            m_bar.ledCount > 0
                ? top - litEnd(state.maximum - 1.0F / static_cast<float>(m_bar.ledCount))
                : devicePixels(kMaximumLine, m_layout.scale);
        drawLit(std::max(top - line, m_bar.start), top);
    }
    const Image* const light = (state.isClipped ? m_light.on : m_light.off).get();
    drawPart(canvas, place, light, m_layout.light, m_layout.light);
}

}  // namespace veltra::detail
