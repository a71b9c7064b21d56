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
#include <utility>
#include <vector>

namespace veltra {

class View;

// What an element is, which decides how a reader names it and what it offers.
enum class AccessibilityRole : std::uint8_t {
    Ignored,  // not shown itself; its children are shown in its place
    Group,
    Slider,
    LevelIndicator,
    Button,
    ToggleButton,
    StaticText,
};

// What a reader may do with an element, at its user's wish: change its value by one step, or press
// it.
enum class AccessibilityAction : std::uint8_t { Increment, Decrement, Press };

// Which way an element's value runs.
enum class AccessibilityOrientation : std::uint8_t { Unknown, Horizontal, Vertical };

// What about an element has changed.
enum class AccessibilityNotification : std::uint8_t {
    ValueChanged,
    NameChanged,
    StateChanged,
    FocusGained,
    ChildrenChanged,
};

// A value on a scale, in the element's own unit.
struct AccessibilityNumber {
    double value = 0.0;    // the present one
    double minimum = 0.0;  // the value never lies below it
    double maximum = 1.0;  // nor above it
    double step = 0.0;     // of Increment and Decrement; 0 when there is none
};

// One thing that a screen reader can speak of: a view or a cell. The defaults describe something
// that is not there.
class VELTRA_EXPORT AccessibilityElement : public Anchored {
public:
    AccessibilityElement() noexcept = default;
    ~AccessibilityElement() override;

    // What it is. A view or cell that is shown to readers overrides this.
    virtual AccessibilityRole accessibilityRole() const { return AccessibilityRole::Ignored; }

    // What a reader says first: the name set here, unless a subclass knows a better default.
    virtual std::string accessibilityName() const { return m_accessibilityName; }
    void setAccessibilityName(std::string name);
    // One sentence about what it is for or what it shows, beyond its name and value.
    virtual std::string accessibilityHelp() const { return m_accessibilityHelp; }
    void setAccessibilityHelp(std::string help) { m_accessibilityHelp = std::move(help); }

    // Which way its number runs on screen; Unknown where that means nothing.
    virtual AccessibilityOrientation accessibilityOrientation() const {
        return AccessibilityOrientation::Unknown;
    }

    // Its value and the limits; nothing when it has no number.
    virtual std::optional<AccessibilityNumber> accessibilityNumber() const { return std::nullopt; }
    // The value in words; empty when the number says it all.
    virtual std::string accessibilityValueText() const { return {}; }

    // Its states: whether it works at present, whether keys go to it.
    virtual bool accessibilityIsEnabled() const { return true; }
    virtual bool accessibilityIsFocused() const { return false; }
    // Whether the keyboard can come to it; at first, whether it can come to its view.
    virtual bool accessibilityIsFocusable() const;

    // Whether it is a switch that is on.
    virtual bool accessibilityIsChecked() const { return false; }

    // Returns false when the number cannot be set from outside.
    virtual bool setAccessibilityNumber(double /*value*/) { return false; }

    // What performAccessibilityAction() can do.
    virtual std::vector<AccessibilityAction> accessibilityActions() const { return {}; }
    // Returns false when it has no such action or is disabled. May delete the element.
    virtual bool performAccessibilityAction(AccessibilityAction /*action*/) { return false; }

    // The element that it is a part of, shown or not; null at the top.
    virtual AccessibilityElement* accessibilityParent() const { return nullptr; }

    // Its parts in the order in which they are read, shown or not. They live as long as nobody
    // changes the tree.
    virtual std::vector<AccessibilityElement*> accessibilityChildren() const { return {}; }

    // The view that it is, or is drawn in; null when it is in none.
    virtual View* accessibilityView() const { return nullptr; }
    // In the coordinates of that view.
    virtual Rect accessibilityFrame() const { return {}; }

    // Tells screen readers that something about this element has changed.
    void postAccessibilityNotification(AccessibilityNotification notification);

private:
    std::string m_accessibilityName;
    std::string m_accessibilityHelp;
};

// The children that are shown: an ignored child is replaced by its own shown children.
VELTRA_EXPORT std::vector<AccessibilityElement*> shownAccessibilityChildren(
    const AccessibilityElement& element);

// The nearest parent that is shown; null at the top.
VELTRA_EXPORT AccessibilityElement* shownAccessibilityParent(const AccessibilityElement& element);

// The deepest shown element at a point of the window of `root`; null when nothing of `root` can be
// seen there. What its superviews cut off does not count.
VELTRA_EXPORT AccessibilityElement* accessibilityElementAt(AccessibilityElement& root,
                                                           Point inWindow);

// The element's rectangle in its window's coordinates; empty when it is in none.
VELTRA_EXPORT Rect accessibilityFrameInWindow(const AccessibilityElement& element);
// What can be seen of it: empty when it is hidden or cut off as a whole.
VELTRA_EXPORT Rect accessibilityVisibleFrameInWindow(const AccessibilityElement& element);

}  // namespace veltra
