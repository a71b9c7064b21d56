// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/detail/drawn_look.h"

#include "veltra/controls/level_meters/detail/meter_layout.h"
#include "veltra/ui/canvas.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace veltra::detail {

namespace {

// Fills areas of a picture in either orientation.
class Brush {
public:
    Brush(Canvas& canvas, const LevelMeterPictureRequest& request)
        : m_canvas(canvas),
          m_request(request),
          m_isVertical(request.orientation == LevelMeterOrientation::Vertical) {}

    void fill(const MeterArea& area, Color color) {
        if (!area.isEmpty()) m_canvas.fillRect(rect(area), color);
    }

    // From `edge` at the sides to `middle` half-way across.
    void fillRounded(const MeterArea& area, Color edge, Color middle) {
        if (area.isEmpty()) return;
        const std::int32_t half = (area.near + area.far) / 2;
        shade({area.low, area.high, area.near, half}, edge, middle);
        shade({area.low, area.high, half, area.far}, middle, edge);
    }

private:
    Rect rect(const MeterArea& area) const {
        return meterRect(area, m_request.orientation, m_request.length, m_request.scale);
    }

    void shade(const MeterArea& area, Color from, Color to) {
        if (area.isEmpty()) return;
        const Rect place = rect(area);
        const Point end =
            m_isVertical ? Point{place.maxX(), place.minY()} : Point{place.minX(), place.maxY()};
        m_canvas.fillPath(Path::rect(place), LinearGradient{from, to, place.origin, end});
    }

    Canvas& m_canvas;
    const LevelMeterPictureRequest& m_request;
    const bool m_isVertical;
};

// The well is dark in both appearances: lit LEDs need a dark ground to stand out.
struct Palette {
    Color frame;
    Color rim;  // where the light falls on the frame: the far and the low side
    Color well;
};

Palette paletteFor(Appearance appearance) {
    if (appearance == Appearance::Dark)
        return {Color::fromRgb(0x07080A), Color::fromRgb(0x2B2F36), Color::fromRgb(0x0F1114)};
    return {Color::fromRgb(0x0E1013), Color::fromRgb(0xB4B9C1), Color::fromRgb(0x171A1F)};
}

constexpr float kUnlitPart = 0.14F;  // of the lit colour in an unlit LED
constexpr float kGlowPart = 0.30F;   // of the lit colour in the gap above a lit LED
constexpr float kShade = 0.10F;      // of black at the sides of what is lit
constexpr float kShine = 0.18F;      // of white in its middle
constexpr float kBlend = 0.02F;      // half the way from one zone's colour to the next, continuous

MeterArea whole(const LevelMeterPictureRequest& request) {
    return {0, request.length, 0, request.thickness};
}

// Thin lines rather too thin than too thick.
std::int32_t edgePixels(float edge, float scale) {
    return edge > 0.0F ? std::max(static_cast<std::int32_t>(edge * scale), 1) : 0;
}

// From the sides of the picture to the LEDs. Thin meters leave out the padding.
std::int32_t insetOf(const LevelMeterStyle& style, const LevelMeterPictureRequest& request) {
    constexpr float kThin = 8.5F;  // points
    const bool isThin = static_cast<float>(request.thickness) < kThin * request.scale;
    return edgePixels(style.edge, request.scale) +
           (isThin ? 0 : devicePixels(style.padding, request.scale));
}

// The well with its frame; answers the area inside.
MeterArea drawWell(Brush& brush, const LevelMeterPictureRequest& request, float edge) {
    const Palette palette = paletteFor(request.appearance);
    const MeterArea all = whole(request);
    const std::int32_t frame = edgePixels(edge, request.scale);
    const MeterArea inside = all.inset(frame);
    brush.fill(all, palette.frame);
    if (frame > 0) {
        const bool isVertical = request.orientation == LevelMeterOrientation::Vertical;
        brush.fill({all.low, all.high, all.far - frame, all.far}, palette.rim);
        if (isVertical)
            brush.fill({all.low, frame, all.near, all.far}, palette.rim);
        else
            brush.fill({all.high - frame, all.high, all.near, all.far}, palette.rim);
    }
    brush.fill(inside, palette.well);
    return inside;
}

std::shared_ptr<const Image> drawnImage(const LevelMeterPictureRequest& request,
                                        const std::function<void(Brush&)>& draw) {
    const MeterArea all = whole(request);
    return Image::drawn(meterRect(all, request.orientation, request.length, request.scale).size,
                        request.scale, [&](Canvas& canvas) {
                            Brush brush(canvas, request);
                            draw(brush);
                        });
}

// LEDs of whole pixels; what is left over is shared by both ends.
struct Leds {
    std::int32_t start = 0;
    std::int32_t pitch = 0;
    std::int32_t gap = 0;
    std::int32_t count = 0;
};

Leds layOutLeds(std::int32_t room, const LevelMeterPictureRequest& request) {
    Leds leds;
    if (room <= 0) return leds;
    const std::int32_t fullGap = devicePixels(1.0F, request.scale);
    const auto gapOf = [fullGap](std::int32_t pitch) {
        return pitch >= 3 * fullGap ? fullGap : std::min(pitch / 2, 1);
    };
    if (request.ledPitch > 0) {
        leds.pitch = request.ledPitch;
        leds.gap = gapOf(leds.pitch);
        leds.count = (room + leds.gap) / leds.pitch;
    } else if (request.ledCount > 0 && request.ledCount <= static_cast<std::uint32_t>(room)) {
        leds.count = static_cast<std::int32_t>(request.ledCount);
        leds.pitch = (room + fullGap) / leds.count;
        leds.gap = gapOf(leds.pitch);
        if (leds.pitch * leds.count - leds.gap > room) leds.pitch = room / leds.count;
    }
    if (leds.count > 0) leds.start = (room - (leds.pitch * leds.count - leds.gap)) / 2;
    return leds;
}

}  // namespace

