// SPDX-License-Identifier: MIT
// A button with a title: pressed for a moment, or switched on and off.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/ui/control.h"
#include "veltra/ui/theme.h"

#include <optional>
#include <string>

namespace veltra {

class VELTRA_EXPORT ButtonCell : public Cell {
public:
    // Whether a click only sends the action, or switches the button on or off before.
    enum class Kind : std::uint8_t { Momentary, Toggle };

    // What the button is for, which decides how it looks.
    enum class Style : std::uint8_t {
        Plain,
        Primary,  // what most users will press next; one in each part of a window
        Danger,   // what cannot be undone
        Mode,     // a toggle whose being on is a state rather than an act, shown softly
        Bare,     // no face at rest: a symbol among text
    };
    // Draws a symbol that fills a square of 16 points.
    using Icon = void (*)(Canvas& canvas, Point upperLeft, Color color);

    // A button that is off, without an icon, in the Plain style.
    explicit ButtonCell(std::string_view title = {}, Kind kind = Kind::Momentary);

    // As it was made; it never changes.
    Kind kind() const noexcept { return m_kind; }

    // The title is the cell's text: setStringValue() changes it.
    std::string title() const { return stringValue(); }

    // Whether it is on. A Momentary one is drawn as on, too, when it was set so. Setting it sends
    // no action.
    bool isOn() const noexcept { return m_isOn; }
    void setOn(bool isOn);
    // The face when it is on; at first, and for nothing, the accent colour.
    void setOnColor(std::optional<Color> color);

    // How it looks; Plain at first. Setting it draws the button again.
    Style style() const noexcept { return m_style; }
    void setStyle(Style style);
    // Stands before the title, or alone in the middle. Null, as at first: none.
    void setIcon(Icon icon);
    // Of the corners, in points. Nothing, as at first: 6, for toggles 5.
    float cornerRadius() const noexcept;
    void setCornerRadius(std::optional<float> radius);

    // Whether the pointer is on it, which its control tells.
    bool isHovered() const noexcept { return m_isHovered; }
    void setHovered(bool isHovered);

    // As if it had been clicked: a toggle changes, then the action is sent. Nothing when disabled.
    void performClick();

    void drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) override;
    Size cellSizeForBounds(const Rect& bounds) const override;
    bool startTracking(Point point, View& view) override;
    bool continueTracking(Point last, Point current, View& view) override;
    void stopTracking(Point last, Point stop, View& view, bool mouseIsUp) override;
    bool prefersTrackingUntilMouseUp() const override { return true; }

    // Space, Return and Enter press the button that has the keyboard.
    bool wantsKey(const Event& event) const override;

    // Whether it is on, too.
    void encodeWithCoder(KeyedCoder& coder) const override;
    void decodeWithCoder(const KeyedCoder& coder) override;

    // The name is the one set, else the title.
    AccessibilityRole accessibilityRole() const override;
    std::string accessibilityName() const override;
    bool accessibilityIsChecked() const override { return m_isOn; }
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;

private:
    struct Paint {
        std::optional<Color> face;
        std::optional<Color> edge;
        Color ink;
    };
    Paint paint(const Theme& colors, Appearance appearance) const;

    const Kind m_kind;
    Style m_style = Style::Plain;
    Icon m_icon = nullptr;
    std::optional<float> m_radius;
    bool m_isHovered = false;
    bool m_isOn = false;
    bool m_isHot = false;  // the press is on it: letting go counts
    std::optional<Color> m_onColor;
};

// Space and Return press it when it has the keyboard, once however long they are held.
class VELTRA_EXPORT Button : public Control {
public:
    // A button of the system font, that is off and has no action yet.
    explicit Button(const Rect& frame, std::string_view title,
                    ButtonCell::Kind kind = ButtonCell::Kind::Momentary);

    // Its cell, where icon, style and colour are set. It lives until setCell() puts another in its
    // place, which must be a ButtonCell, too.
    ButtonCell& buttonCell() const noexcept { return static_cast<ButtonCell&>(*cell()); }

    // Whether it is on. Setting it sends no action.
    bool isOn() const noexcept { return buttonCell().isOn(); }
    void setOn(bool isOn) { buttonCell().setOn(isOn); }

    // As if it had been clicked: a toggle changes, then the action is sent. Nothing when disabled.
    // May delete the button.
    void performClick() { buttonCell().performClick(); }

    bool acceptsFirstResponder() const override { return isEnabled(); }
    void keyDown(const Event& event) override;
    void mouseEntered(const Event& event) override;
    void mouseExited(const Event& event) override;
    void viewDidMoveToWindow() override;
    Cursor cursorAt(Point point) const override;

    // Its bounds, with the corners of its face.
    std::optional<FocusShape> focusShape() const override;
};

}  // namespace veltra
