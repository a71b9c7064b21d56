// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/detail/meter_drawing.h"

#include "veltra/controls/level_meters/detail/picture_cache.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/port.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veltra::detail {

namespace {

constexpr float kMaximumLine = 2.0F;  // points: the held maximum of a continuous bar

LevelMeterPicture pictureOf(const std::shared_ptr<const LevelMeterLook>& look, MeterPart part,
                            const MeterArea& area, LevelMeterPictureRequest request) {
    if (area.isEmpty()) return {};
    request.length = area.high - area.low;
    request.thickness = area.far - area.near;
    return meterPicture({look, part, request}, [&] {
        return part == MeterPart::Bar ? look->bar(request) : look->light(request);
    });
}

}  // namespace

void MeterDrawing::fit(const MeterLooks& looks, Size frame,
                       const LevelMeterPictureRequest& request) {
    const UiPort* const port = &UiPort::current();
    // In points the same frame differs by roundings, from one place of a view to the next.
    const std::pair pixels(devicePixels(frame.width, request.scale),
                           devicePixels(frame.height, request.scale));
    const bool fits = m_bar.off && port == m_port && looks == m_looks && pixels == m_pixels &&
                      request == m_request;
    if (fits) return;
    m_port = port;
    m_looks = looks;
    m_pixels = pixels;
    m_request = request;
    m_glass = devicePixels(looks.bar->measures(request.orientation).glass, request.scale);
    m_layout = MeterLayout::make(frame, *looks.bar, *looks.light, request);
    m_bar = pictureOf(looks.bar, MeterPart::Bar, m_layout.bar, request);
    LevelMeterPictureRequest ofLight = request;
    ofLight.ledCount = 0;
    ofLight.ledPitch = 0;
    m_light = pictureOf(looks.light, MeterPart::Light, m_layout.light, ofLight);
    m_column = sharedColumn();
}

// Equal meters share it: the fewer pictures, the more of them are near the processor.
LevelMeterPicture MeterDrawing::sharedColumn() const {
    if (!m_bar.off || !m_bar.on || !m_light.off || m_bar.ground == kClear) return {};
    const MeterArea& bar = m_layout.bar;
    LevelMeterPictureRequest request = m_request;
    request.length = bar.high - bar.low;
    request.thickness = bar.far - bar.near;
    const std::int32_t rest = bar.low - column().low;
    return meterPicture({m_looks.bar, MeterPart::Column, request, m_looks.light, rest}, [this] {
        return LevelMeterPicture{columnPicture(*m_bar.off), columnPicture(*m_bar.on)};
    });
}

// An LED is lit when the level is above the place where the LED begins.
std::int32_t MeterDrawing::litLeds(float level) const {
    constexpr float kRounding = 1e-3F;  // of an LED: levels that stand exactly on its beginning
    const float part = std::clamp(level, 0.0F, 1.0F);
    if (part == 0.0F) return 0;
    const float leds = part * static_cast<float>(m_bar.ledCount);
    return std::max(static_cast<std::int32_t>(std::ceil(leds - kRounding)), 1);
}

// In device pixels from the low end.
std::int32_t MeterDrawing::endOf(float part) const {
    const auto room = static_cast<float>(m_bar.end - m_bar.start);
    return m_bar.start + static_cast<std::int32_t>(std::lround(part * room));
}

std::int32_t MeterDrawing::endOfLeds(std::int32_t count) const {
    return endOf(static_cast<float>(count) / static_cast<float>(m_bar.ledCount));
}

std::int32_t MeterDrawing::litEnd(float level) const {
    return m_bar.ledCount > 0 ? endOfLeds(litLeds(level)) : endOf(std::clamp(level, 0.0F, 1.0F));
}

Rect MeterDrawing::rectOfLevels(const Rect& frame, bool isFlipped) const {
    const MeterArea& bar = m_layout.bar;
    return m_layout.inView(bar.part(bar.low + m_bar.start, bar.low + m_bar.end), frame, isFlipped);
}

Rect MeterDrawing::rectOfMeter(const Rect& frame, bool isFlipped) const {
    return m_layout.inView(m_layout.whole(), frame, isFlipped);
}

Rect MeterDrawing::opaqueRect(const Rect& frame, bool isFlipped) const {
    if (!m_column.off || m_bar.ground.alpha != 1.0F) return {};
    return m_layout.inView(column(), frame, isFlipped);
}

// All that is drawn on, and the glass in the room that the bar leaves empty.
MeterArea MeterDrawing::column() const {
    const MeterArea whole = m_layout.whole();
    return whole.part(std::max(whole.low - m_glass, 0), whole.high);
}

