// SPDX-License-Identifier: MIT
// The framework's own slider: a cap on a slot, with marks, a value that it can be put back to,
// values that capture the cap, fine steps and a tip that says the value.
//
//   Slider& volume = view.addSubview(std::make_unique<Slider>(Rect{{8, 8}, {64, 240}}));
//   QkSliderCell& cell = QkSliderCell::replacedCellInSlider(volume);
//   setUpFader(cell);                            // slider_presets.h
//   volume.setTarget(&mixer);
//   volume.setAction(action<&Mixer::volumeChanged>());
//
// What the user does, and what follows: a press on the cap holds it, a press beside it moves it
// there. Shift makes the steps of a drag fine, Alt and a click set the default. The wheel, the
// arrow and Page keys, Home and End move it step by step; Backspace sets the default. Escape ends a
// drag and puts the value back.
//
// Around each gesture NotificationCenter::local() posts kSliderStartTracking and
// kSliderStopTracking, whose object is the cell: for drags, for Alt-clicks, and once for a run of
// notches or keys with pauses of less than a second. A host that records automation or undoes by
// gesture goes by these.
//
// Everything that calls out (action, notifications, the source of the tip) may delete the cell.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/controls/sliders/log_slider_cell.h"
#include "veltra/controls/sliders/slider_marks.h"
#include "veltra/controls/sliders/slider_tracking.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/ui/slider.h"
#include "veltra/ui/tool_tip.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace veltra {

extern "C" {
// "StartTracking" and "StopTracking".
VELTRA_EXPORT extern const VLString* const kSliderStartTracking;
VELTRA_EXPORT extern const VLString* const kSliderStopTracking;
}

// What is drawn by code for an image identifier, as long as nobody has registered an image for it
// with registerImage(): a round knob, the cap of a fader, the cap of a pan control; a slot.
inline constexpr std::int32_t kSliderKnobPlain = 2000;
inline constexpr std::int32_t kSliderKnobFader = 2001;
inline constexpr std::int32_t kSliderKnobPan = 2002;
inline constexpr std::int32_t kSliderTrackSlot = 2010;

class VELTRA_EXPORT QkSliderCell : public QkLogSliderCell, public ToolTipSource {
public:
    QkSliderCell();
    ~QkSliderCell() override;

    // Set-up.

    // Puts a new cell of this class in the place of the slider's own, with its properties. A drag
    // of the slider ends; who hears of that must leave the slider alive.
    static QkSliderCell& replacedCellInSlider(Slider& slider);
    // Takes over what the other cell is set to: value, limits, marks, orientation, step, target,
    // action, when that is sent, tag, font and the like; and all of this class and the one below
    // where the other has it. The other keeps what it has.
    void initWithPropertiesOfSliderCell(const SliderCell& other);
    // Sets everything that this class adds to what it is at first. The value and its limits stay,
    // and so does the accessibility parent.
    void myInit();

    // What it looks like. Lengths in points; negative ones and NaN count as 0.

    // Identifiers of images, see above; others stand for the round knob and the slot. An image is
    // drawn in its own size, in the middle of its place. At first the plain ones.
    void setImageIDs(std::int32_t knobImageID, std::int32_t trackImageID);
    std::int32_t knobImageID() const noexcept { return m_knobImageID; }
    std::int32_t trackImageID() const noexcept { return m_trackImageID; }
    // Areas for labels at both ends of the cell: at the left or the foot for the minimum, opposite
    // for the maximum. At first 0.
    void setMinSideInset(float inset);
    void setMaxSideInset(float inset);
    // What is written there; at first nothing.
    void setEndLabels(std::string minimum, std::string maximum);
    // Between these areas and the track. At first 0.
    void setMinSideSliderInset(float inset);
    void setMaxSideSliderInset(float inset);
    // Taken off the cell at its left (upright sliders) or upper side (lying ones) before the track
    // is put in the middle of the rest: room for marks and labels. At first 0.
    void setTrackYInset(float inset);
    // How far end labels lie below the upper side of the cell, or from the left. At first 0.
    void setLabelsYInset(float inset);
    // Makes the cap that is drawn smaller than what can be grabbed, on each side. At first 0, 0.
    void setKnobRectInset(Point inset);
    // Takes away from what can be grabbed at the left and right of the cap, on upright sliders, too
    // (deliberately: left and right are those of the screen).
    void setThumbClickAreaLeftInset(float inset);
    void setThumbClickAreaRightInset(float inset);
    // How far from the middle of the track marks begin, at its left or below it, and how long they
    // are. At first 12 and 5.
    void setTickMarkYPosition(float position, float height);
    // Nothing, as at first: those of the theme.
    void setTickMarkColor(std::optional<Color> color);
    void setTickMarkDisabledColor(std::optional<Color> color);
    // Marks that are drawn instead of one for each tick mark, the most important labels first, and
    // a unit that is written above the uppermost.
    void setMarks(std::vector<SliderMark> marks, std::string unit = {});
    const std::vector<SliderMark>& marks() const noexcept { return m_marks; }
    // How much of the cap is seen when the slider is disabled, 0 to 1. At first 0.45.
    void setKnobDisabledAlpha(float alpha);
    // Whether it looks disabled while its window is not the main window. At first not.
    void setShowsDisabledWhenNotMainWindow(bool shows);

