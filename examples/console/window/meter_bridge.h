// SPDX-License-Identifier: MIT
// The meters of one file or output, a channel each, beside a scale in decibels.
#pragma once

#include "../channel_plan.h"
#include "veltra/controls/level_meters/level_meter_cell.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/ui/view.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace veltra::console {

// One channel and more than two have a cell each, two channels the stereo view. A click puts the
// clip lights out. Thread: main.
class MeterBridge final : public View {
public:
    // `plan` names the channels, below the meters and for screen readers.
    MeterBridge(const Rect& frame, int channels, const ChannelPlan& plan);

    // What a screen reader calls it.
    void setName(const std::string& name) { m_name = name; }

    // Largest magnitudes since the last call, 1 at full scale, a channel each. Fewer than there are
    // channels: the rest are silent.
    void setPeaks(std::span<const float> peaks);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    void mouseDown(const Event& event) override;
    void appearanceDidChange() override { layOut(); }
    void viewDidMoveToWindow() override { layOut(); }

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return m_name + " meters"; }
    std::vector<AccessibilityElement*> accessibilityChildren() const override;

protected:
    void frameDidChange() override { layOut(); }

private:
    float meterPitch() const;
    Rect metersRect() const;
    Rect barRect() const;
    std::uint32_t fittingLedCount() const;
    void layOut();
    void drawScale(Canvas& canvas) const;
    void drawNames(Canvas& canvas) const;

    DfStereoLevelMeterView* m_stereo = nullptr;  // a subview
    std::vector<std::unique_ptr<QkLevelMeterCell>> m_cells;
    std::vector<Rect> m_frames;               // of the cells
    std::vector<std::string> m_channelNames;  // one for each meter
    std::string m_name;
};

}  // namespace veltra::console
