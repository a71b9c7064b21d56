// SPDX-License-Identifier: MIT
// One group of digits: a whole number that the user drags, wheels, steps and types. It works in any
// control; DfNumberEditorControl puts several beside each other.
//
//   QkNumberEditorCell& ticks = *editor.editorCellAtIndex(2);
//   ticks.setLeadingZeros(4);
//   ticks.setMinimumDelta(10);
//
// The number is the cell's intValue(). The cell sets no limits to it: its control does, or whoever
// receives its action.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/number_editor/digit_text.h"
#include "veltra/controls/number_editor/number_editor_look.h"
#include "veltra/controls/number_editor/number_steps.h"
#include "veltra/ui/action_cell.h"
#include "veltra/ui/color.h"
#include "veltra/ui/delegate_pointer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

class QkNumberEditorCell;

// Why editing has ended.
inline constexpr std::int32_t dfne_se_StopEditingCalled = 1;
inline constexpr std::int32_t dfne_se_EscapePressed = 2;
inline constexpr std::int32_t dfne_se_EnterPressed = 3;

class VELTRA_EXPORT QkNumberEditorCellDelegate {
public:
    virtual ~QkNumberEditorCellDelegate();

    // The cell is not in edit mode any more; `reason` is one of the three above. May delete it.
    virtual void stoppedEditingWithReason(QkNumberEditorCell& /*cell*/, std::int32_t /*reason*/) {}
};

class VELTRA_EXPORT QkNumberEditorCell : public ActionCell {
public:
    // A cell of the Plain look, with `text` as its value. It cannot be edited until
    // setEditable(true).
    explicit QkNumberEditorCell(std::string_view text = {});
    ~QkNumberEditorCell() override;

    // Not retained.
    QkNumberEditorCellDelegate* delegate() const noexcept { return m_delegate.get(); }
    void setDelegate(QkNumberEditorCellDelegate* delegate) noexcept { m_delegate = delegate; }

    // What it looks like where no colour is set. At first Plain.
    NumberEditorLook look() const noexcept { return m_look; }
    void setLook(NumberEditorLook look) { change(m_look, look); }

    // Colours, each with its setter, which redraws. Nothing, as at first, stands for the colour of
    // the look; the comment names that of Plain.
    using MaybeColor = std::optional<Color>;
    const MaybeColor& backgroundColor() const noexcept { return m_backgroundColor; }  // none
    void setBackgroundColor(const MaybeColor& color) { change(m_backgroundColor, color); }
    const MaybeColor& textColor() const noexcept { return m_textColor; }  // black
    void setTextColor(const MaybeColor& color) { change(m_textColor, color); }
    // The system's ground of selected text.
    const MaybeColor& editBackgroundColor() const noexcept { return m_editBackgroundColor; }
    void setEditBackgroundColor(const MaybeColor& color) { change(m_editBackgroundColor, color); }
    const MaybeColor& editTextColor() const noexcept { return m_editTextColor; }  // black
    void setEditTextColor(const MaybeColor& color) { change(m_editTextColor, color); }
    // Light grey, half transparent.
    const MaybeColor& shadowEightColor() const noexcept { return m_shadowEightColor; }
    void setShadowEightColor(const MaybeColor& color) { change(m_shadowEightColor, color); }
    // That of the digits. While a group is edited in a look of its own ground, the look's colour
    // stays, unless the ground has been set, too.
    const MaybeColor& leadingZerosColor() const noexcept { return m_leadingZerosColor; }
    void setLeadingZerosColor(const MaybeColor& color) { change(m_leadingZerosColor, color); }

    // Whether backgroundColor() is drawn behind the digits, if there is one. At first not.
    bool drawsBackground() const noexcept { return m_drawsBackground; }
    void setDrawsBackground(bool draws) { change(m_drawsBackground, draws); }

    // Whether digits have hard edges, as in old displays. At first not.
    bool disablesFontSmoothing() const noexcept { return m_disableFontSmoothing; }
    void setDisablesFontSmoothing(bool disables) { change(m_disableFontSmoothing, disables); }

