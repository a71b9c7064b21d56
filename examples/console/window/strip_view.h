// SPDX-License-Identifier: MIT
// One file in the window: its name and format, its meters, how far it has played, and its buttons.
#pragma once

#include "console_delegate.h"
#include "label.h"
#include "meter_bridge.h"
#include "speaker_circle.h"
#include "veltra/audio/midi_formatter.h"
#include "veltra/ui/button.h"
#include "waveform_view.h"

namespace veltra::console {

// Thread: main.
class StripView final : public View {
public:
    // More than two channels need more room.
    static float widthFor(const FileFormat& format);

    // `delegate` must outlive the view.
    StripView(const Rect& frame, const StripState& state, ConsoleDelegate& delegate);

    StripKey key() const noexcept { return m_key; }
    void update(const StripState& state);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    // Of its buttons, for what they do not know: M mutes, the key that deletes forwards removes.
    void keyDown(const Event& event) override;

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return m_name.text(); }

protected:
    void frameDidChange() override;

private:
    std::string noteAt(const StripState& state) const;
    void muteWasPressed();
    void removeWasPressed();
    void againWasPressed();

    const StripKey m_key;
    ConsoleDelegate& m_delegate;
    Label& m_name;
    Label& m_format;
    SpeakerCircle* const m_speakers;  // a subview, only with more than two channels
    MeterBridge& m_meters;
    Label& m_time;
    Label& m_note;  // the pitch of what began last
    WaveformView& m_waveform;
    Button& m_mute;
    Button& m_again;  // in the place of the mute button once the file has ended
    Button& m_remove;
    QKMIDIFormatter m_noteFormatter;
};

}  // namespace veltra::console
