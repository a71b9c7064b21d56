// SPDX-License-Identifier: MIT
// The base of everything that takes part in the responder chain: what it does not handle goes to
// the next responder.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/action.h"
#include "veltra/export.h"
#include "veltra/ui/accessibility.h"
#include "veltra/ui/event.h"

namespace veltra {

// Every event handler may delete the responder it is called on.
class VELTRA_EXPORT Responder : public AccessibilityElement {
public:
    Responder() noexcept = default;
    Responder(const Responder&) = delete;
    Responder& operator=(const Responder&) = delete;
    ~Responder() override;

    // A view's next responder is its superview, the topmost one's the window, a window's the
    // application. Null ends the chain.
    virtual Responder* nextResponder() const { return nullptr; }

    // What arrives here and is not overridden goes to the next responder.
    virtual void mouseDown(const Event& event);
    virtual void mouseDragged(const Event& event);
    virtual void mouseUp(const Event& event);
    virtual void rightMouseDown(const Event& event);
    virtual void rightMouseDragged(const Event& event);
    virtual void rightMouseUp(const Event& event);
    virtual void mouseMoved(const Event& event);
    virtual void scrollWheel(const Event& event);
    virtual void keyDown(const Event& event);
    virtual void keyUp(const Event& event);
    virtual void flagsChanged(const Event& event);

    // The pointer has come onto, or has left, this responder; these are not passed on.
    virtual void mouseEntered(const Event& /*event*/) {}
    virtual void mouseExited(const Event& /*event*/) {}

    // Whether keys may go here first.
    virtual bool acceptsFirstResponder() const { return false; }
    // Asked when the change is about to happen; false prevents it.
    virtual bool becomeFirstResponder() { return true; }
    virtual bool resignFirstResponder() { return true; }

    // Sends the action to this responder or the nearest one up the chain that responds. Answers
    // false when none does.
    bool tryToPerform(Action action, Anchored* sender);
};

}  // namespace veltra