    // As wide as this text is the cell, and the fonts of a control are fitted to it. Empty: as wide
    // as its value.
    const std::string& placeHolderString() const noexcept { return m_placeHolderString; }
    void setPlaceHolderString(std::string_view text) { m_placeHolderString = text; }

    // Zeros are put before the number until it has so many places; 0: none.
    std::uint32_t leadingZeros() const noexcept { return m_leadingZeros; }
    void setLeadingZeros(std::uint32_t places) { change(m_leadingZeros, places); }
    // So many faint eights stand behind the digits, at most 20; 0: none.
    std::uint32_t shadowEights() const noexcept { return m_shadowEights; }
    void setShadowEights(std::uint32_t count) { change(m_shadowEights, count); }

    // What is left free around the digits, in points. At first 1 on the left and on the right.
    float leftTextInset() const noexcept { return m_leftTextInset; }
    float rightTextInset() const noexcept { return m_rightTextInset; }
    float horizontalTextInsetSum() const noexcept { return m_leftTextInset + m_rightTextInset; }
    void setHorizontalTextInsets(float inset);  // both
    void setLeftTextInset(float inset) { change(m_leftTextInset, inset); }
    void setRightTextInset(float inset) { change(m_rightTextInset, inset); }
    float verticalTextInset() const noexcept { return m_verticalTextInset; }
    void setVerticalTextInset(float inset) { change(m_verticalTextInset, inset); }

    // So many digits typing keeps; those before fall off at the front. At first 3.
    std::uint32_t maxEditStringLen() const noexcept { return m_maxEditStringLen; }
    void setMaxEditStringLen(std::uint32_t digits) noexcept { m_maxEditStringLen = digits; }

    // The smallest step of a drag, the step of the wheel and of a screen reader. At first 1. The
    // arrow keys go by 1 whatever it is.
    std::int32_t minimumDelta() const noexcept { return m_minimumDelta; }
    void setMinimumDelta(std::int32_t delta) noexcept { m_minimumDelta = delta; }
    // Steps of drags (for each point), wheel and arrow keys while Shift (fine), Control or Command
    // (coarse) is held. At first 0: the keys change nothing.
    std::int32_t fineStep() const noexcept { return m_fineStep; }
    void setFineStep(std::int32_t step) noexcept { m_fineStep = step; }
    std::int32_t coarseStep() const noexcept { return m_coarseStep; }
    void setCoarseStep(std::int32_t step) noexcept { m_coarseStep = step; }

    // The one way in which the user changes the number: forgets that digits are being typed, sets
    // the value, redraws, and sends the action. A disabled cell keeps its value and sends nothing.
    void setNewValueAndSendAction(std::int32_t value);
    // Sends the action to the target if that responds to it, with this cell as sender. There is no
    // search for another receiver.
    virtual void sendCellAction();
    void sendAction() override { sendCellAction(); }

    // Edit mode, in which keys change the number. A disabled cell or one that is not editable does
    // not begin. Whoever ends it commits the digits that are being typed: all but Escape.
    bool isEditing() const noexcept { return m_editing; }
    // Whether there are digits that were typed and not committed.
    bool isEditedByNumberKeys() const noexcept { return m_editedByNumberKeys; }
    // They stay in sight and count as committed; nothing is sent.
    void forgetTypedDigits() noexcept { m_editedByNumberKeys = false; }
    virtual void startEditing();
    void stopEditing() { stopEditingAndResignFirstResponder(true); }
    void stopEditingAndResignFirstResponder(bool resigns) {
        stopEditingWithReason(dfne_se_StopEditingCalled, resigns);
    }
    // Redraws, then tells the delegate, then, with `resigns`, gives up the keyboard of the window.
    void stopEditingWithReason(std::int32_t reason, bool resigns);

