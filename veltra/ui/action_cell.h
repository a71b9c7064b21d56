// SPDX-License-Identifier: MIT
// A cell that can tell somebody.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/action.h"
#include "veltra/ui/cell.h"

namespace veltra {

class VELTRA_EXPORT ActionCell : public Cell {
public:
    using Cell::Cell;

    // Not retained. Null: whoever responds in the key window.
    Anchored* target() const noexcept { return m_target.get(); }
    void setTarget(Anchored* target) noexcept {
        m_target = target;
        m_hasTarget = target != nullptr;
    }
    Action action() const noexcept { return m_action; }
    void setAction(Action action) noexcept { m_action = action; }
    std::int32_t tag() const noexcept { return m_tag; }
    void setTag(std::int32_t tag) noexcept { m_tag = tag; }

    // Sends the action to the target; the sender is the control view, or this cell when there is
    // none. Nothing is sent when there is no action or the target is gone.
    void sendAction() override;

private:
    WeakPointer<Anchored> m_target;
    bool m_hasTarget = false;  // also when it is gone
    Action m_action;
    std::int32_t m_tag = 0;
};

}  // namespace veltra
