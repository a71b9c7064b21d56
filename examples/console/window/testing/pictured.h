// SPDX-License-Identifier: MIT
// A window that is only drawn, in the hands of a user; and views by their names.
#pragma once

#include "veltra/ui/accessibility.h"
#include "veltra/ui/picture.h"

namespace veltra::console::testing {

// What a screen reader finds under `element`, in its order.
inline std::vector<AccessibilityElement*> allUnder(const AccessibilityElement& element) {
    std::vector<AccessibilityElement*> all;
    for (AccessibilityElement* const child : shownAccessibilityChildren(element)) {
        all.push_back(child);
        const auto below = allUnder(*child);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}
inline AccessibilityElement* find(const AccessibilityElement& element, const std::string& name) {
    for (AccessibilityElement* const each : allUnder(element))
        if (each->accessibilityName() == name) return each;
    return nullptr;
}

class Pictured {
public:
    explicit Pictured(Size size, float scale = 1.0F) : m_picture(size, scale, Appearance::Dark) {}

    Window& window() { return m_picture.window(); }
    std::shared_ptr<const Image> draw() { return m_picture.draw(); }

    // In the window, which has the keyboard.
    template <typename V>
    V& show(std::unique_ptr<V> view) {
        V& shown = *view;
        window().setContentView(std::move(view));
        window().visibilityDidChange(true);
        window().keyStateDidChange(true);
        return shown;
    }

    void post(Event event) {
        event.window = &window();
        window().sendEvent(event);
    }
    void send(EventType type, Point point, ModifierFlags flags = {}, int clicks = 1) {
        Event event;
        event.type = type;
        event.locationInWindow = point;
        event.modifierFlags = flags;
        event.clickCount = clicks;
        event.deltaX = point.x - m_pointer.x;
        event.deltaY = point.y - m_pointer.y;
        m_pointer = point;
        post(event);
    }
    void click(Point point, int clicks = 1) {
        send(EventType::LeftMouseDown, point, {}, clicks);
        send(EventType::LeftMouseUp, point, {}, clicks);
    }
    void drag(Point from, Point to, ModifierFlags flags = {}) {
        send(EventType::LeftMouseDown, from, flags);
        send(EventType::LeftMouseDragged, to, flags);
        send(EventType::LeftMouseUp, to, flags);
    }
    // On the key with the number `code`.
    void key(char16_t character, ModifierFlags flags = {}, std::uint16_t code = 0,
             EventType type = EventType::KeyDown, bool isRepeat = false) {
        Event event;
        event.type = type;
        event.keyCode = code;
        event.isRepeat = isRepeat;
        event.modifierFlags = flags;
        event.characters = event.charactersIgnoringModifiers = std::u16string(1, character);
        post(event);
    }

private:
    PictureWindow m_picture;
    Point m_pointer;
};

}  // namespace veltra::console::testing
