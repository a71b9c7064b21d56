// SPDX-License-Identifier: MIT
// A rectangle on screen that draws itself and handles the events inside it. Views form a tree: each
// view owns its subviews.
//
//   class Lamp final : public View {
//   public:
//       using View::View;
//       void drawRect(Canvas& canvas, const Rect&) override { canvas.fillRect(bounds(), m_color); }
//   };
//
// Coordinates: a view's own begin at 0 in its lower left corner, or in its upper left corner when
// it isFlipped(). Its frame is given in the coordinates of its superview, for the topmost view in
// those of the window, which are not flipped.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/flags.h"
#include "veltra/export.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/geometry.h"
#include "veltra/ui/responder.h"
#include "veltra/ui/view_tool_tips.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace veltra {

class Canvas;
class Window;

// A part of the room that a view takes in its superview, which gives when the superview is resized.
enum AutoresizingFlag : std::uint32_t {
    kViewMinXMargin = 1,
    kViewWidthSizable = 2,
    kViewMaxXMargin = 4,
    kViewMinYMargin = 8,
    kViewHeightSizable = 16,
    kViewMaxYMargin = 32,
};

// The parts join to a mask by `|`.
template <>
inline constexpr bool isFlag<AutoresizingFlag> = true;

// All the parts that give. With none, the lower left corner (the upper left in a flipped superview)
// stays where it is.
using AutoresizingMask = Flags<AutoresizingFlag>;
inline constexpr AutoresizingMask kViewNotSizable{};

// What the pointer looks like.
enum class Cursor : std::uint8_t {
    Arrow,
    PointingHand,
    OpenHand,
    ClosedHand,
    ResizeUpDown,
    ResizeLeftRight,
    IBeam,
};

class VELTRA_EXPORT View : public Responder {
public:
    // A view in no window, at `frame` in the coordinates of its later superview.
    explicit View(const Rect& frame = {});
    ~View() override;

    // The tree.

    // The view around it; null for the topmost one of a window, and outside of any tree.
    View* superview() const noexcept { return m_superview; }

    // The window that it is shown in, directly or inside others; null in none.
    Window* window() const noexcept { return m_window; }

    // The views in it, the lowest first, which is also the order of the key-view loop.
    const std::vector<std::unique_ptr<View>>& subviews() const noexcept { return m_subviews; }

    // Takes ownership; the view lies above those before it. It must have no superview.
    template <typename V>
    V& addSubview(std::unique_ptr<V> view) {
        return insertSubview(std::move(view), m_subviews.size());
    }
    // The same at a place among the subviews: 0 lies below all others and comes first in the
    // key-view loop; a place beyond the end counts as the end.
    template <typename V>
    V& insertSubview(std::unique_ptr<V> view, std::size_t index) {
        V& added = *view;
        insert(std::move(view), index);
        return added;
    }
    // Puts `with` in the place of `view`, a subview, which goes to the caller. Null, and `with` is
    // destroyed, when `view` is no subview of this one.
    std::unique_ptr<View> replaceSubview(const View& view, std::unique_ptr<View> with);

    // Takes the view out of its superview, or window, and gives it to the caller. Null when it is
    // in neither, or owned elsewhere. If it had the keyboard, the next key view gets it, or else
    // the one before.
    std::unique_ptr<View> takeFromSuperview();

    // The same, and destroys it as soon as no event or timer is being handled any more.
    void removeFromSuperview();

    // Called before and after the view, alone or with those above it, comes into another window, or
    // into none (null).
    virtual void viewWillMoveToWindow(Window* /*window*/) {}
    virtual void viewDidMoveToWindow() {}

    // Called when the window becomes, or is no longer, the key or the main window.
    virtual void windowStateDidChange() {}

    // Geometry.

    // Where it lies, in the coordinates of its superview.
    const Rect& frame() const noexcept { return m_frame; }

    // The same in its own coordinates: from 0, with the frame's size.
    Rect bounds() const noexcept { return {{}, m_frame.size}; }

    // Resizes the subviews as their masks say. Override frameDidChange() to lay out by hand.
    void setFrame(const Rect& frame);
    void setFrameOrigin(Point origin) { setFrame({origin, m_frame.size}); }
    void setFrameSize(Size size) { setFrame({m_frame.origin, size}); }

