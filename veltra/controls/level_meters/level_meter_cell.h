// SPDX-License-Identifier: MIT
// One channel of a level meter: the level shown falls steadily, the highest level is held for a
// while, and a light goes on when the channel clips and stays on.
//
//   auto meter = std::make_unique<DfStereoLevelMeterView>(Rect{{8, 8}, {28, 180}});
//   meter->setLevelScale(LevelMeterLevels::Decibels);  // what screen readers make of a position
//   meter->setLevelL(meterPositionForAmplitude(left), meterPositionForAmplitude(right));
//
// It works without a view and without a toolkit: setLevel() then moves the model, and the getters
// tell what would be shown. While no level comes, two timers on the thread's run loop let the
// display fall to the level given last (send 0 when the music stops) and the held maximum end;
// where nobody runs that loop, the next setLevel() makes up for it. LevelBallistics is the same
// without clock and timers.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/level_meters/level_ballistics.h"
#include "veltra/controls/level_meters/level_meter_look.h"
#include "veltra/controls/level_meters/level_meter_looks.h"
#include "veltra/controls/level_meters/level_meter_scale.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/ui/action_cell.h"
#include "veltra/ui/view.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace veltra {

class VELTRA_EXPORT QkLevelMeterCell : public ActionCell {
public:
    QkLevelMeterCell();
    ~QkLevelMeterCell() override;

    // The level. Numbers out of range are answered as LevelBallistics says. Asks the control view
    // to draw cellFrame() again when that is due, or in any case with `forceDisplayIfNeeded`.
    void setLevel(float level, bool forceDisplayIfNeeded = false);
    float level() const noexcept { return m_ballistics.level(); }
    float displayLevel() const noexcept { return m_ballistics.displayLevel(); }
    float maxDisplayLevel() const noexcept { return m_ballistics.maxDisplayLevel(); }

    // The clip light; goes on by itself, off only here. Always draws the cell again.
    bool peak() const noexcept { return m_ballistics.peak(); }
    void setPeak(bool isOn);

    // What LevelBallistics says, with its defaults: 0.01 each 1/30 s, held for 1.5 s.
    float fallBackStep() const noexcept { return m_ballistics.fallBackStep(); }
    void setFallBackStep(float step);
    double fallBackStepTime() const noexcept { return m_ballistics.fallBackStepTime(); }
    void setFallBackStepTime(double seconds);
    double maxLevelHoldTime() const noexcept { return m_ballistics.maxLevelHoldTime(); }
    void setMaxLevelHoldTime(double seconds);

    // One step down. The decay timer calls it when no level has come for a fallBackStepTime();
    // `timer` is null when somebody else does. Always draws the cell again.
    void timerAction(QkTimer* timer);
    // Ends the held maximum, likewise.
    void maxtimerAction(QkTimer* timer);

    // A second value beside the level, such as an RMS level under peaks: the bar is lit in full up
    // to it, and dimly from there to the level. Shown as it is, without a fall; at most the level.
    // Nothing, as at first: one value.
    std::optional<float> rms() const noexcept { return m_rms; }
    void setRms(std::optional<float> level);

    // A signal that is not heard is shown grey and thin.
    bool isMuted() const noexcept { return m_isMuted; }
    void setMuted(bool isMuted);

    // The number of LEDs; 0 shows a continuous bar. More than there are pixels count as 0. With a
    // pitch it is what the frame has room for, and before there is a frame the last count that was
    // set, at first 32.
    std::uint32_t LEDCount() const;
    void setLEDCount(std::uint32_t count);
    // From LED to LED, in points, rounded to whole device pixels: as many LEDs as the frame has
    // room for, the same however often it is laid out. At first 4. The last one set of count and
    // pitch counts; not above 0 goes back to the count.
    float LEDPitch() const noexcept { return m_LED_pitch; }
    void setLEDPitch(float points);

    // What is cut off all around the lit part of the bar, in points: for images whose LEDs have a
    // border. At first 0; below 0 or NaN counts as 0.
    float onStateLEDInset() const noexcept { return m_onStateLEDInset; }
    void setOnStateLEDInset(float inset);

    // The looks of the bar and of the clip light, see level_meter_looks.h.
    std::int32_t levelMeterImageID() const noexcept { return m_levelMeterImageID; }
    std::int32_t peakLEDImageID() const noexcept { return m_peakLEDImageID; }
    void setImageIDs(std::int32_t levelMeterImageID, std::int32_t peakLEDImageID);

    // What the levels are, amplitudes at first: the zones and marks of the looks and the words of a
    // screen reader follow.
    using LevelScale = LevelMeterLevels;
    LevelScale levelScale() const noexcept { return m_levelScale; }
    void setLevelScale(LevelScale scale);

