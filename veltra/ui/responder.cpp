// SPDX-License-Identifier: MIT
#include "veltra/ui/responder.h"

#include <array>
#include <bit>

namespace veltra {

namespace {

struct Row {
    EventType type;
    Responder::Handler handler;
};

constexpr std::array<Row, 16> kHandlers{{
    {EventType::LeftMouseDown, &Responder::mouseDown},
    {EventType::LeftMouseUp, &Responder::mouseUp},
    {EventType::LeftMouseDragged, &Responder::mouseDragged},
    {EventType::RightMouseDown, &Responder::rightMouseDown},
    {EventType::RightMouseUp, &Responder::rightMouseUp},
    {EventType::RightMouseDragged, &Responder::rightMouseDragged},
    {EventType::MouseMoved, &Responder::mouseMoved},
    {EventType::MouseExited, &Responder::mouseExited},
    {EventType::ScrollWheel, &Responder::scrollWheel},
    {EventType::KeyDown, &Responder::keyDown},
    {EventType::KeyUp, &Responder::keyUp},
    {EventType::FlagsChanged, &Responder::flagsChanged},
    {EventType::TouchBegan, &Responder::touchBegan},
    {EventType::TouchMoved, &Responder::touchMoved},
    {EventType::TouchEnded, &Responder::touchEnded},
    {EventType::TouchCancelled, &Responder::touchCancelled},
}};

// A type is one bit.
constexpr std::size_t rowOf(EventType type) noexcept {
    return static_cast<std::size_t>(std::countr_zero(EventMask(type).bits()));
}

consteval bool isInOrder() {
    for (std::size_t i = 0; i < kHandlers.size(); ++i) {
        if (rowOf(kHandlers[i].type) != i) return false;
    }
    return true;
}
static_assert(isInOrder());

}  // namespace

Responder::~Responder() = default;

Responder::Handler Responder::handlerFor(EventType type) noexcept {
    return kHandlers[rowOf(type)].handler;
}

void Responder::pass(Handler handler, const Event& event) {
    if (Responder* const next = nextResponder()) {
        (next->*handler)(event);
    } else {
        noResponderFor(event);
    }
}

bool Responder::tryToPerform(Action action, Anchored* sender) {
    for (Responder* responder = this; responder != nullptr;
         responder = responder->nextResponder()) {
        if (action.respondsTo(responder)) return action.send(responder, sender);
    }
    return false;
}

}  // namespace veltra
