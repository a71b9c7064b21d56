// SPDX-License-Identifier: MIT
// A window: the topmost view, the first responder, and the way in for events. It appears as a
// window of the system, or as a part of a toolkit's widget; the views do not know which.
//
// Window coordinates begin at 0 in the lower left corner of its content and are not flipped. Screen
// coordinates begin in the upper left corner of the first screen, y pointing down.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/platform/run_loop_timer.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/port.h"
#include "veltra/ui/responder.h"
#include "veltra/ui/view.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace veltra {

class VELTRA_EXPORT Window : public Responder {
public:
    // A window of the system, not on screen yet. `contentRect` is where its content will be.
    explicit Window(const Rect& contentRect, const WindowStyle& style = {});
    // A surface that somebody else provides; `port` (not owned) must live longer than the window.
    Window(WindowPort& port, Size contentSize);
    ~Window() override;

    // Whether it was made with isPanel in its style; Panel sets it.
    bool isPanel() const noexcept { return m_isPanel; }

    // The topmost view, which fills the window. The one before, if any, is destroyed as soon as no
    // event or timer is being handled any more.
    View* contentView() const noexcept { return m_contentView.get(); }
    virtual void setContentView(std::unique_ptr<View> view);
    std::unique_ptr<View> takeContentView();
    Size contentSize() const noexcept { return m_frame.size; }

    // Of the content, on screen. A size that changes is kept within the limits. `animate` is a wish
    // that a port need not grant.
    const Rect& frame() const noexcept { return m_frame; }
    virtual void setFrame(const Rect& frame, bool display = true, bool animate = false);

    // Limits for the size of the content. Setting one never resizes the window: it holds from the
    // next change of size on, by the user or by setFrame(). A maximum below the minimum counts as
    // the minimum.
    Size minSize() const noexcept { return m_minSize; }
    Size maxSize() const noexcept { return m_maxSize; }
    virtual void setMinSize(Size size);
    virtual void setMaxSize(Size size);

    // UTF-8; empty at first. A surface that somebody else provides keeps it, but shows none.
    const std::string& title() const noexcept { return m_title; }
    void setTitle(const std::string& title);

    // Whether it is on screen, as far as the port has told. A window that others cover is.
    bool isVisible() const noexcept { return m_isVisible; }

    // Puts it on screen above the application's other windows. The keyboard stays where it is.
    void orderFront();

    // The same, and gives it the keyboard.
    void makeKeyAndOrderFront();

    // Takes it off the screen; what it holds stays as it is.
    void orderOut();

    // Minimises it, as the system does.
    void miniaturize() { m_port.miniaturize(); }

    // What the close button does: asks shouldClose(), then orders out and calls didClose().
    void close();
    virtual bool shouldClose() { return true; }
    // May destroy the window.
    virtual void didClose() {}

    // Whether this window goes on working while another window of the application is modal.
    bool worksWhenModal() const noexcept { return m_worksWhenModal; }
    void setWorksWhenModal(bool works) noexcept { m_worksWhenModal = works; }

    // Device pixels a point, at present.
    float scale() const { return m_port.scale(); }

    // The one set here, else the system's.
    Appearance appearance() const;
    void setAppearance(std::optional<Appearance> appearance);

    // Marks a part of the window, in its coordinates, to be drawn again.
    void invalidate(const Rect& rect);
    void displayIfNeeded() { m_port.displayIfNeeded(); }

    // Keys.

    // Whether keys come to this window.
    bool isKeyWindow() const noexcept { return m_isKey; }
    // Whether the user works in this window: it is the application's main window, or a part of a
    // toolkit's window that is active.
    bool isMainWindow() const noexcept;
    // Null: the window itself.
    Responder* firstResponder() const noexcept { return m_firstResponder.get(); }
    // Returns false, and changes nothing, when the present first responder does not resign, or the
    // other does not accept it. A responder of another window is refused. False, too, when the
    // other does not become it: nobody is then.
    bool makeFirstResponder(Responder* responder);
    // The same for a view, which is brought into sight first. Returns false, and changes nothing,
    // where nothing of the view can be seen even then.
    bool giveKeyboardTo(View& view);
    // Whether the user works with keys: the last press of a button came before the last key.
    bool keysLead() const noexcept { return m_keysLead; }
    // Whether the key belongs to the first responder before the shortcuts of the host see it.
    bool wantsKey(const Event& event) const override;
    void selectNextKeyView() { selectKeyView(true); }
    void selectPreviousKeyView() { selectKeyView(false); }

    // Events. See Application.