    // Nothing, as at first: horizontal where the frame is wider than high.
    void setOrientation(std::optional<LevelMeterOrientation> orientation);
    LevelMeterOrientation orientation() const noexcept;

    // The height that the meter wants, in points. Lying: the thickness of the bar. Upright: the
    // images' height; looks drawn by code take that of the control view less the edge of glass,
    // 173 without one.
    float cellHeight() const;
    Size cellSizeForBounds(const Rect& bounds) const override;

    // Where the bar and the clip light are, in the control view. Empty before the cell has a frame.
    Rect levelMeterRect() const;
    Rect peakLEDRect() const;
    // The part of levelMeterRect() along which levels from 0 to 1 are shown: what a scale beside
    // the meter goes by. A gap below an LED belongs to the LED.
    Rect rectOfLevels() const;
    // Bar, clip light and what lies between: all that the cell draws on. Looks drawn by code keep
    // to the far end of the frame. drawLevelMeterGlass() draws what belongs around it.
    Rect rectOfMeter() const;
    // The part of cellFrame() that drawing covers without a gap, whatever lies beneath; empty where
    // the look leaves some of it clear.
    Rect opaqueRect() const;
    // The ticks and labels that belong to rectOfLevels(). Empty of length before there is a frame.
    LevelMeterScale scale() const;
    // Is drawn again whenever scale() or rectOfLevels() may have changed. Not retained; null: none.
    void setScaleView(View* view) { m_scaleView = view; }
    void calculateInternalsFromCellFrame(const Rect& frame, View& controlView) override;

    // The images for the present frame and window; null before the first frame and where images
    // cannot be drawn.
    std::shared_ptr<const Image> levelMeterOffImage() const;
    std::shared_ptr<const Image> levelMeterOnImage() const;
    std::shared_ptr<const Image> peakLedOffImage() const;
    std::shared_ptr<const Image> peakLedOnImage() const;

    void drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) override;

    // Accessibility. A change of the level is told at most twice a second, the clip light at once.

    // The name without one that was set: a key of localizedString(), at first "level".
    void setAccessibilityDescription(std::string key) {
        m_accessibilityDescription = std::move(key);
    }
    // Not retained; null: the control view.
    void setAccessibilityParent(AccessibilityElement* parent) { m_accessibilityParent = parent; }
    AccessibilityElement* accessibilityParent() const override;
    AccessibilityRole accessibilityRole() const override;
    std::string accessibilityName() const override;
    AccessibilityOrientation accessibilityOrientation() const override;
    // In decibels, from -70 to 0.
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    // Such as "−12.3 dB", "silence", "−0.2 dB, clipped", "−20.0 dB, muted", "−6.0 dB, RMS −14.1
    // dB"; the words are keys of localizedString(). The minus is U+2212.
    std::string accessibilityValueText() const override;

private:
    struct Drawing;  // the layout and the pictures

    void armTimers(Moment now);
    void restartTimers();
    void tellLevel(Moment now, bool isUrgent);
    const Drawing& drawing(Size frame, float scale, Appearance appearance) const;
    const Drawing* drawingOfFrame() const;
    LevelMeterPictureRequest request(float scale, Appearance appearance) const;
    double decibels() const;
    double decibelsOf(float level) const;
    Rect rectOfPart(bool isLight) const;
    template <typename T>
    void change(T& member, T value);
    void redrawScale();
    void tellScaleView(const View& view);

    LevelBallistics m_ballistics;
    QkTimer m_timer;
    QkTimer m_maxtimer;
    std::int32_t m_levelMeterImageID = kLevelMeterImageLED;
    std::int32_t m_peakLEDImageID = kLevelMeterImageLED;
    std::uint32_t m_LED_count = 32;
    float m_LED_pitch = 4.0F;
    std::optional<float> m_rms;
    bool m_isMuted = false;
    float m_onStateLEDInset = 0.0F;
    std::optional<LevelMeterOrientation> m_orientation;
    const std::unique_ptr<Drawing> m_drawing;  // kept as long as it fits

    WeakPointer<View> m_scaleView;
    Rect m_levelsInScaleView;  // when they were drawn last
    WeakPointer<AccessibilityElement> m_accessibilityParent;
    std::string m_accessibilityDescription = "level";
    LevelScale m_levelScale = LevelScale::Amplitude;
    float m_toldLevel = 0.0F;
    std::optional<Moment> m_toldDate;
};

// The glass that meters lie on, with rounded corners. `meters` is the rectangle around what they
// draw on, to which `edge` points are added on each side. Draw it before the meters.
VELTRA_EXPORT void drawLevelMeterGlass(Canvas& canvas, const Rect& meters, Appearance appearance,
                                       float edge = 4.0F);

}  // namespace veltra
