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
    // A member function of this class that takes an event.
    using Handler = void (Responder::*)(const Event&);

    Responder() noexcept = default;
    Responder(const Responder&) = delete;
    Responder& operator=(const Responder&) = delete;
    ~Responder() override;

    // A view's next responder is its superview, the topmost one's the window, a window's the
    // application. Null ends the chain.
    virtual Responder* nextResponder() const { return nullptr; }

    // What arrives here and is not overridden goes to the next responder.
    virtual void mouseDown(const Event& event) { pass(&Responder::mouseDown, event); }
    virtual void mouseDragged(const Event& event) { pass(&Responder::mouseDragged, event); }
    virtual void mouseUp(const Event& event) { pass(&Responder::mouseUp, event); }
    virtual void rightMouseDown(const Event& event) { pass(&Responder::rightMouseDown, event); }
    virtual void rightMouseDragged(const Event& event) {
        pass(&Responder::rightMouseDragged, event);
    }
    virtual void rightMouseUp(const Event& event) { pass(&Responder::rightMouseUp, event); }
    virtual void mouseMoved(const Event& event) { pass(&Responder::mouseMoved, event); }
    virtual void scrollWheel(const Event& event) { pass(&Responder::scrollWheel, event); }
    virtual void keyDown(const Event& event) { pass(&Responder::keyDown, event); }
    virtual void keyUp(const Event& event) { pass(&Responder::keyUp, event); }
    virtual void flagsChanged(const Event& event) { pass(&Responder::flagsChanged, event); }

    // The pointer has come onto, or has left, this responder; these are not passed on.
    virtual void mouseEntered(const Event& /*event*/) {}
    virtual void mouseExited(const Event& /*event*/) {}

    // A finger on a touch screen; see View::acceptsTouches(). It belongs to the view that it began
    // on, wherever it goes. Each touchBegan() is followed by one touchEnded() or touchCancelled().
    // These are not passed on.
    virtual void touchBegan(const Event& /*event*/) {}
    virtual void touchMoved(const Event& /*event*/) {}
    virtual void touchEnded(const Event& /*event*/) {}
    virtual void touchCancelled(const Event& /*event*/) {}

    // Called on the last responder of the chain when nobody has handled the event.
    virtual void noResponderFor(const Event& /*event*/) {}

    // The handler for a type of events.
    static Handler handlerFor(EventType type) noexcept;

    // Whether keys may go here first.
    virtual bool acceptsFirstResponder() const { return false; }
    // Asked just before the change happens; returning false prevents it.
    virtual bool becomeFirstResponder() { return true; }
    virtual bool resignFirstResponder() { return true; }

    // Whether a key (a KeyDown event) belongs to this responder before the shortcuts of the host
    // see it. Asked of the first responder only. A view that edits says true for the keys that it
    // edits with: digits, Delete, arrows, Return, Escape, Space where it means something.
    virtual bool wantsKey(const Event& /*event*/) const { return false; }

    // Sends the action to this responder or the nearest one up the chain that responds. Returns
    // false when none does.
    bool tryToPerform(Action action, Anchored* sender);

private:
    void pass(Handler handler, const Event& event);
};

}  // namespace veltra
