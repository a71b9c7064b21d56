// SPDX-License-Identifier: MIT
// The card of one file: name and format, waveform, switches, pan, gain and fader, meters.
#pragma once

#include "card_layout.h"
#include "console_button.h"
#include "console_delegate.h"
#include "gain_field.h"
#include "label.h"
#include "meter_group.h"
#include "strip_slider.h"
#include "veltra/audio/midi_formatter.h"
#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/peak_readout.h"
#include "waveform_view.h"

namespace veltra::console {

// Thread: main.
class StripView final : public View {
public:
    // More than two channels need more room; without a fader there is less of it.
    static float leastWidth(const FileFormat& format, CardKind kind);
    static float mostWidth(const FileFormat& format);

    // `delegate` must outlive the view.
    StripView(const StripState& state, ConsoleDelegate& delegate);

    StripKey key() const noexcept { return m_key; }
    const FileFormat& format() const noexcept { return m_format; }
    const std::string& name() const noexcept { return m_name.text(); }
    void update(const StripState& state, const ConsoleState& console);
    void setMeterKind(MeterKind kind);

    bool hasClipped() const { return m_readout.isClipped() || m_meters.hasClipped(); }
    void clearClips();
    // Where the loudest of its meters stands, 0 to 1.
    float shownLevel() const { return m_meters.shownLevel(); }
    // Under the pointer: shows the button of its menu.
    void setHovered(bool isHovered);
    // The part by which the card can be dragged to another place.
    bool isHandle(Point point) const;

    // Its controls, in the order in which they stand: the same number is the same control in every
    // strip. -1 where the keyboard is elsewhere.
    int focusedPart() const;
    bool focusPart(int part);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    // Of its controls, for what they do not know.
    void keyDown(const Event& event) override;

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override;

    // What tests and scales measure.
    const MeterGroup& meters() const noexcept { return m_meters; }
    StripSlider& fader() const noexcept { return m_fader; }

protected:
    void frameDidChange() override;

private:
    bool hasPan() const noexcept { return m_format.channels <= 2; }
    std::string noteAt(const StripState& state) const;
    void updateTexts(const StripState& state);
    void menuWasPressed();
    void muteWasPressed();
    void soloWasPressed();
    void panWasMoved();
    void gainWasTyped();
    void faderWasMoved();
    void clipsWereCleared();
    void showMenuButton();

    const StripKey m_key;
    const FileFormat m_format;
    ConsoleDelegate& m_delegate;
    CardLayout m_layout;
    Label& m_name;
    Label& m_formatText;
    ConsoleButton& m_menu;
    WaveformView& m_waveform;
    ConsoleButton& m_mute;
    ConsoleButton& m_solo;
    StripSlider& m_pan;
    Label& m_panText;  // or that there is no pan
    GainField& m_gain;
    StripSlider& m_fader;
    PeakReadout& m_readout;
    LevelMeterScaleView& m_scale;
    MeterGroup& m_meters;
    Label& m_time;
    Label& m_note;  // the pitch of what began last
    QKMIDIFormatter m_noteFormatter;
    bool m_isHovered = false;
    bool m_showsClip = false;
};

}  // namespace veltra::console
