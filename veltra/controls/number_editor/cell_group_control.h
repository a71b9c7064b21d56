// SPDX-License-Identifier: MIT
// A control with a row of cells, one of which may be in edit mode: it lays them out from left to
// right, and sends the pointer, the wheel and the keys to the right one.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/number_editor/number_editor_cell.h"
#include "veltra/ui/control.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace veltra {

class DfNumberEditorControlDelegate;

class VELTRA_EXPORT QkCellGroupControl : public Control, public QkNumberEditorCellDelegate {
public:
    // A control without cells, that draws no background.
    explicit QkCellGroupControl(const Rect& frame = {});
    ~QkCellGroupControl() override;

    // For subclasses, which call it; not retained.
    DfNumberEditorControlDelegate* delegate() const noexcept;
    virtual void setDelegate(DfNumberEditorControlDelegate* delegate);

    // The cells, numbered from 0 on the left. An added cell, which must not be null, lies behind
    // the others, at the given frame, or beside the last one, on the ground; with a width alone it
    // is as high as the bounds. Where an index is out of range nothing happens.
    void addCell(std::unique_ptr<Cell> cell, const Rect& frame);
    void addCell(std::unique_ptr<Cell> cell, Size size);
    void addCell(std::unique_ptr<Cell> cell, float width);
    void setFrameOfCellAtIndex(const Rect& frame, std::int32_t index);
    void setSizeOfCellAtIndex(Size size, std::int32_t index);
    void setWidthOfCellAtIndex(float width, std::int32_t index);
    // The cell is destroyed as soon as no event or timer is being handled any more. Digits that
    // were typed into it are lost.
    void removeCellAtIndex(std::int32_t index);
    std::int32_t cellCount() const noexcept { return static_cast<std::int32_t>(m_cells.size()); }
    std::int32_t indexOfCell(const Cell* cell) const noexcept;  // -1: not one of them
    Cell* cellAtIndex(std::int32_t index) const noexcept;       // null: out of range
    Rect frameOfCellAtIndex(std::int32_t index) const noexcept;

    // Puts the cells side by side from x = 0 on; the second gives each its cellSize() and the
    // height of the bounds before.
    void recalculateCellPositions();
    void recalculateCellPositionsAndSizes();
    // Asks for the cell's frame to be drawn again.
    void updateCellInside(const Cell& cell);

    // Settings that are pushed to all cells, colours to the QkNumberEditorCells among them. See
    // there for what no colour means.
    using MaybeColor = std::optional<Color>;
    const MaybeColor& backgroundColor() const noexcept { return m_backgroundColor; }
    void setBackgroundColor(const MaybeColor& color);
    const MaybeColor& editBackgroundColor() const noexcept { return m_editBackgroundColor; }
    void setEditBackgroundColor(const MaybeColor& color);
    const MaybeColor& textColor() const noexcept { return m_textColor; }
    void setTextColor(const MaybeColor& color);
    const MaybeColor& editTextColor() const noexcept { return m_editTextColor; }
    void setEditTextColor(const MaybeColor& color);
    bool drawsBackground() const noexcept { return m_drawsBackground; }
    virtual void setDrawsBackground(bool draws);
    bool disablesFontSmoothing() const noexcept { return m_disableFontSmoothing; }
    void setDisablesFontSmoothing(bool disables);
    void setFont(const Font& font) override;
    void setFontSize(float size) { setFont(font().withSize(size)); }
    void setAlignment(TextAlignment alignment) override;
    void setControlSize(ControlSize size) override;
    // Disabling ends editing, and commits what was typed.
    void setEnabled(bool isEnabled) override;

    // Editing. The cell that is in edit mode, null when none is.
    QkNumberEditorCell* editingCell() const noexcept { return m_editingCell.get(); }
    // Ends the editing of another cell first. Does nothing where the control or the cell is
    // disabled or the cell is not editable. Does not ask for the keyboard.
    void startEditingForCell(Cell* cell);
    void stopEditingAndResignFirstResponder(bool resigns);
    // Returns whether the control has the keys of its window then.
    bool makeFirstResponderWithoutStartingEditing();
    // Whether the first cell is edited as soon as the keys arrive by Tab. At first not.
    bool becomeFirstResponderStartsEditing() const noexcept {
        return m_becomeFirstResponderStartsEditing;
    }
    void setBecomeFirstResponderStartsEditing(bool starts) noexcept {
        m_becomeFirstResponderStartsEditing = starts;
    }
    bool acceptsFirstResponder() const override { return true; }
    bool canBecomeKeyView() const override { return isEnabled() && Control::canBecomeKeyView(); }
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void viewDidMoveToWindow() override;