DrawnLook::DrawnLook(LevelMeterStyle style) : m_style(std::move(style)) {}

LevelMeterMeasures DrawnLook::measures(LevelMeterOrientation /*orientation*/) const {
    return {0.0F, m_style.thickness, m_style.lightLength, m_style.lightGap};
}

std::int32_t DrawnLook::fittingLength(const LevelMeterPictureRequest& request) const {
    if (m_style.isContinuous) return request.length;
    const std::int32_t around = 2 * insetOf(m_style, request);
    const Leds leds = layOutLeds(request.length - around, request);
    return leds.count > 0 ? leds.count * leds.pitch - leds.gap + around : request.length;
}

Color DrawnLook::colorAt(float position, LevelMeterLevels levels) const {
    Color color = m_style.zones.empty() ? kWhite : m_style.zones.front().color;
    for (const LevelMeterZone& zone : m_style.zones) {
        if (position >= meterPositionOfDecibels(zone.decibels, levels)) color = zone.color;
    }
    return color;
}

Color DrawnLook::blendedColorAt(float position, LevelMeterLevels levels) const {
    for (const LevelMeterZone& zone : m_style.zones) {
        const float start = meterPositionOfDecibels(zone.decibels, levels);
        const float part = (position - start + kBlend) / (2.0F * kBlend);
        if (start > 0.0F && part > 0.0F && part < 1.0F)
            return colorAt(start - kBlend, levels).mixedWith(zone.color, part);
    }
    return colorAt(position, levels);
}

LevelMeterPicture DrawnLook::bar(const LevelMeterPictureRequest& request) const {
    const std::int32_t inset = insetOf(m_style, request);
    const std::int32_t room = request.length - 2 * inset;
    const Leds leds = m_style.isContinuous ? Leds{} : layOutLeds(room, request);
    LevelMeterPicture picture;
    picture.start = std::min(inset + leds.start, request.length);
    picture.end = leds.count > 0 ? picture.start + leds.count * leds.pitch
                                 : std::max(request.length - inset, picture.start);
    picture.ledCount = static_cast<std::uint32_t>(leds.count);

    const Color well = paletteFor(request.appearance).well;
    const auto drawLeds = [&](Brush& brush, const MeterArea& inside, bool isLit) {
        for (std::int32_t i = 0; i < leds.count; ++i) {
            const float middle = (static_cast<float>(i) + 0.5F) / static_cast<float>(leds.count);
            const Color color = colorAt(middle, request.levels);
            const std::int32_t low = picture.start + i * leds.pitch;
            const MeterArea led = inside.part(low, low + leds.pitch - leds.gap);
            if (isLit) {
                const MeterArea gap =
                    inside.part(led.high, std::min(led.high + leds.gap, inside.high));
                brush.fillRounded(gap, well, well.mixedWith(color, kGlowPart));
                brush.fillRounded(led, color.mixedWith(kBlack, kShade),
                                  color.mixedWith(kWhite, kShine));
            } else {
                brush.fill(led, well.mixedWith(color, kUnlitPart));
            }
        }
    };
    const auto drawContinuous = [&](Brush& brush, const MeterArea& inside, bool isLit) {
        const auto length = static_cast<float>(picture.end - picture.start);
        for (std::int32_t low = picture.start; low < picture.end; ++low) {
            const float position = (static_cast<float>(low - picture.start) + 0.5F) / length;
            const Color color = blendedColorAt(position, request.levels);
            const MeterArea slice = inside.part(low, low + 1);
            if (isLit) {
                brush.fillRounded(slice, color.mixedWith(kBlack, kShade),
                                  color.mixedWith(kWhite, kShine));
            } else {
                brush.fill(slice, well.mixedWith(color, kUnlitPart * 0.6F));
            }
        }
        const std::int32_t width = devicePixels(1.0F, request.scale);
        for (const double mark : m_style.marks) {
            const float position = meterPositionOfDecibels(mark, request.levels);
            const std::int32_t low =
                picture.start + static_cast<std::int32_t>(std::lround(position * length));
            const Color line = isLit ? kBlack.withAlpha(0.42F) : kWhite.withAlpha(0.20F);
            brush.fill(inside.part(low, std::min(low + width, picture.end)), line);
        }
    };
    const auto drawn = [&](bool isLit) {
        return drawnImage(request, [&](Brush& brush) {
            drawWell(brush, request, m_style.edge);
            const MeterArea inside = whole(request).inset(inset);
            if (leds.count > 0)
                drawLeds(brush, inside, isLit);
            else
                drawContinuous(brush, inside, isLit);
        });
    };
    picture.off = drawn(false);
    picture.on = drawn(true);
    return picture;
}

LevelMeterPicture DrawnLook::light(const LevelMeterPictureRequest& request) const {
    const auto drawn = [&](bool isLit) {
        return drawnImage(request, [&](Brush& brush) {
            const MeterArea inside = drawWell(brush, request, m_style.edge);
            const Color well = paletteFor(request.appearance).well;
            const Color color = m_style.lightColor;
            if (!isLit) {
                brush.fill(whole(request).inset(insetOf(m_style, request)),
                           well.mixedWith(color, kUnlitPart));
                return;
            }
            brush.fill(inside, color);
            const std::int32_t side =
                std::max(std::min(inside.high - inside.low, inside.far - inside.near) / 4, 1);
            brush.fillRounded(inside.inset(side), color.mixedWith(kWhite, 0.55F), kWhite);
        });
    };
    LevelMeterPicture picture;
    picture.off = drawn(false);
    picture.on = drawn(true);
    return picture;
}

}  // namespace veltra::detail
