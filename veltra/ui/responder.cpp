// SPDX-License-Identifier: MIT
#include "veltra/ui/responder.h"

namespace veltra {

namespace {

void pass(const Responder& from, void (Responder::*handler)(const Event&), const Event& event) {
    if (Responder* const next = from.nextResponder()) (next->*handler)(event);
}

}  // namespace

Responder::~Responder() = default;

void Responder::mouseDown(const Event& event) {
    pass(*this, &Responder::mouseDown, event);
}
void Responder::mouseDragged(const Event& event) {
    pass(*this, &Responder::mouseDragged, event);
}
void Responder::mouseUp(const Event& event) {
    pass(*this, &Responder::mouseUp, event);
}
void Responder::rightMouseDown(const Event& event) {
    pass(*this, &Responder::rightMouseDown, event);
}
void Responder::rightMouseDragged(const Event& event) {
    pass(*this, &Responder::rightMouseDragged, event);
}
void Responder::rightMouseUp(const Event& event) {
    pass(*this, &Responder::rightMouseUp, event);
}
void Responder::mouseMoved(const Event& event) {
    pass(*this, &Responder::mouseMoved, event);
}
void Responder::scrollWheel(const Event& event) {
    pass(*this, &Responder::scrollWheel, event);
}
void Responder::keyDown(const Event& event) {
    pass(*this, &Responder::keyDown, event);
}
void Responder::keyUp(const Event& event) {
    pass(*this, &Responder::keyUp, event);
}
void Responder::flagsChanged(const Event& event) {
    pass(*this, &Responder::flagsChanged, event);
}

bool Responder::tryToPerform(Action action, Anchored* sender) {
    for (Responder* responder = this; responder != nullptr;
         responder = responder->nextResponder()) {
        if (action.respondsTo(responder)) return action.send(responder, sender);
    }
    return false;
}

}  // namespace veltra
