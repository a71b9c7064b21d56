// SPDX-License-Identifier: MIT
// What a control draws and tracks with: a small thing without a place of its own, of which one view
// may hold many. It is told its frame in each call.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/accessibility.h"
#include "veltra/ui/event.h"
#include "veltra/ui/styled_text.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace veltra {

class Canvas;
class KeyedCoder;
class View;

// How large a control and its text are; what that means is each control's choice.
enum class ControlSize : std::uint8_t { Regular, Small, Mini };

class VELTRA_EXPORT Cell : public AccessibilityElement {
public:
    Cell() = default;

    // A cell whose value is this text.
    explicit Cell(std::string_view text) : m_value(std::string(text)) {}
    Cell(const Cell&) = delete;
    Cell& operator=(const Cell&) = delete;
    ~Cell() override;

    // The value, which is one thing in three forms. A text counts as the decimal number that it
    // begins with, 0 when it begins with none; reals lose their fraction as integers, and what does
    // not fit is cut to the limits of the type. A number is written in decimal.
    std::int32_t intValue() const;
    double doubleValue() const;
    std::string stringValue() const;
    virtual void setIntValue(std::int32_t value) { setValue(value); }
    virtual void setDoubleValue(double value) { setValue(value); }
    virtual void setStringValue(std::string_view value) { setValue(std::string(value)); }
    // stringValue() in the cell's font and alignment, in the colour of labels.
    virtual StyledText attributedStringValue() const;

    // Each setter that changes something redraws the cell.
    bool isEnabled() const noexcept { return m_isEnabled; }
    virtual void setEnabled(bool isEnabled);
    bool isEditable() const noexcept { return m_isEditable; }
    void setEditable(bool isEditable) noexcept { m_isEditable = isEditable; }
    bool isHighlighted() const noexcept { return m_isHighlighted; }
    void setHighlighted(bool isHighlighted);
    bool isBordered() const noexcept { return m_isBordered; }
    void setBordered(bool isBordered);
    bool isBezeled() const noexcept { return m_isBezeled; }
    void setBezeled(bool isBezeled);
    bool isScrollable() const noexcept { return m_isScrollable; }
    void setScrollable(bool isScrollable) noexcept { m_isScrollable = isScrollable; }
    bool wraps() const noexcept { return m_wraps; }
    void setWraps(bool wraps) noexcept { m_wraps = wraps; }
    const Font& font() const noexcept { return m_font; }
    virtual void setFont(const Font& font);
    TextAlignment alignment() const noexcept { return m_alignment; }
    virtual void setAlignment(TextAlignment alignment);
    ControlSize controlSize() const noexcept { return m_controlSize; }
    void setControlSize(ControlSize size);

    // The view and the frame that the cell was given last. The view is null before that, and when
    // it has been destroyed.
    View* controlView() const noexcept { return m_controlView.get(); }
    void setControlView(View* view) noexcept;
    const Rect& cellFrame() const noexcept { return m_cellFrame; }
    // Gives the cell its frame and view, for redraws and accessibility. Call it when the layout has
    // changed.
    virtual void calculateInternalsFromCellFrame(const Rect& frame, View& controlView);
    // Asks the control view to draw cellFrame() again.
    void setNeedsDisplay();

    // Drawing. drawWithFrame() calculates the internals, then draws the border and the interior;
    // what is outside of the frame is cut off.
    virtual void drawWithFrame(Canvas& canvas, const Rect& frame, View& view);
    virtual void drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view);
    Size cellSize() const;
    virtual Size cellSizeForBounds(const Rect& bounds) const;

    // Tracking. Points are in the coordinates of the view. Each call may delete the cell.

    // Whether the cell wants to follow the pointer.
    virtual bool startTracking(Point /*point*/, View& /*view*/) { return false; }
    // Called for each drag. Returns whether the cell wants to go on.
    virtual bool continueTracking(Point /*last*/, Point /*current*/, View& /*view*/) {
        return true;
    }
    virtual void stopTracking(Point /*last*/, Point /*stop*/, View& /*view*/, bool /*mouseIsUp*/) {}
    virtual void scrollWheel(const Event& /*event*/) {}
    // Whether tracking goes on until the button is up, also outside of the frame.
    virtual bool prefersTrackingUntilMouseUp() const { return false; }
    // Where tracking need not go on until the button is up: whether the first drag ends it, or only
    // a drag that leaves the frame.
    virtual bool stopsTrackingAtFirstDrag() const { return false; }
    // Where the points of tracking are counted from, in the coordinates of the view.
    virtual Point trackingOrigin(const Rect& /*frame*/) const { return {}; }

    // Follows the pointer from a press on, taking the events from the window itself. Returns
    // whether the button went up as the cell had asked for: with `untilMouseUp` always, else inside
    // the frame. False when the cell is disabled, refuses, stops early or is deleted. Where the
    // events come from elsewhere, CellTracking does the same step by step.
    virtual bool trackMouse(const Event& event, const Rect& frame, View& view, bool untilMouseUp);

    // Sets which events of the pointer send the action; at first only the release does. Returns the
    // mask that was set before.
    virtual EventMask sendActionOn(EventMask mask) noexcept;
    EventMask sendActionMask() const noexcept { return m_sendActionMask; }
    // What happens after the cell was tracked or pressed: its control sends its action. Nothing
    // without a control.
    virtual void sendAction();

    // Whether a key belongs to this cell before the shortcuts of the host see it. See Responder.
    virtual bool wantsKey(const Event& /*event*/) const { return false; }

    // Writes and reads the value and the settings above, except for target and action.
    virtual void encodeWithCoder(KeyedCoder& coder) const;
    virtual void decodeWithCoder(const KeyedCoder& coder);

    // Without a name of its own, the cell of a control has that of the control.
    std::string accessibilityName() const override;
    AccessibilityElement* accessibilityParent() const override;
    View* accessibilityView() const override { return controlView(); }
    Rect accessibilityFrame() const override { return m_cellFrame; }
    bool accessibilityIsEnabled() const override { return m_isEnabled; }
    // Whether it is the cell of a control that has the keyboard.
    bool accessibilityIsFocused() const override;

private:
    using Value = std::variant<std::string, std::int32_t, double>;

    void setValue(Value value);
    template <typename T>
    void change(T& member, T value) {
        if (member == value) return;
        member = value;
        setNeedsDisplay();
    }

    Value m_value;
    Font m_font = Font::systemFont(13.0F);
    TextAlignment m_alignment = TextAlignment::Left;
    ControlSize m_controlSize = ControlSize::Regular;
    EventMask m_sendActionMask = EventType::LeftMouseUp;
    bool m_isEnabled = true;
    bool m_isEditable = false;
    bool m_isHighlighted = false;
    bool m_isBordered = false;
    bool m_isBezeled = false;
    bool m_isScrollable = false;
    bool m_wraps = true;
    WeakPointer<View> m_controlView;
    Rect m_cellFrame;
};

}  // namespace veltra
