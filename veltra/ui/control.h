// SPDX-License-Identifier: MIT
// A view that the user operates: it draws and tracks with a cell and sends an action.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/cell.h"
#include "veltra/ui/cell_tracking.h"
#include "veltra/ui/target_action.h"
#include "veltra/ui/view.h"

#include <memory>

namespace veltra {

class VELTRA_EXPORT Control : public View {
public:
    // A control without a cell draws nothing and passes events on; subclasses may have cells of
    // their own.
    explicit Control(const Rect& frame = {}, std::unique_ptr<Cell> cell = nullptr);
    ~Control() override;

    // The cell that it draws and tracks with; null when it has none. The control owns it.
    Cell* cell() const noexcept { return m_cell.get(); }
    // The cell before is destroyed as soon as no event or timer is being handled any more. An
    // ActionCell without a target and an action of its own takes over those of the control.
    void setCell(std::unique_ptr<Cell> cell);

    // Those of the cell when it is an ActionCell, else the control's own: there is one of each. The
    // target is not retained; null: whoever responds in the key window.
    virtual Anchored* target() const { return targetAction().target(); }
    virtual void setTarget(Anchored* target) { targetAction().setTarget(target); }
    virtual Action action() const { return targetAction().action(); }
    virtual void setAction(Action action) { targetAction().setAction(action); }

    // A number of the client's own, 0 at first: to tell controls with one action apart.
    std::int32_t tag() const noexcept { return m_tag; }
    void setTag(std::int32_t tag) noexcept { m_tag = tag; }

    // Sends an action with this control as sender. Returns false when nobody responds. May delete
    // the control.
    virtual bool sendAction(Action action, Anchored* target);
    // Its own action to its own target; nothing when there is no action or the target is gone.
    bool sendAction();

    // Setting one of these sets it for the cell, too. A subclass with other cells overrides them.
    virtual bool isEnabled() const { return m_isEnabled; }
    virtual void setEnabled(bool isEnabled);
    const Font& font() const noexcept { return m_font; }
    virtual void setFont(const Font& font);
    TextAlignment alignment() const noexcept { return m_alignment; }
    virtual void setAlignment(TextAlignment alignment);
    ControlSize controlSize() const noexcept { return m_controlSize; }
    virtual void setControlSize(ControlSize size);

    // The cell's value in three forms, which Cell describes: 0 or an empty text without a cell.
    std::int32_t intValue() const { return m_cell ? m_cell->intValue() : 0; }
    double doubleValue() const { return m_cell ? m_cell->doubleValue() : 0.0; }
    std::string stringValue() const { return m_cell ? m_cell->stringValue() : std::string(); }

    // Sets the cell's value and draws it again; sends no action. Nothing without a cell.
    void setIntValue(std::int32_t value);
    void setDoubleValue(double value);
    void setStringValue(std::string_view value);

    // Gives the control the size of its cell.
    void sizeToFit();

    // Ends the tracking of the cell, as if the pointer had been lost. Nothing without one.
    void cancelTracking() { m_tracking.cancel(); }

    // Asks the cell.
    bool wantsKey(const Event& event) const override;

    // The cell takes the press when it wants to; a control that is disabled swallows it. What
    // follows is sent on as CellTracking says; the action goes out with the release that the cell
    // had asked for.
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    void mouseUp(const Event& event) override;
    void scrollWheel(const Event& event) override;
    void viewDidMoveToWindow() override;

    void drawRect(Canvas& canvas, const Rect& dirty) override;

    // The tag, whether it is enabled, font, alignment and size; and the cell as an object of its
    // own.
    virtual void encodeWithCoder(KeyedCoder& coder) const;
    virtual void decodeWithCoder(const KeyedCoder& coder);

    // A cell that is shown stands for the control.
    std::vector<AccessibilityElement*> accessibilityChildren() const override;
    bool accessibilityIsEnabled() const override { return isEnabled(); }

protected:
    // The cell fills the bounds.
    void frameDidChange() override;

private:
    TargetAction& targetAction() const;
    template <typename T, typename Setter>
    void change(T& member, const T& value, Setter setter);

    std::unique_ptr<Cell> m_cell;
    CellTracking m_tracking;
    mutable TargetAction m_own;  // used without an ActionCell
    std::int32_t m_tag = 0;
    Font m_font = Font::systemFont(13.0F);
    TextAlignment m_alignment = TextAlignment::Left;
    ControlSize m_controlSize = ControlSize::Regular;
    bool m_isEnabled = true;
};

}  // namespace veltra