    // Whether the y axis points down. Must answer the same for as long as the view lives.
    virtual bool isFlipped() const { return false; }

    // What gives when its superview is resized; kViewNotSizable at first.
    AutoresizingMask autoresizingMask() const noexcept { return m_autoresizingMask; }
    void setAutoresizingMask(AutoresizingMask mask) noexcept { m_autoresizingMask = mask; }

    // Whether a change of size resizes the subviews as their masks say. A view that lays them out
    // itself returns false.
    virtual bool autoresizesSubviews() const { return true; }

    // Convert between this view's coordinates and those of another view of the same window. Null
    // stands for the window itself.
    Point convertPointToView(Point point, const View* other) const;
    Point convertPointFromView(Point point, const View* other) const;
    Rect convertRectToView(const Rect& rect, const View* other) const;
    Rect convertRectFromView(const Rect& rect, const View* other) const;

    // Where the event happened, in this view's coordinates.
    Point locationOf(const Event& event) const;
    // The movement of the pointer that a drag tells, along this view's axes: locationOf() minus
    // movementOf() is the place of the event before.
    Point movementOf(const Event& event) const;

    // The part of the bounds that no view around cuts off and no hidden one hides; empty when there
    // is none, and outside of a window.
    Rect visibleRect() const;
    // The same for a part of the bounds, in the coordinates of the window.
    Rect visiblePartInWindow(const Rect& rect) const;

    // Asks that a part of the view be brought into sight, as when it gets the keyboard. A view that
    // scrolls overrides this: it moves its subviews, then passes the request on. Returns whether
    // anything was moved.
    virtual bool scrollRectToVisible(const Rect& rect);

    // Drawing.

    // Whether it was hidden itself. What is hidden, with all inside, is not drawn and gets no
    // event.
    bool isHidden() const noexcept { return m_isHidden; }
    // What is hidden loses the pointer, the fingers and the keyboard: a drag in it ends as if the
    // pointer had been lost, with a synthetic release.
    void setHidden(bool isHidden);
    // Whether it, or any view around it, is hidden.
    bool isHiddenOrHasHiddenAncestor() const noexcept;

    // Asks to be drawn again at the next opportunity, as a whole or a part of it.
    void setNeedsDisplay() { setNeedsDisplayInRect(bounds()); }
    void setNeedsDisplayInRect(const Rect& rect);

    // Draws what is inside `dirty`, a part of the bounds; drawing outside of the bounds has no
    // effect. Subviews are drawn afterwards. Must not change the tree.
    virtual void drawRect(Canvas& /*canvas*/, const Rect& /*dirty*/) {}

    // Inside drawRect(): whether any of `rect` has to be drawn. `dirty` is the rectangle around all
    // of that, and may hold much that need not.
    bool needsToDrawRect(const Rect& rect) const;

    // The part of the bounds that this view's drawing covers without a gap, whatever lies beneath:
    // the views around it and below it are not asked to draw there. Empty, as here: none.
    virtual Rect opaqueRect() const { return {}; }

    // Draws the view and its subviews where they meet one of `dirty`, given in the window's
    // coordinates with the y axis pointing down. The canvas is in the coordinates of the superview.
    void displayRects(Canvas& canvas, std::span<const Rect> dirty);

    // The window's, else the system's.
    Appearance effectiveAppearance() const;
    Color systemColor(SystemColor color) const {
        return veltra::systemColor(color, effectiveAppearance());
    }

    // Called when the appearance or the scale has changed; then everything is drawn again.
    virtual void appearanceDidChange() {}

    // Events.

    Responder* nextResponder() const override;

    // The topmost view at a point of the superview; null when that is outside or hidden.
    virtual View* hitTest(Point inSuperview);
    // Whether the press that makes an inactive window the active one also counts as a press here,
    // as users of this platform expect.
    virtual bool acceptsFirstMouse(const Event* /*event*/) const { return true; }
    // Whether a press here moves the window instead of going to the view. Only a window of the
    // system can be moved; elsewhere the view gets the press.
    virtual bool mouseDownCanMoveWindow() const { return false; }
    // Whether fingers that begin on this view are told to it one by one, with touchBegan() and what
    // follows. Fingers on any other view act as the pointer with its left button, one at a time.
    virtual bool acceptsTouches() const { return false; }
    virtual Cursor cursorAt(Point /*point*/) const { return Cursor::Arrow; }

