// SPDX-License-Identifier: MIT
#include "speaker_circle.h"

#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/ui/canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veltra::console {

namespace {

constexpr float kLabelRoom = 17.0F;  // around the circle
constexpr float kLamp = 3.5F;        // radius
constexpr float kBrightest = 16.0F;

}  // namespace

SpeakerCircle::SpeakerCircle(const Rect& frame, ChannelPlan plan)
    : View(frame), m_plan(std::move(plan)), m_lights(m_plan.order.size()) {}

void SpeakerCircle::setPeaks(std::span<const float> peaks) {
    for (std::size_t i = 0; i < m_lights.size(); ++i) {
        const float position = i < peaks.size() ? meterPositionForAmplitude(peaks[i]) : 0.0F;
        const auto light =
            static_cast<std::uint8_t>(std::lround(std::clamp(position, 0.0F, 1.0F) * kBrightest));
        // Goes out step by step, as a lamp does.
        const auto dimmer = static_cast<std::uint8_t>(std::max(m_lights[i], std::uint8_t{1}) - 1);
        const std::uint8_t shown = std::max(light, dimmer);
        if (shown == m_lights[i]) continue;
        m_lights[i] = shown;
        setNeedsDisplay();
    }
}

// 0 degrees is ahead, which is up; what has no direction is in the middle.
Point SpeakerCircle::placeOf(ChannelID channel) const {
    const Point middle{0.5F * bounds().size.width, 0.5F * bounds().size.height};
    const float angle = GetAngleForChannel(m_plan.format, channel);
    if (angle == kNoDirection) return middle;
    const float radius = 0.5F * std::min(bounds().size.width, bounds().size.height) - kLabelRoom;
    const float radians = angle * std::numbers::pi_v<float> / 180.0F;
    return {middle.x + radius * std::sin(radians), middle.y - radius * std::cos(radians)};
}

void SpeakerCircle::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Point middle{0.5F * bounds().size.width, 0.5F * bounds().size.height};
    const float radius = 0.5F * std::min(bounds().size.width, bounds().size.height) - kLabelRoom;
    canvas.strokePath(
        Path::ellipse({{middle.x - radius, middle.y - radius}, {2.0F * radius, 2.0F * radius}}),
        systemColor(SystemColor::Separator), 1.0F);
    StyledText label{{},
                     Font::systemFont(9.0F),
                     systemColor(SystemColor::SecondaryLabel),
                     TextAlignment::Center};
    for (std::size_t i = 0; i < m_plan.order.size(); ++i) {
        const Point place = placeOf(m_plan.order[i]);
        const Rect lamp{{place.x - kLamp, place.y - kLamp}, {2.0F * kLamp, 2.0F * kLamp}};
        const Color dark = systemColor(SystemColor::Grid);
        const float light = static_cast<float>(m_lights[i]) / kBrightest;
        canvas.fillPath(Path::ellipse(lamp),
                        dark.mixedWith(systemColor(SystemColor::Accent), light));
        // Beside the lamp, away from the middle; below it in the middle itself.
        const bool isMiddle = place.x == middle.x && place.y == middle.y;
        const float outward = isMiddle ? 0.0F : (kLamp + 7.0F) / radius;
        const Point at{place.x + (place.x - middle.x) * outward,
                       isMiddle ? place.y + 10.0F : place.y + (place.y - middle.y) * outward};
        label.string = m_plan.channelName(i);
        canvas.drawText(label, {{at.x - 16.0F, at.y - 6.0F}, {32.0F, 12.0F}});
    }
}

std::string SpeakerCircle::accessibilityName() const {
    std::string names = "Speakers";
    for (std::size_t i = 0; i < m_plan.order.size(); ++i)
        names += ' ' + m_plan.channelName(i);
    return names;
}

}  // namespace veltra::console