    // A press goes to each enabled and editable cell at its place, if willStartTracking...() allows
    // it. A double click starts editing, or ends it in the cell that is being edited.
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    void mouseUp(const Event& event) override;
    void mouseMoved(const Event& event) override;
    void mouseExited(const Event& event) override;
    // The first cell at the place gets it, if that is editable.
    void scrollWheel(const Event& event) override;
    virtual void cellMouseEventHandling(Cell& cell, const Rect& rect, const Event& event);
    // Return and Enter start editing, and end it; the arrows to the left and right start it, too,
    // where there are several cells, and then lead from cell to cell. All other keys go to the cell
    // in edit mode.
    void keyDown(const Event& event) override;
    bool wantsKey(const Event& event) const override;

    // While one of its cells follows the pointer, hides the pointer and holds it in place, so that
    // a drag does not end at the edge of the screen. At first not.
    bool locksPointer() const noexcept { return m_locksPointer; }
    void setLocksPointer(bool locks) noexcept { m_locksPointer = locks; }

    // The control is the delegate of its cells: forgets which one was in edit mode.
    void stoppedEditingWithReason(QkNumberEditorCell& cell, std::int32_t reason) override;

    // The background, if it draws one, then the cells.
    void drawRect(Canvas& canvas, const Rect& dirty) override;

    // The colours and flags, too.
    void encodeWithCoder(KeyedCoder& coder) const override;
    void decodeWithCoder(const KeyedCoder& coder) override;

    std::vector<AccessibilityElement*> accessibilityChildren() const override;

protected:
    // Sets the flag of the control alone.
    void keepDrawsBackground(bool draws);
    // Gives an added cell the settings of the control.
    virtual void setUpAddedCellAttributes(Cell& cell);

    // Hooks, which do nothing here. Each may delete the control.
    virtual bool willStartTrackingCellWithIndex(std::int32_t /*index*/) { return true; }
    virtual void mouseButtonWentDown() {}
    virtual void mouseButtonWentUp() {}
    virtual void scrollWheelWasMoved() {}
    virtual void keyInEditorWasPressed() {}

    // From a press to its release, or until the pointer is lost.
    bool mouseIsDown() const noexcept { return m_mouseIsDown; }
    bool mouseTrackingIsActive() const noexcept { return m_mouseTrackingActive; }
    void removeAllCells();

    // Calls `function` with each QkNumberEditorCell.
    template <typename Function>
    void forEachEditorCell(Function function) const {
        for (const auto& cell : m_cells) {
            if (auto* const editor = dynamic_cast<QkNumberEditorCell*>(cell.get()))
                function(*editor);
        }
    }

private:
    bool isIndex(std::int32_t index) const noexcept { return index >= 0 && index < cellCount(); }
    bool isEditableCell(const Cell& cell) const noexcept {
        return cell.isEditable() && cell.isEnabled();
    }
    std::optional<std::size_t> indexAtPoint(Point point) const;
    void startTrackingCell(Cell& cell, const Rect& rect, const Event& event);
    void endTracking();
    void loseTracking();
    void walk(bool forward, const Event& event);
    void sendToEditingCell(const Event& event);
    void setHoveredCell(Cell* cell);
    void drop(std::unique_ptr<Cell> cell);
    template <typename Setter, typename T>
    void push(Setter setter, const T& value);

    DelegatePointer<DfNumberEditorControlDelegate> m_controlDelegate;
    std::vector<std::unique_ptr<Cell>> m_cells;
    std::vector<Rect> m_cellFrames;  // one for each
    MaybeColor m_backgroundColor;
    MaybeColor m_editBackgroundColor;
    MaybeColor m_textColor;
    MaybeColor m_editTextColor;
    bool m_drawsBackground = false;
    bool m_disableFontSmoothing = false;
    WeakPointer<QkNumberEditorCell> m_editingCell;
    bool m_mouseIsDown = false;
    bool m_becomeFirstResponderStartsEditing = false;
    std::int32_t m_mouseTrackingEventNumber = 0;  // of the press that is followed
    bool m_mouseTrackingActive = false;
    WeakPointer<Cell> m_mouseTrackingCell;
    Rect m_mouseTrackingCellFrame;
    WholeSteps m_mouseTrackingSteps;
    WeakPointer<QkNumberEditorCell> m_hoveredCell;
    bool m_locksPointer = false;
    bool m_pointerIsLocked = false;
};

}  // namespace veltra
