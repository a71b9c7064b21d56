// SPDX-License-Identifier: MIT
// A number on glass above a meter: the highest level since the start, until somebody clicks on it.
// It turns red when the signal has clipped.
//
//   auto& readout = strip.addSubview(std::make_unique<PeakReadout>(Rect{{}, {54, 20}}));
//   readout.raise(tap.take().peak);
//
// With setDecibels() it shows any other value as it is: an RMS level, a true peak, a loudness.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/control.h"

#include <string>
#include <utility>

namespace veltra {

class VELTRA_EXPORT PeakReadout : public Control {
public:
    static constexpr float kHeight = 20.0F;     // points, that it is made for
    static constexpr double kQuietest = -70.0;  // decibels; at and below it shows "−∞"

    // In silence, neither clipped nor muted.
    explicit PeakReadout(const Rect& frame = {});

    // A peak, linear, 1 at full scale; its sign does not count, NaN counts as silence. What is
    // higher than the value shown takes its place.
    void raise(float amplitude);
    // Shows this value from now on, whatever was before. NaN counts as minus infinity.
    void setDecibels(double decibels);
    double decibels() const noexcept { return m_decibels; }  // minus infinity at first

    // Above this it has clipped, and stays so until it is reset. At first 0; a host that shows a
    // true peak may take -1.
    void setClipDecibels(double decibels) noexcept { m_clipDecibels = decibels; }
    bool isClipped() const noexcept { return m_isClipped; }

    // Begins again, in silence. Draws it again when that changes something.
    void reset();

    // Of a signal that is not heard: written in grey, unless it has clipped.
    void setMuted(bool isMuted);

    // What is shown, such as "+1.8", "−2.1", "0.0" and "−∞", with a true minus sign.
    static std::string text(double decibels);

    // A click, Return or Space resets it and sends the action, for the clip lights of the meters
    // below. A click on a disabled one is swallowed.
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& /*event*/) override {}
    void mouseUp(const Event& /*event*/) override {}
    void mouseEntered(const Event& event) override;
    void mouseExited(const Event& event) override;
    void keyDown(const Event& event) override;
    bool wantsKey(const Event& event) const override { return isEnabled() && event.isPressKey(); }
    bool acceptsFirstResponder() const override { return isEnabled(); }
    std::optional<FocusShape> focusShape() const override;
    void drawRect(Canvas& canvas, const Rect& dirty) override;

    // A level indicator called "peak" unless it is named, with a value in words such as "−2.1 dB",
    // "silence", "1.8 dB, clipped" and "silence, clipped", and Press, which does what a click does.
    // A change is told when the value is reset, and when it clips.
    AccessibilityRole accessibilityRole() const override;
    std::string accessibilityName() const override;
    std::string accessibilityValueText() const override;
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;
    // The unit that is spoken: a key of localizedString(), at first "dB"; such as "LUFS".
    void setAccessibilityUnit(std::string key) { m_unit = std::move(key); }

private:
    void show(double decibels);
    void click();

    double m_decibels;
    double m_clipDecibels = 0.0;
    bool m_isClipped = false;
    bool m_isMuted = false;
    bool m_isHovered = false;
    std::string m_unit = "dB";
};

}  // namespace veltra
