// SPDX-License-Identifier: MIT
// From where the channels of a file are heard: the listener in the middle, a lamp for each channel
// at its angle, as bright as the channel is loud.
#pragma once

#include "../channel_plan.h"
#include "veltra/ui/view.h"

#include <cstdint>
#include <span>
#include <vector>

namespace veltra::console {

// Thread: main.
class SpeakerCircle final : public View {
public:
    SpeakerCircle(const Rect& frame, ChannelPlan plan);

    // Largest magnitudes since the last call, a channel each.
    void setPeaks(std::span<const float> peaks);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::StaticText; }
    std::string accessibilityName() const override;

private:
    Point placeOf(ChannelID channel) const;

    const ChannelPlan m_plan;
    std::vector<std::uint8_t> m_lights;  // 0 to kBrightest, a channel each
};

}  // namespace veltra::console