    // Whether this view is the first to receive the keys of its window.
    virtual bool isFirstResponder() const;
    // The same, and the window has the keyboard.
    bool hasKeyboard() const;
    // The same, and the user works with keys: the last press came before the last key.
    bool showsFocus() const;

    // What the focus ring runs around, in the view's coordinates. The window draws the ring while
    // the view showsFocus(), above all views; views around it cut it off, other than those that lie
    // inside of the shape. Nothing: no ring.
    struct FocusShape {
        Rect rect;            // in the view's coordinates
        float radius = 0.0F;  // of its corners

        // Whether the ring would be the same.
        friend bool operator==(const FocusShape&, const FocusShape&) = default;
    };

    // The bounds, with small corners; a control returns the shape of what is drawn.
    virtual std::optional<FocusShape> focusShape() const { return FocusShape{bounds(), 4.0F}; }

    // The key-view loop: where Tab leads. Without a next view set, in the order of the tree. A view
    // that is out of sight can be a key view: it is brought into sight when its turn comes.
    View* nextKeyView() const noexcept { return m_nextKeyView.get(); }
    void setNextKeyView(View* view) noexcept { m_nextKeyView = view; }
    virtual bool canBecomeKeyView() const;

    // The tool tips that appear when the pointer rests.
    ViewToolTips& toolTips() noexcept { return m_toolTips; }

    // Accessibility. A plain view is ignored, and its subviews are the children.
    AccessibilityElement* accessibilityParent() const override { return m_superview; }
    std::vector<AccessibilityElement*> accessibilityChildren() const override;
    View* accessibilityView() const override { return const_cast<View*>(this); }
    Rect accessibilityFrame() const override { return bounds(); }
    bool accessibilityIsFocused() const override { return hasKeyboard(); }

protected:
    // Called after the size has changed.
    virtual void frameDidChange() {}

private:
    friend class Window;

    // How its coordinates lie in the window's: the origin, and whether y is counted downwards.
    struct Place {
        Point origin;
        bool isFlipped;

        Point toWindow(Point point) const noexcept;
        Point fromWindow(Point point) const noexcept;
        Rect toWindow(const Rect& rect) const noexcept;
        Rect fromWindow(const Rect& rect) const noexcept;
    };
    struct DirtyPart {
        Rect inWindow;
        std::uint32_t from;  // views before this place in the order of drawing are covered here
    };
    struct DirtyParts {
        std::vector<DirtyPart> all;  // from the lowest up
        float tallest = 0.0F;

        // Those that may lie between two heights, and few others.
        std::span<DirtyPart> between(float low, float high) noexcept;
    };
    void coverParts(DirtyParts& parts, const Place& superview, const Rect& visible,
                    std::uint32_t& order);
    void displayParts(Canvas& canvas, DirtyParts& parts, const Place& superview);

    Place place() const;
    Place placeOfSuperview() const;
    Place placeIn(const Place& superview) const;

    void insert(std::unique_ptr<View> view, std::size_t index);
    Rect toSuperview(const Rect& rect) const noexcept;
    void setWindow(Window* window);
    void resizeSubviews(Size oldSize);
    void resizeWithSuperview(Size oldSize, Size newSize);
    void tellAppearanceDidChange();
    void tellWindowStateDidChange();
    void tellAll(void (View::*call)());

    View* m_superview = nullptr;
    Window* m_window = nullptr;
    std::vector<std::unique_ptr<View>> m_subviews;
    Rect m_frame;
    AutoresizingMask m_autoresizingMask = kViewNotSizable;
    bool m_isHidden = false;
    WeakPointer<View> m_nextKeyView;
    ViewToolTips m_toolTips;
    std::uint32_t m_order = 0;  // in which views are drawn, while they are
    std::vector<Rect> m_dirty;  // during drawRect(), in this view's coordinates
};

}  // namespace veltra
