// SPDX-License-Identifier: MIT
// A compact field for a number in one or more groups of digits, such as 0004.3.0456 for bar, beat
// and tick. The user drags a group up and down, turns the wheel over it, or double-clicks it and
// types.
//
//   auto& position = view.addSubview(std::make_unique<DfNumberEditorControl>(frame));
//   position.setEditorCellCount(3);
//   position.setPlaceHolderStringOfEditorCellAtIndex("0000", 0);
//   position.setDelegate(&barsBeatsTicks);
//   position.setValue(transport.position());
//   position.setTarget(&transport);
//   position.setAction(action<&Transport::positionChanged>());
//
// It holds one 64-bit value. The delegate says how the value and the groups belong together;
// without one the value is that of the first group.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/number_editor/cell_group_control.h"
#include "veltra/controls/number_editor/number_editor_delegate.h"
#include "veltra/infrastructure/timer.h"
#include "veltra/ui/cell_factory.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

class VELTRA_EXPORT DfNumberEditorControl : public QkCellGroupControl {
public:
    // One group of three places, right-aligned, in the user's font, as large as fits.
    explicit DfNumberEditorControl(const Rect& frame = {});
    ~DfNumberEditorControl() override;

    // The class of the cells that are made from now on: of all new controls, and of this one. What
    // it makes must be a QkNumberEditorCell, else it is one of those.
    static void setDefaultCellClass(const CellFactory& cells);
    static CellFactory defaultCellClass();
    void setCellClass(const CellFactory& cells) { m_cellClass = cells; }

    // The value. Setting it writes all groups and sends nothing. Digits that are being typed are
    // lost, and Escape leaves the new value.
    std::int64_t value() const noexcept { return m_value; }
    void setValue(std::int64_t value);
    // That at the last action; a host may set it.
    std::int64_t oldValue() const noexcept { return m_oldValue; }
    void setOldValue(std::int64_t value) noexcept { m_oldValue = value; }
    void updateOldValue() noexcept { m_oldValue = m_value; }
    // The groups then follow the present value.
    void setDelegate(DfNumberEditorControlDelegate* delegate) override;

    // Groups, numbered from 0 on the left, with a separator "/" between each two. Setting the count
    // makes all of them anew, at 0 and with the place holder ".00"; below 0 counts as 0. Functions
    // that take an index of no group change nothing, and return null, 0 or an empty text.
    void setEditorCellCount(std::int32_t count);
    std::int32_t editorCellCount() const noexcept { return (cellCount() + 1) / 2; }
    std::int32_t separatorCellCount() const noexcept { return std::max(editorCellCount() - 1, 0); }
    QkNumberEditorCell* editorCellAtIndex(std::int32_t index) const noexcept;
    QkNumberEditorCell* separatorCellAtIndex(std::int32_t index) const noexcept;
    std::vector<std::int32_t> editorCellValues() const;

    // See QkNumberEditorCell.
    void setMaxEditStringLenOfEditorCellAtIndex(std::uint32_t digits, std::int32_t index);
    std::uint32_t maxEditStringLenOfEditorCellAtIndex(std::int32_t index) const;
    void setPlaceHolderStringOfEditorCellAtIndex(std::string_view text, std::int32_t index);
    std::string placeHolderStringOfEditorCellAtIndex(std::int32_t index) const;
    void setLeadingZerosOfEditorCellAtIndex(std::uint32_t places, std::int32_t index);
    void setShadowEightsOfEditorCellAtIndex(std::uint32_t count, std::int32_t index);

    // What stands between two groups: the separator at an index lies behind the group of that
    // index.
    void setStringOfSeparatorCellAtIndex(std::string_view text, std::int32_t index);
    std::string stringOfSeparatorCellAtIndex(std::int32_t index) const;
    // In points; of the present frame. A width that is set lasts while custom widths are on, else
    // until the cells are laid out next.
    void setWidthOfSeparatorCellAtIndex(float width, std::int32_t index);
    float widthOfSeparatorCellAtIndex(std::int32_t index) const;
    bool useCustomSeparatorWidths() const noexcept { return m_useCustomSeparatorWidths; }
    void setUseCustomSeparatorWidths(bool uses);

    // The colour of the shadow eights; nothing, as at first: that of the look.
    const MaybeColor& shadowEightColor() const noexcept { return m_shadowEightColor; }
    void setShadowEightColor(const MaybeColor& color);  // for all cells
    // A look for all cells, at first Plain; the others leave more room around the digits. With a
    // size of font above 0: in the letters of the theme, at that size from now on.
    NumberEditorLook look() const noexcept { return m_look; }
    void setLook(NumberEditorLook look, float fontSize = 0.0F);
    // Keeps the flag, and leaves the cells alone: none of them draws a background at first.
    void setDrawsBackground(bool draws) override;

