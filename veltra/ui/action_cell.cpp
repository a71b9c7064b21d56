// SPDX-License-Identifier: MIT
#include "veltra/ui/action_cell.h"

#include "veltra/ui/application.h"
#include "veltra/ui/control.h"
#include "veltra/ui/keyed_coder.h"

namespace veltra {

namespace {
constexpr char kTag[] = "CELL_TAG";
}

void ActionCell::sendAction() {
    if (!m_targetAction.isReady()) return;
    if (auto* const control = dynamic_cast<Control*>(controlView())) {
        control->sendAction(action(), target());
        return;
    }
    Anchored* const sender =
        controlView() != nullptr ? static_cast<Anchored*>(controlView()) : this;
    Application::current().sendAction(action(), target(), sender);
}

void ActionCell::encodeWithCoder(KeyedCoder& coder) const {
    Cell::encodeWithCoder(coder);
    coder.encodeInt64(m_tag, kTag);
}

void ActionCell::decodeWithCoder(const KeyedCoder& coder) {
    const WeakPointer<Cell> self(this);
    Cell::decodeWithCoder(coder);
    if (!self) return;
    m_tag = static_cast<std::int32_t>(coder.decodeInt64(kTag, m_tag));
}

}  // namespace veltra
