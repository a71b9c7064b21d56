// SPDX-License-Identifier: MIT
// The card of the whole mix: device, peaks of the last half minute, dim, mono, balance, gain,
// fader, meters.
#pragma once

#include "card_layout.h"
#include "console_button.h"
#include "console_delegate.h"
#include "gain_field.h"
#include "history_view.h"
#include "label.h"
#include "meter_group.h"
#include "strip_slider.h"
#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/peak_readout.h"

#include <array>

namespace veltra::console {

// Thread: main.
class OutputView final : public View {
public:
    // `delegate` must outlive the view.
    explicit OutputView(ConsoleDelegate& delegate);

    void update(const ConsoleState& state);
    void setMeterKind(MeterKind kind);
    bool hasClipped() const;
    void clearClips();
    // Gives the keyboard to the first of its controls.
    bool takeKeyboard();

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return "Output"; }

    const MeterGroup& meters() const noexcept { return m_meters; }
    StripSlider& fader() const noexcept { return m_fader; }

protected:
    void frameDidChange() override;

private:
    void deviceWasPressed();
    void dimWasPressed();
    void monoWasPressed();
    void balanceWasMoved();
    void gainWasTyped();
    void faderWasMoved();
    void clipsWereCleared();

    ConsoleDelegate& m_delegate;
    CardLayout m_layout;
    Label& m_title;
    Label& m_device;
    ConsoleButton& m_menu;
    HistoryView& m_history;
    ConsoleButton& m_dim;
    ConsoleButton& m_mono;
    StripSlider& m_balance;
    Label& m_balanceText;
    GainField& m_gain;
    StripSlider& m_fader;
    std::array<PeakReadout*, 2> m_readouts;
    LevelMeterScaleView& m_scale;
    MeterGroup& m_meters;
    Label& m_footer;
};

}  // namespace veltra::console