    // What it does.

    // By how much each event of a drag with Shift changes the value to the right or upwards,
    // however far it leads; and a notch of the wheel, whatever the sign. 0, as at first: Shift does
    // nothing and a notch is a hundredth of the range. NaN counts as 0. Steps of a drag that a
    // magnetic mark swallows add up until one leads away from it.
    void setFineValueControlStep(double step);
    double fineValueControlStep() const noexcept { return m_fineValueControlStep; }
    // What Alt and a click set, if that is switched on; also where the coloured part of the track
    // begins. At first 0 and off. NaN is passed over.
    void setDefaultValue(double value);
    double defaultValue() const noexcept { return m_defaultValue; }
    void setAltClickSetsDefaultValue(bool sets);
    // Whether a click on an end label sets the minimum or the maximum. At first not.
    void setLabelClickSetsMinMaxValue(bool sets);

    // Values that the knob comes to rest at: what setDoubleValue() is given within the delta of a
    // mark (not at it) becomes the value of the first such mark. A mark outside of the limits, or
    // there already, is not added. The delta is 0 at first.
    void resetMagneticMarks() { m_magneticMarks.clear(); }
    void setMagneticMarkAt(double value);
    const std::vector<double>& magneticMarks() const noexcept { return m_magneticMarks; }
    void setMagneticMarkDelta(double delta) noexcept { m_magneticMarkDelta = delta; }
    double magneticMarkDelta() const noexcept { return m_magneticMarkDelta; }
    void setDoubleValue(double value) override;

    // Where the text of the value tip comes from: a ToolTipSource (not retained), such as this
    // cell. Null, as at first: no tip.
    void setMovableToolTip(Anchored* object, std::int32_t tag);
    bool hasMovableToolTip() const noexcept { return static_cast<bool>(m_toolTipObject); }
    // logSliderValue() in words: as the formatter says, else a number with as many decimals as the
    // steps need.
    std::string stringForTag(std::int32_t tag) override;
    void setFormatter(std::function<std::string(double value)> formatter);

    // Tracking. `view` is the control view.

    // Follows the pointer from a press on. The frame is laid out when it is another one than
    // before.
    bool trackMouse(const Event& event, const Rect& frame, View& view, bool untilMouseUp) override;
    bool startTracking(Point point, View& view) override;
    bool continueTracking(Point last, Point current, View& view) override;
    void stopTracking(Point last, Point stop, View& view, bool mouseIsUp) override;
    // The value for a point of the view, with the offset at which the knob is held.
    double valueWithPoint(Point point) const;
    void setValueWithPoint(Point point);

    // What the knob as a whole moves in, in the coordinates of the view; empty before the first
    // layout.
    Rect trackRect() const override;
    Rect knobRectFlipped(bool isFlipped) const override;
    float knobThickness() const override;
    float knobRadius() const override;
    Rect rectOfTickMarkAtIndex(std::int32_t index, bool isFlipped) const override;
    void calculateInternalsFromCellFrame(const Rect& frame, View& controlView) override;

    // Actions.

    // Which events of the pointer send the action; at first press, drag and release. Returns the
    // mask before.
    EventMask sendActionOn(EventMask mask) noexcept override;
    EventMask sendActionMask() const noexcept { return m_sendActionMask; }
    // Sends the action. With `check` only if the event that the window handles, or has handled
    // last, is a press, a drag or a release of the left button that the mask has.
    void sendActionWithCurrentEvent(bool check);

    // Each notch moves the value by the fine step, else by a hundredth of the range, and by one
    // stop where there are only stops; the action is sent when that changes the value. Parts of a
    // notch add up.
    void scrollWheel(const Event& event) override;
    void scrollWheel(const Event& event, View& controlView);
    // A second after the last notch or key: closes the tip, ends the gesture.
    void scrollWheelToolTipTimerCallback(QkTimer* timer);

    // Arrows by altIncrementValue(), else as the wheel; with Shift by the fine step. Page keys ten
    // times as much. A magnetic mark that holds the knob lets it go.
    bool performKey(const Event& event) override;
    bool wantsKey(const Event& event) const override;
    void pointerMoved(std::optional<Point> point) override;
    void setEnabled(bool isEnabled) override;

    // Drawing.

    void drawBar(Canvas& canvas, const Rect& track, View& view) override;

