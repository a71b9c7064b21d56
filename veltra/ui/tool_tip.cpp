// SPDX-License-Identifier: MIT
#include "veltra/ui/tool_tip.h"

#include "veltra/base/immortal.h"
#include "veltra/ui/port.h"
#include "veltra/ui/view.h"
#include "veltra/ui/window.h"

namespace veltra {

ToolTipSource::~ToolTipSource() = default;

std::string toolTipText(Anchored* object, std::int32_t tag) {
    auto* const source = dynamic_cast<ToolTipSource*>(object);
    return source != nullptr ? source->stringForTag(tag) : std::string();
}

ToolTipWindow& ToolTipWindow::shared() {
    static Immortal<ToolTipWindow> window;
    return *window;
}

void ToolTipWindow::showToolTipWindowForView(View& view, Anchored* object, std::int32_t tag,
                                             Point position) {
    closeToolTipWindow();
    m_view = &view;
    m_object = object;
    m_tag = tag;
    m_isOpen = place(view, position);
}

void ToolTipWindow::updateToolTipPosition(Point position, View& view) {
    if (!m_isOpen || m_view.get() != &view) return;
    if (!place(view, position)) closeToolTipWindow();
}

void ToolTipWindow::closeToolTipWindow() {
    if (m_isOpen) UiPort::current().closeToolTip();
    m_isOpen = false;
}

void ToolTipWindow::viewLeaves(const View& view) {
    if (!m_isOpen) return;
    const View* shown = m_view.get();
    while (shown != nullptr && shown != &view)
        shown = shown->superview();
    if (shown != nullptr || !m_view) closeToolTipWindow();
}

bool ToolTipWindow::place(View& view, Point position) {
    const std::string text = toolTipText(m_object.get(), m_tag);
    if (text.empty() || !m_view || view.window() == nullptr) return false;
    UiPort::current().showToolTip(*view.window(), text, view.convertPointToView(position, nullptr));
    return true;
}

}  // namespace veltra
