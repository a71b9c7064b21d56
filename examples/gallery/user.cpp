// SPDX-License-Identifier: MIT
#include "user.h"

#include "veltra/platform/clock.h"
#include "veltra/ui/application.h"

namespace veltra::gallery {

namespace {

std::int32_t presses = 0;
Point pointer;

void send(Window& window, EventType type, Point point, std::int32_t clickCount) {
    Event event;
    event.type = type;
    event.timestamp = Clocks::current().monotonic().moment();
    event.locationInWindow = point;
    event.clickCount = clickCount;
    event.eventNumber = presses;
    if (type == EventType::LeftMouseDragged) {
        event.deltaX = point.x - pointer.x;
        event.deltaY = point.y - pointer.y;
    }
    pointer = point;
    event.window = &window;
    Application::current().postEvent(std::move(event));
}

}  // namespace

void hover(Window& window, Point point) {
    send(window, EventType::MouseMoved, point, 0);
}

void press(Window& window, Point point, std::int32_t clickCount) {
    hover(window, point);
    ++presses;
    send(window, EventType::LeftMouseDown, point, clickCount);
}

void drag(Window& window, Point point) {
    send(window, EventType::LeftMouseDragged, point, 1);
}

void release(Window& window, Point point) {
    send(window, EventType::LeftMouseUp, point, 1);
}

void wheel(Window& window, Point point, float notches) {
    Event event;
    event.type = EventType::ScrollWheel;
    event.timestamp = Clocks::current().monotonic().moment();
    event.locationInWindow = point;
    event.deltaY = notches;
    event.window = &window;
    Application::current().postEvent(std::move(event));
}

void type(Window& window, std::u16string_view characters) {
    for (const char16_t character : characters) {
        Event event;
        event.type = EventType::KeyDown;
        event.timestamp = Clocks::current().monotonic().moment();
        event.characters = event.charactersIgnoringModifiers = std::u16string(1, character);
        event.window = &window;
        Application::current().postEvent(std::move(event));
    }
}

void focus(Window& window) {
    window.keyboardArrives(true);
}

}  // namespace veltra::gallery
