// SPDX-License-Identifier: MIT
// What a screen reader is told about a view or cell, and what it may do with it.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/weak_anchor.h"
#include "veltra/export.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace veltra {

class View;

enum class AccessibilityRole : std::uint8_t {
    Ignored,  // not shown itself; its children stand in its place
    Group,
    Slider,
    LevelIndicator,
    Button,
    ToggleButton,
    StaticText,
};

enum class AccessibilityAction : std::uint8_t { Increment, Decrement, Press };

enum class AccessibilityOrientation : std::uint8_t { Unknown, Horizontal, Vertical };

enum class AccessibilityNotification : std::uint8_t {
    ValueChanged,
    NameChanged,
    StateChanged,
    FocusGained,
    ChildrenChanged,
};

struct AccessibilityNumber {
    double value = 0.0;
    double minimum = 0.0;
    double maximum = 1.0;
    double step = 0.0;  // of Increment and Decrement; 0 when there is none
};

// The defaults are those of something that is not there.
class VELTRA_EXPORT AccessibilityElement : public Anchored {
public:
    AccessibilityElement() noexcept = default;
    ~AccessibilityElement() override;

    virtual AccessibilityRole accessibilityRole() const { return AccessibilityRole::Ignored; }
    virtual std::string accessibilityName() const { return {}; }
    virtual AccessibilityOrientation accessibilityOrientation() const {
        return AccessibilityOrientation::Unknown;
    }

    virtual std::optional<AccessibilityNumber> accessibilityNumber() const { return std::nullopt; }
    // The value in words; empty when the number says it all.
    virtual std::string accessibilityValueText() const { return {}; }
    virtual bool accessibilityIsEnabled() const { return true; }
    virtual bool accessibilityIsFocused() const { return false; }
    virtual bool accessibilityIsChecked() const { return false; }

    // Answers false when the number cannot be set from outside.
    virtual bool setAccessibilityNumber(double /*value*/) { return false; }
    virtual std::vector<AccessibilityAction> accessibilityActions() const { return {}; }
    // Answers false when it has no such action or is disabled. May delete the element.
    virtual bool performAccessibilityAction(AccessibilityAction /*action*/) { return false; }

    virtual AccessibilityElement* accessibilityParent() const { return nullptr; }
    virtual std::vector<AccessibilityElement*> accessibilityChildren() const { return {}; }

    // The view that it is, or is drawn in; null when it is in none.
    virtual View* accessibilityView() const { return nullptr; }
    // In the coordinates of that view.
    virtual Rect accessibilityFrame() const { return {}; }

    // Tells who listens that something has changed.
    void postAccessibilityNotification(AccessibilityNotification notification);
};

// The children as they are shown: in place of each ignored one, its own.
VELTRA_EXPORT std::vector<AccessibilityElement*> shownAccessibilityChildren(
    const AccessibilityElement& element);

// The nearest parent that is shown; null at the top.
VELTRA_EXPORT AccessibilityElement* shownAccessibilityParent(const AccessibilityElement& element);

// The deepest shown element at a point of the window of `root`; null when `root` does not contain
// the point.
VELTRA_EXPORT AccessibilityElement* accessibilityElementAt(AccessibilityElement& root,
                                                           Point inWindow);

// The element's rectangle in its window's coordinates; empty when it is in none.
VELTRA_EXPORT Rect accessibilityFrameInWindow(const AccessibilityElement& element);

}  // namespace veltra