// One image is drawn faster than what it is put together from.
std::shared_ptr<const Image> MeterDrawing::columnPicture(const Image& bar) const {
    const MeterArea all = column();
    const MeterArea moved{0, all.high - all.low, 0, all.far - all.near};
    const Rect place = meterRect(moved, m_layout.orientation, moved.high, m_layout.scale);
    return Image::drawn(place.size, m_layout.scale, [&](Canvas& canvas) {
        canvas.fillRect(place, m_bar.ground);
        const auto draw = [&](const Image& image, const MeterArea& area) {
            const MeterArea at{area.low - all.low, area.high - all.low, area.near - all.near,
                               area.far - all.near};
            canvas.drawImage(
                image, meterRect(at, m_layout.orientation, moved.high, m_layout.scale).origin);
        };
        draw(bar, m_layout.bar);
        draw(*m_light.off, m_layout.light);
    });
}

void MeterDrawing::drawPart(Canvas& canvas, const Rect& place, const Image* image,
                            const MeterArea& whole, const MeterArea& part, float alpha) const {
    if (image == nullptr || part.isEmpty()) return;
    const MeterArea inImage{part.low - whole.low, part.high - whole.low, part.near - whole.near,
                            part.far - whole.near};
    canvas.drawImage(
        *image, meterRect(inImage, m_layout.orientation, whole.high - whole.low, m_layout.scale),
        m_layout.inView(part, place, canvas.isFlipped()), alpha);
}

// Where there is no column: all that is not lit.
void MeterDrawing::drawUnlit(Canvas& canvas, const Rect& place) const {
    const MeterArea& bar = m_layout.bar;
    const MeterArea& light = m_layout.light;
    const auto fill = [&](const MeterArea& area) {
        if (m_bar.ground != kClear && !area.isEmpty())
            canvas.fillRect(m_layout.inView(area, place, canvas.isFlipped()), m_bar.ground);
    };
    fill(bar.part(std::max(bar.low - m_glass, 0), bar.low));
    drawPart(canvas, place, m_bar.off.get(), bar, bar);
    if (!light.isEmpty()) fill(bar.part(bar.high, light.low));
    drawPart(canvas, place, m_light.off.get(), light, light);
}

// Where the held maximum is shown; empty without one.
LevelMeterSpan MeterDrawing::maximumLine(float maximum) const {
    const std::int32_t top = litEnd(maximum);
    if (top <= m_bar.start) return {};
    if (m_bar.ledCount > 0) return {endOfLeds(litLeds(maximum) - 1), top};
    const std::int32_t thickness = devicePixels(kMaximumLine, m_layout.scale);
    LevelMeterSpan line{std::max(top - thickness, m_bar.start), top};
    for (const LevelMeterSpan& gap : m_bar.gaps) {
        if (line.low < gap.high && line.high > gap.low) line = {gap.high, gap.high + thickness};
    }
    return {line.low, std::min(line.high, m_bar.end)};
}

void MeterDrawing::draw(Canvas& canvas, const Rect& place, const MeterState& state) const {
    constexpr float kSoft = 0.45F;  // of what is lit above the RMS level
    const MeterArea& bar = m_layout.bar;
    const std::int32_t inset = devicePixels(state.inset, m_layout.scale);
    const auto drawLit = [&](std::int32_t low, std::int32_t high, float alpha = 1.0F) {
        drawPart(canvas, place, m_bar.on.get(), bar,
                 bar.part(bar.low + low, bar.low + high).inset(inset), alpha);
    };
    const std::int32_t end = litEnd(state.level);
    const std::int32_t full = state.rms ? std::min(litEnd(*state.rms), end) : end;
    if (m_column.off) {
        const MeterArea all = column();
        // What a lit part covers need not be drawn unlit, unless that shows around it.
        const bool covers = inset == 0 && m_bar.start == 0 && full > 0;
        const std::int32_t border = covers ? bar.low + full : all.low;
        drawPart(canvas, place, m_column.off.get(), all, all.part(border, all.high));
        drawPart(canvas, place, m_column.on.get(), all, all.part(all.low, border));
        if (!covers) drawLit(m_bar.start, full);
    } else {
        drawUnlit(canvas, place);
        drawLit(m_bar.start, full);
    }
    drawLit(full, end, kSoft);
    const LevelMeterSpan line = maximumLine(state.maximum);
    drawLit(line.low, line.high);
    if (state.isClipped) drawPart(canvas, place, m_light.on.get(), m_layout.light, m_layout.light);
}

}  // namespace veltra::detail