    // At first a change sends the action at once; otherwise a drag sends it when the button goes
    // up, once.
    bool sendsActionContinuous() const noexcept { return m_sendActionContinuous; }
    void setSendsActionContinuous(bool continuous) noexcept { m_sendActionContinuous = continuous; }
    // Sent to the target when the button has been held for 0.6 s, which ends a drag; not while the
    // control is disabled. None at first.
    Action longClickAction() const noexcept { return m_longClickAction; }
    void setLongClickAction(Action action) noexcept { m_longClickAction = action; }
    using Control::sendAction;
    // Sends the action to the target and takes the value over as the old one.
    bool sendAction();

    // From the value to the groups and back; see the delegate.
    virtual void calculateCellValuesFromValue();
    virtual std::int64_t calculateValueFromCellValues();
    // Tells the delegate.
    virtual void valueOfCellChanged(QkNumberEditorCell& cell);
    // The action of the groups.
    virtual void cellContentDidChange(QkNumberEditorCell& cell);

    // Sets the largest font with which all place holders and separators fit the width: from 100
    // points down to 1.5. It happens by itself with each change of the frame and of the groups, as
    // long as fonts are fitted, as at first; otherwise only the cells are laid out again.
    void recalculateFontSize();
    void recalculateCellSizes();
    bool fitsFontSize() const noexcept { return m_fitsFontSize; }
    void setFitsFontSize(bool fits);
    // Gives each cell the width that it needs in the present font, and with `resizesControl` the
    // control the width of all of them.
    void adjustCellsAndControlSizeToFontSize(bool resizesControl);

    // Copies and pastes the value as text with Control-C and Control-V ("0004.3.0456"). Of a text
    // that is pasted the whole numbers count, one for each group. At first off.
    bool usesClipboard() const noexcept { return m_usesClipboard; }
    void setUsesClipboard(bool uses) noexcept { m_usesClipboard = uses; }
    void copy() const;
    // Acts as a user's change: tells the delegate of each group that changes, and sends the action.
    void paste();
    // The value as it is read: numbers with their leading zeros, and separators.
    std::string valueText() const;

    // Whether a separator, point or comma that is typed leads to the next group. At first off.
    bool separatorsLead() const noexcept { return m_separatorsLead; }
    void setSeparatorsLead(bool lead) noexcept { m_separatorsLead = lead; }

    // What a focus ring runs around when it is not the control itself: the glass that it lies on,
    // in the coordinates of the control.
    std::optional<FocusShape> focusShape() const override;
    void setFocusShape(const std::optional<FocusShape>& shape) { m_focusShape = shape; }

    void keyDown(const Event& event) override;
    bool wantsKey(const Event& event) const override;
    void setEnabled(bool isEnabled) override;
    void viewDidMoveToWindow() override;
    Cursor cursorAt(Point point) const override;
    bool autoresizesSubviews() const override { return true; }

    // Nothing at all while it is disabled.
    void drawRect(Canvas& canvas, const Rect& dirty) override;

    // The value, of which deliberately only the low 32 bits are read back, as archives have always
    // been read; the groups follow when they are calculated next. And whether the action is
    // continuous, the custom widths, the colour of the shadow eights.
    void encodeWithCoder(KeyedCoder& coder) const override;
    void decodeWithCoder(const KeyedCoder& coder) override;

    // A group of horizontal sliders, one for each group of digits.
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityValueText() const override { return valueText(); }
    bool accessibilityIsFocused() const override {
        return hasKeyboard() && editingCell() == nullptr;
    }

protected:
    void setUpAddedCellAttributes(Cell& cell) override;
    void mouseButtonWentDown() override;
    void mouseButtonWentUp() override;
    void frameDidChange() override;

    // Add a separator, or a group that shows `text` as its number, behind the cells that are there.
    // Groups and separators take turns, with a group first: subclasses keep that.
    void ____addSeparatorCell(std::string_view text);
    void ____addEditableCellWithText(std::string_view text);

private:
    void addMadeCell(std::string_view text, bool isEditable);
    void layOut();
    void finishChange();
    void longClickTimeOut();
    bool isSeparatorKey(char16_t key) const;

    std::int64_t m_value = 0;
    std::int64_t m_oldValue = 0;
    bool m_useCustomSeparatorWidths = false;
    bool m_sendActionContinuous = true;
    bool m_needsToSendActionWhenMouseButtonGoesUp = false;
    MaybeColor m_shadowEightColor;
    QkTimer m_longClickTimer;
    Action m_longClickAction;
    CellFactory m_cellClass;
    NumberEditorLook m_look = NumberEditorLook::Plain;
    bool m_isReady = false;  // the constructor is through
    bool m_fitsFontSize = true;
    bool m_usesClipboard = false;
    bool m_separatorsLead = false;
    std::optional<FocusShape> m_focusShape;
};

}  // namespace veltra
