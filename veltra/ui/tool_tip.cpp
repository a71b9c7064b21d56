// SPDX-License-Identifier: MIT
#include "veltra/ui/tool_tip.h"

#include "veltra/base/immortal.h"
#include "veltra/ui/port.h"
#include "veltra/ui/view.h"
#include "veltra/ui/window.h"

#include <utility>

namespace veltra {

namespace {

// A knob of a usual size.
Rect aroundPoint(Point point) {
    constexpr float kRadius = 6.0F;
    return Rect{point, {}}.inset(-kRadius, -kRadius);
}

}  // namespace

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
    showToolTipWindowForView(view, object, tag, aroundPoint(position), ToolTipSide::Above);
}

void ToolTipWindow::showToolTipWindowForView(View& view, Anchored* object, std::int32_t tag,
                                             const Rect& around, ToolTipSide side) {
    closeToolTipWindow();
    m_view = &view;
    m_object = object;
    m_tag = tag;
    m_shown.side = side;
    m_isOpen = true;
    place(view, around);
}

void ToolTipWindow::updateToolTipPosition(Point position, View& view) {
    updateToolTipPosition(aroundPoint(position), view);
}

void ToolTipWindow::updateToolTipPosition(const Rect& around, View& view) {
    if (!m_isOpen || m_view.get() != &view) return;
    place(view, around);
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

bool ToolTipWindow::isOpenFor(const View& view, const Anchored* object) const noexcept {
    return isOpen() && m_view.get() == &view && m_object.get() == object;
}

std::optional<ToolTipWindow::Shown> ToolTipWindow::shownIn(const Window& window) const {
    if (!isOpen() || m_view->window() != &window) return std::nullopt;
    return m_shown;
}

void ToolTipWindow::place(View& view, const Rect& around) {
    const WeakPointer<View> shown(&view);
    std::string text = toolTipText(m_object.get(), m_tag);
    // Meanwhile it may have been closed, or opened for another view; the view may be gone.
    if (!m_isOpen || m_view.get() != shown.get()) return;
    if (text.empty() || !shown || view.window() == nullptr) return closeToolTipWindow();
    m_shown.text = std::move(text);
    m_shown.around = view.convertRectToView(around, nullptr);
    UiPort::current().showToolTip(*view.window(), m_shown.text, m_shown.around, m_shown.side);
}

}  // namespace veltra
