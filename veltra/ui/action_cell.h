// SPDX-License-Identifier: MIT
// A cell that can tell somebody.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/cell.h"
#include "veltra/ui/target_action.h"

namespace veltra {

class VELTRA_EXPORT ActionCell : public Cell {
public:
    // With the value that a cell is given, and no action.
    using Cell::Cell;

    // Not retained. Null: whoever responds in the key window.
    Anchored* target() const noexcept { return m_targetAction.target(); }
    void setTarget(Anchored* target) noexcept { m_targetAction.setTarget(target); }
    Action action() const noexcept { return m_targetAction.action(); }
    void setAction(Action action) noexcept { m_targetAction.setAction(action); }
    TargetAction& targetAction() noexcept { return m_targetAction; }
    std::int32_t tag() const noexcept { return m_tag; }
    void setTag(std::int32_t tag) noexcept { m_tag = tag; }

    // Sends the action to the target; the sender is the control view, or this cell when there is
    // none. Nothing is sent when there is no action or the target is gone.
    void sendAction() override;

    // The tag, too.
    void encodeWithCoder(KeyedCoder& coder) const override;
    void decodeWithCoder(const KeyedCoder& coder) override;

private:
    TargetAction m_targetAction;
    std::int32_t m_tag = 0;
};

}  // namespace veltra
