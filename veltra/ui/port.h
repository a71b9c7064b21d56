// SPDX-License-Identifier: MIT
// All that a widget toolkit supplies: the one list of what a port consists of. Besides the two
// classes in here that is a CanvasPort (canvas.h), an Image (image.h) and a RunLoop that is driven
// by the toolkit's event loop. A port calls back into Window and Application where those say "for
// ports".
//
// Coordinates are points. A window's surface begins in its upper left corner, its y axis points
// down; so does the screen's.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"
#include "veltra/ui/accessibility.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/tool_tip.h"
#include "veltra/ui/view.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace veltra {

// What a window of the system has around its content.
struct WindowStyle {
    bool isTitled = true;          // a bar with the title; nothing around it without
    bool isClosable = true;        // a button in it that closes the window
    bool isMiniaturizable = true;  // likewise, that minimises it
    bool isResizable = true;       // the user may change its size
    bool isPanel = false;          // stays above the application's windows, is in no task list
};

// The place where one Window appears: a window of the system, or a part of a toolkit's widget.
class VELTRA_EXPORT WindowPort {
public:
    WindowPort() = default;
    WindowPort(const WindowPort&) = delete;
    WindowPort& operator=(const WindowPort&) = delete;
    virtual ~WindowPort();

    // Makes sure that Window::display() is called soon with this part of the surface.
    virtual void invalidate(const Rect& surfaceRect) = 0;
    // Draws what is invalid before it returns, if the window is on screen.
    virtual void displayIfNeeded() = 0;

    // Gives the keyboard up to what comes before or after in the focus order of the toolkit's
    // window around. Returns false when there is nothing else.
    virtual bool passKeyboard(bool forward) = 0;

    // What the pointer looks like over this surface, until the next call.
    virtual void setCursor(Cursor cursor) = 0;

    // Device pixels a point; Window::appearanceDidChange() tells when it changes.
    virtual float scale() const = 0;

    // Of no effect where the surface is a part of something else.
    virtual void setTitle(const std::string& /*title*/) {}
    virtual void setFrame(const Rect& /*onScreen*/, bool /*animate*/) {}  // of the surface
    // Of the surface, from the next change of its size on; never resizes it at once.
    virtual void setSizeLimits(Size /*minimum*/, Size /*maximum*/) {}
    virtual void setVisible(bool /*isVisible*/) {}
    virtual void orderFront(bool /*takesKeyboard*/) {}
    virtual void miniaturize() {}
    // Lets the user move the window with the button that is down. Returns false where that is not
    // possible.
    virtual bool startMove() { return false; }
    // See Window::lockPointer(). The pointer is out of sight meanwhile.
    virtual bool lockPointer(bool /*isLocked*/) { return false; }
};

class UiPort;
extern template class VELTRA_EXPORT Installable<UiPort>;

// Without an installed port there is no screen: text sizes are guessed, nothing is drawn and no
// event arrives.
class VELTRA_EXPORT UiPort : public Installable<UiPort> {
public:
    virtual ~UiPort();

    // A window of the system, not on screen yet, that calls back into `window`. Null is not
    // allowed.
    virtual std::unique_ptr<WindowPort> makeWindow(Window& window, const Rect& contentRect,
                                                   const WindowStyle& style) = 0;

    // Lets the toolkit's events and the timers of `RunLoop::current()` go on until at least one
    // event was handed to Application::postEvent(). Returns false when there is nothing to wait
    // for.
    virtual bool waitForEvent() = 0;
    // An event was handed over, by whomever, while somebody waits: waitForEvent() is to return.
    virtual void eventWasPosted() {}
    // Ends the toolkit's main event loop.
    virtual void terminate() = 0;

    // What the user chose for the system; each window is told when it changes.
    virtual Appearance appearance() const = 0;

    // Whether fonts of this family are installed.
    virtual bool hasFontFamily(const std::string& name) const = 0;

    // Width and height of one line, in points, without rounding: see StyledText::size().
    virtual Size textSize(const StyledText& text) const = 0;

    // A picture from a file, or drawn on a clear ground: see Image::load() and Image::drawn(),
    // which pass sizes above 0 and not above 32,767. Null when that is not possible.
    virtual std::shared_ptr<const Image> loadImage(const std::string& path, float scale) = 0;
    virtual std::shared_ptr<const Image> drawImage(
        std::int32_t pixelWidth, std::int32_t pixelHeight, float scale,
        const std::function<void(CanvasPort&)>& draw) = 0;

    // Shows the one tool tip of its kind, or moves it, close to a rectangle of the window but not
    // over it. ValueTip in value_tip.h draws it.
    virtual void showToolTip(Window& window, const std::string& text, const Rect& around,
                             ToolTipSide side) = 0;
    virtual void closeToolTip() = 0;

    // The text that users carry from one application to another (UTF-8); empty when there is none.
    virtual std::string clipboardText() const { return {}; }
    virtual void setClipboardText(const std::string& /*text*/) {}

    // Tells screen readers, at once or later, what has changed about a living element.
    virtual void accessibilityChanged(AccessibilityElement& element,
                                      AccessibilityNotification notification) = 0;
    // The element must not be used any more, only its address.
    virtual void accessibilityElementDied(AccessibilityElement& element) noexcept = 0;
};

}  // namespace veltra
