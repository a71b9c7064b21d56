// SPDX-License-Identifier: MIT
#include "veltra/ui/accessibility.h"

#include "veltra/ui/port.h"
#include "veltra/ui/view.h"

namespace veltra {

AccessibilityElement::~AccessibilityElement() {
    cutAnchor();
    UiPort::current().accessibilityElementDied(*this);
}

void AccessibilityElement::setAccessibilityName(std::string name) {
    if (name == m_accessibilityName) return;
    m_accessibilityName = std::move(name);
    postAccessibilityNotification(AccessibilityNotification::NameChanged);
}

bool AccessibilityElement::accessibilityIsFocusable() const {
    const View* const view = accessibilityView();
    return view != nullptr && view->acceptsFirstResponder();
}

void AccessibilityElement::postAccessibilityNotification(AccessibilityNotification notification) {
    UiPort::current().accessibilityChanged(*this, notification);
}

std::vector<AccessibilityElement*> shownAccessibilityChildren(const AccessibilityElement& element) {
    std::vector<AccessibilityElement*> shown;
    for (AccessibilityElement* child : element.accessibilityChildren()) {
        if (child->accessibilityRole() != AccessibilityRole::Ignored) {
            shown.push_back(child);
            continue;
        }
        const auto below = shownAccessibilityChildren(*child);
        shown.insert(shown.end(), below.begin(), below.end());
    }
    return shown;
}

AccessibilityElement* shownAccessibilityParent(const AccessibilityElement& element) {
    AccessibilityElement* parent = element.accessibilityParent();
    while (parent != nullptr && parent->accessibilityRole() == AccessibilityRole::Ignored)
        parent = parent->accessibilityParent();
    return parent;
}

AccessibilityElement* accessibilityElementAt(AccessibilityElement& root, Point inWindow) {
    if (!pointInRect(inWindow, accessibilityVisibleFrameInWindow(root))) return nullptr;
    const auto children = shownAccessibilityChildren(root);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {  // the topmost first
        if (AccessibilityElement* found = accessibilityElementAt(**child, inWindow)) return found;
    }
    return &root;
}

Rect accessibilityFrameInWindow(const AccessibilityElement& element) {
    const View* const view = element.accessibilityView();
    if (view == nullptr || view->window() == nullptr) return {};
    return view->convertRectToView(element.accessibilityFrame(), nullptr);
}

Rect accessibilityVisibleFrameInWindow(const AccessibilityElement& element) {
    const View* const view = element.accessibilityView();
    return view != nullptr ? view->visiblePartInWindow(element.accessibilityFrame()) : Rect{};
}

}  // namespace veltra
