// SPDX-License-Identifier: MIT
// The meters of one file or of the output on one glass, with the names of their channels below: a
// bar for each channel, or for the loudest of neighbours where there are very many.
#pragma once

#include "../channel_plan.h"
#include "card_layout.h"
#include "veltra/audio/level_tap.h"
#include "veltra/controls/level_meters/level_meter_cell.h"
#include "veltra/ui/control.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace veltra::console {

// What the meters of a window show.
enum class MeterKind : std::uint8_t {
    Peak,
    Rms,  // bars are lit in full up to the RMS level, dimly from there to the peak
    TruePeak,
};

// For the read-outs above them.
std::string unitOfPeaks(MeterKind kind);

// A click or Return puts the clip lights out and sends the action. Thread: main.
class MeterGroup final : public Control {
public:
    // For so many channels.
    static int bars(int channels) noexcept;

    // `plan` names the channels, below the meters and for screen readers.
    MeterGroup(int channels, const ChannelPlan& plan);

    // What a screen reader calls it.
    void setName(const std::string& name) { m_name = name; }

    // Where the bars stand; the frame is CardLayout::meter.
    void setBars(float width, float gap);

    // Largest magnitudes since the last call, 1 at full scale, a channel each. Fewer than there are
    // channels: the rest are silent.
    void setPeaks(std::span<const float> peaks);
    // Their mean squares, likewise, for meters that show RMS levels.
    void setSquares(std::span<const float> squares);
    // At first Peak. Whether the peaks are true ones is up to who measures them.
    void setKind(MeterKind kind);
    // A signal that is not heard.
    void setMuted(bool isMuted);

    bool hasClipped() const;
    void clearClips();
    // Where the loudest of its meters stands, 0 to 1.
    float shownLevel() const;

    // That a scale beside it goes by.
    QkLevelMeterCell& firstCell() const noexcept { return *m_cells.front(); }

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    Rect opaqueRect() const override;
    bool acceptsFirstResponder() const override { return true; }
    bool wantsKey(const Event& event) const override;
    void keyDown(const Event& event) override;
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& /*event*/) override {}
    void mouseUp(const Event& /*event*/) override {}
    void viewDidMoveToWindow() override;
    std::optional<FocusShape> focusShape() const override;

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override;
    std::vector<AccessibilityElement*> accessibilityChildren() const override;
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;

protected:
    void frameDidChange() override { layOut(); }

private:
    Rect glassRect() const;
    float loudestOf(std::size_t bar, std::span<const float> levels) const;
    void layOut();
    void drawNames(Canvas& canvas) const;

    std::vector<std::unique_ptr<QkLevelMeterCell>> m_cells;
    std::vector<std::size_t> m_ends;          // one for each: the channel after those that it shows
    std::vector<std::string> m_channelNames;  // one for each
    std::vector<RmsAverage> m_averages;       // one for each
    std::string m_name;
    MeterKind m_kind = MeterKind::Peak;
    float m_bar = 9.0F;
    float m_gap = 2.0F;
};

}  // namespace veltra::console
