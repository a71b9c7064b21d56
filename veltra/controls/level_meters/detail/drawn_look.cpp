// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/detail/drawn_look.h"

#include "veltra/controls/level_meters/detail/meter_layout.h"
#include "veltra/controls/level_meters/level_meter_scale.h"
#include "veltra/ui/canvas.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace veltra::detail {

namespace {

constexpr float kRowPitch = 4.0F;   // points: what zones of a bar without LEDs stand on
constexpr float kThinPart = 0.30F;  // of the width, that a muted signal leaves on either side
constexpr float kThinLeast = 2.0F;  // points
constexpr float kThinMost = 0.45F;  // of the width, that it fills

// Fills areas of a picture in either orientation.
class Brush {
public:
    Brush(Canvas& canvas, const LevelMeterPictureRequest& request)
        : m_canvas(canvas), m_request(request) {}

    void fill(const MeterArea& area, Color color) {
        if (!area.isEmpty()) m_canvas.fillRect(rect(area), color);
    }

    // `radius` in points.
    void fillRounded(const MeterArea& area, float radius, Color color) {
        if (!area.isEmpty()) m_canvas.fillPath(Path::roundedRect(rect(area), radius), color);
    }

private:
    Rect rect(const MeterArea& area) const {
        return meterRect(area, m_request.orientation, m_request.length, m_request.scale);
    }

    Canvas& m_canvas;
    const LevelMeterPictureRequest& m_request;
};

MeterArea whole(const LevelMeterPictureRequest& request) {
    return {0, request.length, 0, request.thickness};
}

// What a muted signal fills of the width.
MeterArea thin(const MeterArea& area, float scale) {
    const std::int32_t width = area.far - area.near;
    const auto part = static_cast<std::int32_t>(std::lround(static_cast<float>(width) * kThinPart));
    std::int32_t side = std::max(part, devicePixels(kThinLeast, scale));
    if (static_cast<float>(width - 2 * side) > kThinMost * static_cast<float>(width)) ++side;
    side = std::min(side, std::max((width - 1) / 2, 0));
    return {area.low, area.high, area.near + side, area.far - side};
}

std::shared_ptr<const Image> drawnImage(const LevelMeterPictureRequest& request,
                                        const std::function<void(Brush&)>& draw) {
    const MeterArea all = whole(request);
    return Image::drawn(meterRect(all, request.orientation, request.length, request.scale).size,
                        request.scale, [&](Canvas& canvas) {
                            Brush brush(canvas, request);
                            brush.fill(all, theme(request.appearance).glass);
                            draw(brush);
                        });
}

// `index` of `count` steps from the low to the high end.
Color litColor(const SignalColors& colors, std::int32_t index, std::int32_t count) {
    const auto last = static_cast<float>(std::max(count - 1, 1));
    return colors.low.mixedWith(colors.high, static_cast<float>(index) / last);
}

}  // namespace

// What LEDs and zones stand on: rows of whole pixels.
struct DrawnLook::Rows {
    std::int32_t pitch = 0;
    std::int32_t count = 0;
    std::int32_t gap = 0;  // below each LED; twice that where a zone begins
    bool hasLeds = false;

    std::int32_t length(std::int32_t room) const { return count > 0 ? count * pitch : room; }
    std::int32_t doubleGap() const { return 2 * gap < pitch ? 2 * gap : gap; }
};

DrawnLook::DrawnLook(LevelMeterStyle style) : m_style(std::move(style)) {}

LevelMeterMeasures DrawnLook::measures(LevelMeterOrientation /*orientation*/) const {
    return {.thickness = m_style.thickness,
            .lightLength = m_style.lightLength,
            .lightGap = m_style.lightGap,
            .glass = m_style.glass};
}

DrawnLook::Rows DrawnLook::rowsFor(const LevelMeterPictureRequest& request) const {
    Rows rows;
    const std::int32_t room = request.length;
    if (request.ledPitch > 0) {
        rows.pitch = request.ledPitch;
        rows.count = room / rows.pitch;
    } else if (request.ledCount > 0 && request.ledCount <= static_cast<std::uint32_t>(room)) {
        rows.count = static_cast<std::int32_t>(request.ledCount);
        rows.pitch = room / rows.count;
    }
    rows.hasLeds = rows.count > 0 && !m_style.isContinuous;
    if (rows.count == 0) {
        rows.pitch = devicePixels(kRowPitch, request.scale);
        rows.count = room / rows.pitch;
    }
    // A point, rather too thin than too thick.
    const std::int32_t point = std::max(static_cast<std::int32_t>(request.scale + 0.01F), 1);
    rows.gap = rows.pitch >= 3 * point ? point : std::min(rows.pitch / 2, 1);
    return rows;
}

