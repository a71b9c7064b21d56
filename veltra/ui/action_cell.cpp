// SPDX-License-Identifier: MIT
#include "veltra/ui/action_cell.h"

#include "veltra/ui/application.h"
#include "veltra/ui/view.h"

namespace veltra {

void ActionCell::sendAction() {
    if (!m_action || (m_hasTarget && !m_target)) return;
    Anchored* const sender =
        controlView() != nullptr ? static_cast<Anchored*>(controlView()) : this;
    Application::current().sendAction(m_action, m_target.get(), sender);
}

}  // namespace veltra