    // In edit mode: digits are added to those typed before, Delete takes one back, Up and Down step
    // by one, Return and Enter commit and end, Escape restores the value before the first edit and
    // ends. Other keys do nothing.
    virtual void keyDown(const Event& event);
    bool wantsKey(const Event& event) const override;

    // Tracking: points are counted from the origin of the cell's frame. Follows the button until it
    // is up.
    static Point convertPoint(Point point, Point origin) noexcept { return point - origin; }
    bool startTracking(Point point, View& view) override;
    bool continueTracking(Point last, Point current, View& view) override;
    void scrollWheel(const Event& event) override;
    bool prefersTrackingUntilMouseUp() const override { return true; }
    bool stopsTrackingAtFirstDrag() const override { return true; }
    Point trackingOrigin(const Rect& frame) const override { return frame.origin; }

    // Whether the pointer is on it, which its control tells.
    bool isHovered() const noexcept { return m_isHovered; }
    void setHovered(bool isHovered);

    // Drawing: the background if there is one, the ground of editing, then the digits. A look other
    // than Plain shows the group under the pointer, and a caret and no padding while digits are
    // typed.
    void drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) override;
    virtual void drawEditingBackgroundWithFrame(Canvas& canvas, const Rect& frame, View& view);
    virtual void drawTitleWithFrame(Canvas& canvas, const Rect& frame, View& view);
    // The width of the placeholder, or of the value without one, rounded up, and the insets; the
    // height of a line and the insets, rounded up.
    Size cellSizeForBounds(const Rect& bounds) const override;

    // A horizontal slider without a name of its own has that of its control. A cell that is not
    // editable is not shown.
    AccessibilityRole accessibilityRole() const override;
    std::string accessibilityName() const override;
    AccessibilityOrientation accessibilityOrientation() const override;
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    bool setAccessibilityNumber(double value) override;
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;
    bool accessibilityIsFocused() const override;
    // The keyboard comes to its control; to the cell itself while that edits it.
    bool accessibilityIsFocusable() const override { return m_editing; }

private:
    template <typename T>
    void change(T& member, const T& value) {
        if (member == value) return;
        member = value;
        setNeedsDisplay();
    }
    NumberSteps steps() const noexcept { return {m_minimumDelta, m_fineStep, m_coarseStep}; }
    void changeBy(std::int64_t change) {
        setNewValueAndSendAction(numberChangedBy(intValue(), change));
    }
    void rememberOldValue();
    void typeDigit(char digit);
    void deleteDigit();
    bool isTyped() const noexcept;
    std::string title() const;
    NumberEditorColors colors(const View& view) const;
    void drawDigits(Canvas& canvas, const StyledText& text, const Rect& rect,
                    TextPlacement placement, const MaybeColor& zerosColor);

    MaybeColor m_backgroundColor;
    MaybeColor m_textColor;
    MaybeColor m_editBackgroundColor;
    MaybeColor m_editTextColor;
    MaybeColor m_shadowEightColor;
    MaybeColor m_leadingZerosColor;
    NumberEditorLook m_look = NumberEditorLook::Plain;
    std::string m_placeHolderString;
    bool m_drawsBackground = false;
    bool m_editedByNumberKeys = false;
    std::int32_t m_editedByNumberKeysOldValue = 0;  // before the first edit by keys
    bool m_editing = false;
    float m_leftTextInset = 1.0F;
    float m_rightTextInset = 1.0F;
    float m_verticalTextInset = 0.0F;
    std::uint32_t m_maxEditStringLen = 3;
    std::uint32_t m_leadingZeros = 0;
    std::uint32_t m_shadowEights = 0;
    DelegatePointer<QkNumberEditorCellDelegate> m_delegate;
    std::int32_t m_minimumDelta = 1;
    std::int32_t m_fineStep = 0;
    std::int32_t m_coarseStep = 0;
    bool m_disableFontSmoothing = false;
    bool m_isHovered = false;
    WholeSteps m_wheel;  // of fine wheels and pads
};

}  // namespace veltra
