// SPDX-License-Identifier: MIT
// The waveform of a file with its onsets and a time axis, coloured as far as it has played. A click
// or a drag chooses a place, with Shift a loop.
#pragma once

#include "console_delegate.h"
#include "veltra/ui/tool_tip.h"
#include "veltra/ui/view.h"

#include <memory>
#include <optional>

namespace veltra::console {

// Thread: main.
class WaveformView final : public View, public ToolTipSource {
public:
    // `delegate` must outlive the view.
    WaveformView(ConsoleDelegate& delegate, std::string fileName);

    // Null: not known yet, and only a line shows how far the file has played. One that is not
    // complete is drawn as far as it goes.
    void setOverview(std::shared_ptr<const Overview> overview);
    // How far the reading of the file is, 0 to 1; below 0 nobody knows, and with each call a bar
    // moves to and fro; nothing: it is over.
    void setReading(std::optional<double> share);
    // How long the file is; 0: unknown. How far it has played; a loop, empty: none. In seconds.
    void setTimes(double length, double place, double loopBegin, double loopEnd);
    void setMuted(bool isMuted);
    void setHasAxis(bool hasAxis);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    Rect opaqueRect() const override;
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    void mouseUp(const Event& /*event*/) override {}
    void mouseMoved(const Event& event) override;
    void mouseExited(const Event& event) override;
    bool acceptsFirstResponder() const override { return m_length > 0.0; }
    bool wantsKey(const Event& event) const override;
    void keyDown(const Event& event) override;
    Cursor cursorAt(Point /*point*/) const override { return Cursor::IBeam; }
    std::optional<FocusShape> focusShape() const override;

    // The time under the pointer.
    std::string stringForTag(std::int32_t tag) override;

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }
    std::string accessibilityName() const override;
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    std::string accessibilityValueText() const override;
    bool setAccessibilityNumber(double value) override;

protected:
    void frameDidChange() override;

private:
    Rect field() const;
    Rect wave() const;
    float xOf(double seconds) const;
    double secondsAt(float x) const;
    float playedX() const;
    void thinOut();
    void invalidateHead(float x);
    void drawWave(Canvas& canvas, const Rect& dirty) const;
    void drawOnsets(Canvas& canvas) const;
    void drawLoop(Canvas& canvas, bool isGround) const;
    void drawHeads(Canvas& canvas) const;
    void drawAxis(Canvas& canvas) const;
    void drawReading(Canvas& canvas) const;
    void choose(const Event& event);

    ConsoleDelegate& m_delegate;
    const std::string m_fileName;
    std::shared_ptr<const Overview> m_overview;
    CTransients m_onsets;  // as many as have room
    std::optional<double> m_reading;
    double m_length = 0.0;
    double m_place = 0.0;
    double m_loopBegin = 0.0;
    double m_loopEnd = 0.0;
    std::optional<double> m_loopAnchor;  // of the loop that is being drawn
    std::optional<float> m_pointer;      // its place
    bool m_isMuted = false;
    bool m_hasAxis = true;
};

}  // namespace veltra::console