    // What drawBar() calls: the image of the track, else the slot, and on an enabled slider its
    // coloured part between the default and the value.
    virtual void drawBarInside(Canvas& canvas, const Rect& track, bool isFlipped);
    void drawTickMarks(Canvas& canvas, View& view) override;

    // What drawTickMarks() calls: the marks that were set, or else one for each tick mark.
    virtual void drawTickmarks(Canvas& canvas);
    void drawKnob(Canvas& canvas, const Rect& knob, View& view) override;

    // All settings but target, tip source, formatter and when the action is sent.
    void encodeWithCoder(KeyedCoder& coder) const override;
    void decodeWithCoder(const KeyedCoder& coder) override;

    // Accessibility.

    // Not retained; null: the control view.
    void setAccessibilityParent(AccessibilityElement* parent) { m_accessibilityParent = parent; }
    AccessibilityElement* accessibilityParent() const override;
    std::string accessibilityValueText() const override;
    bool setAccessibilityNumber(double value) override;
    bool performAccessibilityAction(AccessibilityAction action) override;

protected:
    double step() const override;

private:
    enum class Gesture : std::uint8_t { None, Starting, Drag, Run };

    void encodeOwn(KeyedCoder& coder) const;
    void decodeOwn(const KeyedCoder& coder);
    const Event* currentEvent() const;
    bool isFlipped() const;
    SliderTravel travel(bool isFlipped) const;
    bool acceptsPress(Point point) const;
    bool isInGrabArea(Point point) const;
    void jumpTo(Point point);
    void fineStep(int direction, Point at);
    double wheelStep() const;
    void changeInRun(double value);
    bool beginRun();
    void finishStep(double before);
    void endRun();
    void abandonDrag();
    void post(const VLString* name) const;
    void showToolTip(View& view);
    void closeToolTip();
    bool isInMainWindow() const;
    bool looksEnabled() const;
    void redrawKnob();
    void relayOut();
    void setLength(float& member, float value);

    float positionOf(double value, bool isFlipped) const {
        return travel(isFlipped).middleOf(value);
    }
    Appearance appearance() const;
    void drawEndLabels(Canvas& canvas) const;

    // Where copying, reading and stepping set a value that nothing may capture.
    void setPlainValue(double value) { QkLogSliderCell::setDoubleValue(value); }

    std::int32_t m_knobImageID = kSliderKnobPlain;
    std::int32_t m_trackImageID = kSliderTrackSlot;
    std::int32_t m_state = 0;  // 1 while dragging
    Size m_knobSize;
    float m_minSideInset = 0.0F;
    float m_maxSideInset = 0.0F;
    float m_minSideSliderInset = 0.0F;
    float m_maxSideSliderInset = 0.0F;
    EventMask m_sendActionMask;
    bool m_cellFrameSet = false;  // the frames below are valid
    Rect m_sliderFrame;           // without the end labels
    Rect m_interiorFrame;         // without the insets of the track
    Rect m_trackRect;
    float m_mouseOffset = 0.0F;  // from the knob's middle to the pointer that holds it
    double m_fineValueControlStep = 0.0;
    double m_defaultValue = 0.0;
    bool m_altClickSetsDefaultValue = false;
    bool m_altClicked = false;
    bool m_showsDisabledWhenNotMainWindow = false;
    float m_thumbClickAreaLeftInset = 0.0F;
    float m_thumbClickAreaRightInset = 0.0F;
    float m_tickMarkY = 12.0F;
    float m_tickMarkHeight = 5.0F;
    std::optional<Color> m_tickMarkColor;
    std::optional<Color> m_tickMarkDisabledColor;
    float m_trackYInset = 0.0F;
    float m_labelsYInset = 0.0F;
    Point m_knobRectInset;
    float m_KnobDisabledAlpha = 0.45F;
    bool m_labelClickSetsMinMaxValue = false;
    WeakPointer<Anchored> m_toolTipObject;
    std::int32_t m_toolTipTag = 0;
    std::vector<double> m_magneticMarks;
    double m_magneticMarkDelta = 0.0;
    WeakPointer<AccessibilityElement> m_accessibilityParent;
    QkTimer m_scrollWheelToolTipTimer;  // runs during a run of notches or keys

    Gesture m_gesture = Gesture::None;
    Point m_pointer;              // where it was last during a drag
    bool m_hasMoved = false;      // since the press
    bool m_isFine = false;        // the last step of the drag was a fine one
    double m_finePending = 0.0;   // fine steps that a magnetic mark has swallowed
    double m_valueAtPress = 0.0;  // what Escape restores
    bool m_isHovered = false;     // the pointer is on the knob
    WheelNotches m_wheel;
    std::vector<SliderMark> m_marks;
    std::string m_unit;
    std::string m_minimumLabel;
    std::string m_maximumLabel;
    std::function<std::string(double)> m_formatter;
};

}  // namespace veltra