std::int32_t DrawnLook::fittingLength(const LevelMeterPictureRequest& request) const {
    return rowsFor(request).length(request.length);
}

LevelMeterPicture DrawnLook::bar(const LevelMeterPictureRequest& request) const {
    const Rows rows = rowsFor(request);
    LevelMeterPicture picture;
    picture.end = rows.length(request.length);
    picture.ledCount = rows.hasLeds ? static_cast<std::uint32_t>(rows.count) : 0;
    picture.rows = rows.count;
    picture.ground = theme(request.appearance).glass;

    for (std::size_t i = 1; !rows.hasLeds && i < m_style.zones.size(); ++i) {
        const std::int32_t low =
            rows.pitch * levelMeterRowsBelow(m_style.zones[i].decibels, rows.count, request.levels);
        picture.gaps.push_back({low, low + rows.doubleGap()});
    }

    const SignalColors& muted = theme(request.appearance).muted;
    const MeterArea bar = whole(request).part(0, picture.end);
    // A fill of the bar, or of its lit part. In steps of pixels, as the colours run.
    const auto fill = [&](Brush& brush, const MeterArea& area, const SignalColors& colors,
                          const MeterArea& zone, bool isLit) {
        const MeterArea lit = request.isMuted ? thin(area, request.scale) : area;
        const MeterArea run = request.isMuted ? bar : zone;
        if (!isLit || request.isMuted) brush.fill(area, colors.off);
        if (!isLit) return;
        if (rows.hasLeds) {
            const std::int32_t pitch = rows.pitch;
            const std::int32_t steps = (run.high - run.low) / pitch;
            return brush.fill(lit, litColor(colors, (area.low - run.low) / pitch, steps));
        }
        for (std::int32_t low = lit.low; low < lit.high; ++low) {
            brush.fill(lit.part(low, low + 1), litColor(colors, low - run.low, run.high - run.low));
        }
    };
    const auto drawZone = [&](Brush& brush, std::size_t index, bool isLit) {
        const auto begin = [&](std::size_t zone) {
            if (zone == 0 || zone >= m_style.zones.size()) return zone == 0 ? 0 : rows.count;
            return levelMeterRowsBelow(m_style.zones[zone].decibels, rows.count, request.levels);
        };
        const std::int32_t first = begin(index);
        const std::int32_t last = begin(index + 1);
        const SignalColors& colors = request.isMuted ? muted : m_style.zones[index].colors;
        const MeterArea zone = bar.part(first * rows.pitch, last * rows.pitch);
        const std::int32_t firstGap = first > 0 ? rows.doubleGap() : rows.gap;
        if (!rows.hasLeds)
            return fill(brush, zone.part(zone.low + firstGap, zone.high), colors, zone, isLit);
        for (std::int32_t row = first; row < last; ++row) {
            const std::int32_t low = row * rows.pitch;
            const std::int32_t gap = row == first ? firstGap : rows.gap;
            fill(brush, bar.part(low + gap, low + rows.pitch), colors, zone, isLit);
        }
    };
    const auto drawn = [&](bool isLit) {
        return drawnImage(request, [&](Brush& brush) {
            for (std::size_t zone = 0; zone < m_style.zones.size(); ++zone)
                drawZone(brush, zone, isLit);
        });
    };
    picture.off = drawn(false);
    picture.on = drawn(true);
    return picture;
}

LevelMeterPicture DrawnLook::light(const LevelMeterPictureRequest& request) const {
    constexpr float kRadius = 2.0F;
    constexpr float kCore = 2.0F;  // its thickness, and how far it stays from the sides
    const Theme& colors = theme(request.appearance);
    const auto drawn = [&](bool isLit) {
        return drawnImage(request, [&](Brush& brush) {
            const MeterArea all = whole(request);
            brush.fillRounded(all, kRadius, isLit ? colors.clip : colors.clipOff);
            if (!isLit) return;
            // Along the width of an upright meter, so across; at least one pixel long.
            const std::int32_t core = devicePixels(kCore, request.scale);
            const std::int32_t width = all.far - all.near;
            const std::int32_t side = std::min(core, (width - 1) / 2);
            const std::int32_t low = (all.high - core) / 2;
            brush.fillRounded({low, std::min(low + core, all.high), side, width - side}, 1.0F,
                              colors.clipCore);
        });
    };
    LevelMeterPicture picture;
    picture.off = drawn(false);
    picture.on = drawn(true);
    return picture;
}

}  // namespace veltra::detail
