// SPDX-License-Identifier: MIT
// Whom a control or its cell tells, and what it does to them.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/action.h"

namespace veltra {

class TargetAction {
public:
    // Not retained. Null: whoever responds in the key window.
    Anchored* target() const noexcept { return m_target.get(); }
    void setTarget(Anchored* target) noexcept {
        m_target = target;
        m_hasTarget = target != nullptr;
    }
    Action action() const noexcept { return m_action; }
    void setAction(Action action) noexcept { m_action = action; }

    // Neither was set.
    bool isEmpty() const noexcept { return !m_action && !m_hasTarget; }
    // Whether there is something to send: an action, and no target that has died.
    bool isReady() const noexcept { return m_action && (!m_hasTarget || m_target); }

private:
    WeakPointer<Anchored> m_target;
    bool m_hasTarget = false;  // also when it is gone
    Action m_action;
};

}  // namespace veltra