    // The event that is being handled, in whatever window; see Application::currentEvent().
    const Event* currentEvent() const;

    // Takes the application's next event of the mask; see Application::nextEvent(). It may be
    // another window's.
    Event nextEvent(EventMask mask, RunLoopMode mode = RunLoopMode::EventTracking);

    // Dispatches one event: a press, the wheel and the pointer go to the view under it, drags and
    // the release to the view of the press, keys to the first responder. A finger goes to the view
    // that it began on if that accepts touches, else nobody handles it.
    virtual void sendEvent(const Event& event);

    // While the left button is down: keeps the pointer in its place, so that a drag has no end at
    // the edge of the screen. Its places and movement go on as if nothing held it. Ends by itself
    // with the release. Returns false where that is not possible.
    bool lockPointer(bool isLocked) { return m_port.lockPointer(isLocked); }

    // Tab and back-tab lead on in the key-view loop. Views that are clipped away are brought into
    // sight (View::scrollRectToVisible()), or passed over where that is not possible.
    void keyDown(const Event& event) override;
    Responder* nextResponder() const override;

    // For ports.

    // Draws the parts `dirty` of the surface, on it or on an image of it.
    void display(CanvasPort& port, std::span<const Rect> dirty);
    void display(Canvas& canvas, std::span<const Rect> dirty);
    // The system has moved or resized the content.
    void frameDidChange(const Rect& onScreen);
    void visibilityDidChange(bool isVisible);
    void keyStateDidChange(bool isKey);
    // The toolkit's window around has become, or is no longer, the one that the user works in.
    void activeStateDidChange(bool isActive);
    // The keyboard arrives by Tab: the first key view takes it, or the last.
    void keyboardArrives(bool forward);
    void appearanceDidChange();
    // The pointer's button is or may be up, the fingers are or may be gone, and no event will tell:
    // ends what tracks them.
    void cancelTracking();
    // What to show at a point where the pointer rests; the rectangle is in window coordinates.
    std::optional<ViewToolTips::Found> toolTipAt(Point inWindow) const;

protected:
    // Called after frame() has changed, by whomever.
    virtual void windowDidChangeFrame(const Rect& /*before*/) {}

private:
    friend class Application;
    friend class View;

    struct FocusRing {
        Rect around;               // in the window
        Rect clip;                 // what the views around leave of it
        View::FocusShape shape{};  // in the window
    };

    // One that is down.
    struct Finger {
        Event last;
        WeakPointer<View> view;  // that it began on
    };

    bool admits(const Event& event);
    bool admitsTouch(const Event& event);
    Finger* findFinger(std::int64_t finger) noexcept;
    WeakPointer<View> takeFinger(std::int64_t finger);
    void beginTouch(const Event& event);
    void releaseLostButton();
    void cancelTouches(const View* inside);
    FocusRing focusRing() const;
    void renewFocusRing();
    void drawFocusRing(Canvas& canvas, std::span<const Rect> dirty) const;
    void deliver(const Event& event);
    void viewLeaves(View& view);
    void viewIsHidden(View& view);
    void tellStateDidChange();
    bool takeKeysFromFirstResponder();
    void selectKeyView(bool forward);
    bool selectKeyViewAfter(View* start, bool forward);
    View* keyViewAfter(const View* view, bool forward) const;
    View* heirOfKeys(const View& leaving) const;
    View* viewAt(Point inWindow) const;
    Responder& responderAt(Point inWindow);
    void hover(const Event& event, View* view);
    void endHovering();
    void move(const Event& event);
    void press(const Event& event, WeakPointer<View>& pressed);
    Size limited(Size size) const noexcept;

    const std::unique_ptr<WindowPort> m_ownedPort;
    WindowPort& m_port;
    const bool m_isPanel;
    bool m_isVisible = false;
    bool m_isKey = false;
    bool m_isActive = false;
    bool m_worksWhenModal = false;
    std::unique_ptr<View> m_contentView;
    Rect m_frame;
    Size m_minSize;
    Size m_maxSize;
    std::string m_title;
    std::optional<Appearance> m_appearance;
    WeakPointer<Responder> m_firstResponder;
    WeakPointer<View> m_pressed;  // by the left button
    WeakPointer<View> m_rightPressed;
    WeakPointer<View> m_hovered;
    std::vector<Finger> m_fingers;
    bool m_isButtonDown = false;  // a press was sent, its release was not
    bool m_keysLead = false;
    Rect m_ring;  // where the focus ring was asked for last
    Event m_lastPress;
};

}  // namespace veltra
