// SPDX-License-Identifier: MIT
// The application: one object for the whole process. It knows the event that is being handled and
// the windows that have the keyboard, and finds the receiver of an action.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/platform/run_loop.h"
#include "veltra/ui/event.h"
#include "veltra/ui/responder.h"

#include <deque>
#include <memory>
#include <vector>

namespace veltra {

class VELTRA_EXPORT Application final : public Responder {
public:
    // The application. It is made on first use and lives as long as the process.
    static Application& current();

    // Sends the action to the target. Without a target it goes to the first that responds: the key
    // window's responder chain, then that of the main window if it is another, then the delegate.
    // Returns false when nobody does. Anyone in the chain may be deleted meanwhile.
    bool sendAction(Action action, Anchored* target, Anchored* sender);

    // Last in the chain of actions; not retained.
    Anchored* delegate() const noexcept { return m_delegate.get(); }
    void setDelegate(Anchored* delegate) noexcept { m_delegate = delegate; }

    // The event being handled, else the last one that was handled: a timer that fires while a
    // button is held finds the press or the last drag. Inside nextEvent() loops, nested ones
    // included, it is the last event taken. Null before the first event.
    const Event* currentEvent() const noexcept { return m_current; }
    // Whether an event is being handled right now.
    bool isHandlingEvent() const noexcept { return m_dispatch != nullptr; }

    // Takes the next event of the mask; timers of `mode` go on meanwhile. Other events keep their
    // order and are dispatched when the handler that asked has returned. Returns a synthetic
    // LeftMouseUp (clickCount 0) when nothing can come any more: the window is hidden, gone or has
    // lost the pointer, the view has got the release before the handler asked, or there is no
    // toolkit.
    Event nextEvent(EventMask mask, RunLoopMode mode);

    // For ports, and for tests: hands over one event. It is sent to its window at once, or kept for
    // whoever waits in nextEvent(); a release also for a handler of its press that has asked there
    // before and has not returned. An event whose window is gone is dropped.
    // Returns false when the event went up the chain of responders and nobody handled it: a port
    // then offers it to what is around the window.
    bool postEvent(Event event);

    // Destroys the object as soon as no event, action or timer is being handled any more. That way
    // a handler can get rid of an object whose member function is still running. Null is ignored.
    void discard(std::unique_ptr<Anchored> object);

    // The window with the keyboard; null when that is elsewhere.
    Window* keyWindow() const noexcept { return m_keyWindow.get(); }
    // The window that the user works in: the last key window that was no panel.
    Window* mainWindow() const noexcept { return m_mainWindow.get(); }

    // Ends the toolkit's event loop.
    void terminate();

    void noResponderFor(const Event& event) override;

private:
    friend class Window;

    class Dispatch;

    bool dispatch(const Event& event);
    void dispatchQueue();
    void emptyTrash();
    void emptyTrashAfter(Nanoseconds time);
    void trashTimerFired();
    bool waitForEvent();
    void setKeyWindow(Window* window);
    void setMainWindow(Window* window);

    std::deque<Event> m_queue;
    int m_pulls = 0;                 // nested calls of nextEvent()
    Dispatch* m_dispatch = nullptr;  // the innermost one
    Event m_pulled;                  // what m_current points to after nextEvent(),
    Event m_last;                    // and outside of any dispatch
    const Event* m_current = nullptr;
    std::vector<std::unique_ptr<Anchored>> m_trash;
    std::shared_ptr<RunLoopTimer> m_trashTimer;
    WeakPointer<Anchored> m_delegate;
    WeakPointer<Window> m_keyWindow;
    WeakPointer<Window> m_mainWindow;
};

}  // namespace veltra
