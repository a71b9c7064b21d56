// SPDX-License-Identifier: MIT
#include "veltra/ui/window.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/ui/application.h"
#include "veltra/ui/drawing.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace veltra {

namespace {

constexpr float kNoLimit = std::numeric_limits<float>::max();

bool isInside(const View* view, const View& tree) noexcept {
    while (view != nullptr && view != &tree)
        view = view->superview();
    return view == &tree;
}

// Whether anything of the view can be seen afterwards.
bool bringIntoSight(View& view) {
    const WeakPointer<View> self(&view);
    view.scrollRectToVisible(view.bounds());
    return self && !self->visibleRect().isEmpty();
}

void send(const Event& event, Responder* responder) {
    if (responder != nullptr) (responder->*Responder::handlerFor(event.type))(event);
}

void collectKeyViews(View& view, std::vector<View*>& found) {
    if (view.canBecomeKeyView()) found.push_back(&view);
    for (const auto& subview : view.subviews())
        collectKeyViews(*subview, found);
}

std::size_t countOfKeyViews(View& view) {
    std::vector<View*> views;
    collectKeyViews(view, views);
    return views.size();
}

constexpr int kMostAsked = 8;  // to give the keys to somebody else, one after the other

// Who is asked to resign at this moment, and by whom that was asked for. Main thread.
class Answering {
public:
    explicit Answering(const Responder& asked) noexcept : m_asked(&asked) { s_innermost = this; }
    Answering(const Answering&) = delete;
    Answering& operator=(const Answering&) = delete;
    ~Answering() { s_innermost = m_outer; }

    static bool includes(const Responder& responder) noexcept {
        const Answering* each = s_innermost;
        while (each != nullptr && each->m_asked != &responder)
            each = each->m_outer;
        return each != nullptr;
    }

private:
    static inline const Answering* s_innermost = nullptr;
    const Answering* const m_outer = s_innermost;
    const Responder* const m_asked;
};

// Asks it, unless it is answering that very question: then it gives the keys to another just now.
bool resigns(Responder& responder) {
    if (Answering::includes(responder)) return true;
    const Answering scope(responder);
    return responder.resignFirstResponder();
}

}  // namespace

Window::Window(const Rect& contentRect, const WindowStyle& style)
    : m_ownedPort(UiPort::current().makeWindow(*this, contentRect, style)),
      m_port(*m_ownedPort),
      m_isPanel(style.isPanel),
      m_frame(contentRect),
      m_maxSize{kNoLimit, kNoLimit} {}

Window::Window(WindowPort& port, Size contentSize)
    : m_port(port), m_isPanel(false), m_frame{{}, contentSize}, m_maxSize{kNoLimit, kNoLimit} {}

Window::~Window() {
    // What views do when they lose the pointer and the window may want memory; without it they go
    // all the same.
    isDoneUnlessOutOfMemory([this] { cancelTracking(); });
    cutAnchor();
    m_isKey = false;
    isDoneUnlessOutOfMemory([this] { takeContentView(); });
    m_contentView.reset();  // while the window can still be asked
}

void Window::setContentView(std::unique_ptr<View> view) {
    const WeakPointer<Window> self(this);
    Application::current().discard(takeContentView());
    if (!self || !view) return;
    m_contentView = std::move(view);
    m_contentView->setFrame({{}, m_frame.size});
    if (self && m_contentView) m_contentView->setWindow(this);
    if (self && m_contentView) m_contentView->setNeedsDisplay();
}

std::unique_ptr<View> Window::takeContentView() {
    const WeakPointer<Window> self(this);
    if (m_contentView) m_contentView->setWindow(nullptr);
    return self ? std::move(m_contentView) : nullptr;
}

Size Window::limited(Size size) const noexcept {
    const auto within = [](float value, float least, float most) {
        return std::max(std::min(value, most), least);
    };
    return {within(size.width, m_minSize.width, m_maxSize.width),
            within(size.height, m_minSize.height, m_maxSize.height)};
}

void Window::setFrame(const Rect& frame, bool display, bool animate) {
    const bool isResized = frame.size != m_frame.size;
    const Rect wanted{frame.origin, isResized ? limited(frame.size) : frame.size};
    const WeakPointer<Window> self(this);
    m_port.setFrame(wanted, animate);
    frameDidChange(wanted);
    if (display && self) displayIfNeeded();
}

void Window::frameDidChange(const Rect& onScreen) {
    if (onScreen == m_frame) return;
    const Rect before = std::exchange(m_frame, onScreen);
    const WeakPointer<Window> self(this);
    if (m_contentView) m_contentView->setFrame({{}, onScreen.size});
    if (self) windowDidChangeFrame(before);
}

void Window::setMinSize(Size size) {
    m_minSize = size;
    m_port.setSizeLimits(m_minSize, m_maxSize);
}

void Window::setMaxSize(Size size) {
    m_maxSize = size;
    m_port.setSizeLimits(m_minSize, m_maxSize);
}

void Window::setTitle(const std::string& title) {
    m_title = title;
    m_port.setTitle(title);
}

void Window::orderFront() {
    m_port.setVisible(true);
    m_port.orderFront(false);
}

void Window::makeKeyAndOrderFront() {
    m_port.setVisible(true);
    m_port.orderFront(true);
}

void Window::orderOut() {
    m_port.setVisible(false);
}

void Window::close() {
    const WeakPointer<Window> self(this);
    if (!shouldClose() || !self) return;
    orderOut();
    if (self) didClose();
}

void Window::visibilityDidChange(bool isVisible) {
    m_isVisible = isVisible;
    if (!isVisible) cancelTracking();
}

Appearance Window::appearance() const {
    return m_appearance.value_or(UiPort::current().appearance());
}

void Window::setAppearance(std::optional<Appearance> appearance) {
    m_appearance = appearance;
    appearanceDidChange();
}

void Window::appearanceDidChange() {
    const WeakPointer<Window> self(this);
    if (m_contentView) m_contentView->tellAppearanceDidChange();
    if (self && m_contentView) m_contentView->setNeedsDisplay();
}

void Window::invalidate(const Rect& rect) {
    const Rect inside = rect.intersection({{}, m_frame.size});
    if (inside.isEmpty()) return;
    m_port.invalidate({{inside.minX(), m_frame.size.height - inside.maxY()}, inside.size});
}

void Window::display(CanvasPort& port, std::span<const Rect> dirty) {
    Canvas canvas(port);
    display(canvas, dirty);
}

void Window::display(Canvas& canvas, std::span<const Rect> dirty) {
    if (!m_contentView) return;
    const Canvas::StateScope scope(canvas);
    canvas.enter({{}, m_frame.size}, false);
    m_contentView->displayRects(canvas, dirty);
    drawFocusRing(canvas, dirty);
    renewFocusRing();
}

// What surrounds the shape cuts the ring off; the view, and those above it that lie inside of the
// shape, do not.
Window::FocusRing Window::focusRing() const {
    const auto* const view = dynamic_cast<const View*>(m_firstResponder.get());
    if (view == nullptr || !view->showsFocus() || view->isHiddenOrHasHiddenAncestor()) return {};
    const auto shape = view->focusShape();
    if (!shape) return {};
    FocusRing ring;
    ring.shape = {view->convertRectToView(shape->rect, nullptr), shape->radius};
    const Rect& inside = ring.shape.rect;
    const View* above = view->superview();
    while (above != nullptr &&
           inside.united(above->convertRectToView(above->bounds(), nullptr)) == inside)
        above = above->superview();
    ring.clip =
        above != nullptr ? above->visiblePartInWindow(above->bounds()) : Rect{{}, m_frame.size};
    ring.around = ring.shape.rect.inset(-kFocusRingReach, -kFocusRingReach).intersection(ring.clip);
    return ring;
}

// The ring follows its view wherever that goes: it is looked for after each event and each drawing.
void Window::renewFocusRing() {
    const Rect now = focusRing().around;
    if (now == m_ring) return;
    if (!m_ring.isEmpty()) invalidate(m_ring);
    if (!now.isEmpty()) invalidate(now);
    m_ring = now;
}

void Window::drawFocusRing(Canvas& canvas, std::span<const Rect> dirty) const {
    const FocusRing ring = focusRing();
    const Rect onSurface{{ring.around.minX(), m_frame.size.height - ring.around.maxY()},
                         ring.around.size};
    if (std::none_of(dirty.begin(), dirty.end(),
                     [&](const Rect& rect) { return rect.intersects(onSurface); }))
        return;
    const Canvas::StateScope scope(canvas);
    canvas.clipTo(ring.clip);
    veltra::drawFocusRing(canvas, ring.shape.rect, ring.shape.radius, theme(appearance()).accent);
}

// Keys.

// Null stands for the window itself.
bool Window::makeFirstResponder(Responder* responder) {
    if (responder == this) responder = nullptr;
    if (responder == m_firstResponder.get()) return true;
    const auto* const view = dynamic_cast<const View*>(responder);
    if (view != nullptr && view->window() != this) return false;
    if (responder != nullptr && !responder->acceptsFirstResponder()) return false;

    const WeakPointer<Window> self(this);
    const WeakPointer<Responder> next(responder);
    if (!takeKeysFromFirstResponder()) return false;
    if (responder == nullptr) return true;
    m_firstResponder = next.get();  // known to those who ask inside
    const bool becomes = next && next->becomeFirstResponder();
    if (!self) return false;
    if (!becomes || !next) {
        m_firstResponder = nullptr;
        return false;
    }
    if (auto* const shown = dynamic_cast<View*>(next.get())) shown->setNeedsDisplay();
    renewFocusRing();
    if (m_isKey) next->postAccessibilityNotification(AccessibilityNotification::FocusGained);
    return true;
}

// False when it does not resign, or the window dies of it. One that resigns may give the keys to
// another, who is asked in turn; who pass them to and fro lose them.
bool Window::takeKeysFromFirstResponder() {
    const WeakPointer<Window> self(this);
    for (int asked = 0; m_firstResponder && asked < kMostAsked; ++asked) {
        const WeakPointer<Responder> before(m_firstResponder);
        if (!resigns(*before.get()) || !self) return false;
        if (m_firstResponder.get() == before.get()) m_firstResponder = nullptr;
        if (auto* const shown = dynamic_cast<View*>(before.get())) shown->setNeedsDisplay();
    }
    m_firstResponder = nullptr;
    return true;
}

bool Window::giveKeyboardTo(View& view) {
    const WeakPointer<View> next(&view);
    return bringIntoSight(view) && makeFirstResponder(next.get());
}

bool Window::wantsKey(const Event& event) const {
    return m_firstResponder && m_firstResponder->wantsKey(event);
}

View* Window::keyViewAfter(const View* view, bool forward) const {
    if (!m_contentView) return nullptr;
    std::vector<View*> views;
    collectKeyViews(*m_contentView, views);
    if (!forward) {
        // Whoever names this view as the next one comes before it.
        for (View* other : views) {
            if (view != nullptr && other->nextKeyView() == view) return other;
        }
        std::reverse(views.begin(), views.end());
    } else if (view != nullptr) {
        View* next = view->nextKeyView();
        // A named one that cannot take keys leads on to the one it names itself.
        for (std::size_t steps = 0; next != nullptr && steps <= views.size(); ++steps) {
            if (next->window() == this && next->canBecomeKeyView()) return next;
            next = next->nextKeyView();
        }
    }
    const auto found = std::find(views.begin(), views.end(), view);
    if (found == views.end()) return views.empty() ? nullptr : views.front();
    return std::next(found) != views.end() ? *std::next(found) : nullptr;
}

// Who gets the keys when the first responder goes with `leaving`: the next key view that stays, or
// else the last one before. Null when the first responder stays.
View* Window::heirOfKeys(const View& leaving) const {
    if (!isInside(dynamic_cast<View*>(m_firstResponder.get()), leaving)) return nullptr;
    std::vector<View*> views;
    collectKeyViews(*m_contentView, views);
    const auto leaves = [&leaving](const View* view) { return isInside(view, leaving); };
    const auto first = std::find_if(views.begin(), views.end(), leaves);
    const auto behind = std::find_if_not(first, views.end(), leaves);
    if (behind != views.end()) return *behind;
    return first != views.begin() ? *std::prev(first) : nullptr;
}

void Window::selectKeyView(bool forward) {
    const WeakPointer<Window> self(this);
    auto* const present = dynamic_cast<View*>(m_firstResponder.get());
    if (selectKeyViewAfter(present, forward) || !self) return;
    if (m_port.passKeyboard(forward) || !self) return;
    selectKeyViewAfter(nullptr, forward);
}

// Passes over views that cannot be brought into sight. Returns whether there was one that can.
bool Window::selectKeyViewAfter(View* start, bool forward) {
    const WeakPointer<Window> self(this);
    WeakPointer<View> view(start);
    const std::size_t count = m_contentView ? countOfKeyViews(*m_contentView) : 0;
    for (std::size_t i = 0; self && i < count; ++i) {
        view = keyViewAfter(view.get(), forward);
        if (!view) return false;
        if (!bringIntoSight(*view.get())) continue;
        makeFirstResponder(view.get());
        return true;
    }
    return false;
}

void Window::keyboardArrives(bool forward) {
    m_keysLead = true;
    selectKeyViewAfter(nullptr, forward);
}

bool Window::isMainWindow() const noexcept {
    return m_isActive || Application::current().mainWindow() == this;
}

void Window::tellStateDidChange() {
    if (m_contentView) m_contentView->tellWindowStateDidChange();
}

void Window::activeStateDidChange(bool isActive) {
    if (isActive == m_isActive) return;
    m_isActive = isActive;
    tellStateDidChange();
}

void Window::keyStateDidChange(bool isKey) {
    if (isKey == m_isKey) return;
    m_isKey = isKey;
    const WeakPointer<Window> self(this);
    Application& application = Application::current();
    if (isKey) {
        application.setKeyWindow(this);
    } else if (application.keyWindow() == this) {
        application.setKeyWindow(nullptr);
    }
    if (!self) return;
    if (auto* const view = dynamic_cast<View*>(m_firstResponder.get())) {
        view->setNeedsDisplay();  // shows whether it has the keyboard
        if (isKey) view->postAccessibilityNotification(AccessibilityNotification::FocusGained);
    }
    renewFocusRing();
    tellStateDidChange();
}

void Window::keyDown(const Event& event) {
    if (!event.charactersIgnoringModifiers.empty()) {
        switch (event.charactersIgnoringModifiers.front()) {
            case kTabCharacter:
                return selectNextKeyView();
            case kBackTabCharacter:
                return selectPreviousKeyView();
            default:
                break;
        }
    }
    Responder::keyDown(event);
}

Responder* Window::nextResponder() const {
    return &Application::current();
}

// Events.

const Event* Window::currentEvent() const {
    return Application::current().currentEvent();
}

Event Window::nextEvent(EventMask mask, RunLoopMode mode) {
    return Application::current().nextEvent(mask, mode);
}

View* Window::viewAt(Point inWindow) const {
    return m_contentView ? m_contentView->hitTest(inWindow) : nullptr;
}

void Window::hover(const Event& event, View* view) {
    if (view == m_hovered.get()) return;
    const WeakPointer<Window> self(this);
    const WeakPointer<View> next(view);
    if (View* const before = m_hovered.get()) before->mouseExited(event);
    if (!self) return;
    m_hovered = next.get();
    if (next) next->mouseEntered(event);
}

void Window::endHovering() {
    Event exit;
    exit.type = EventType::MouseExited;
    exit.window = this;
    hover(exit, nullptr);
}

void Window::move(const Event& event) {
    const WeakPointer<Window> self(this);
    hover(event, viewAt(event.locationInWindow));
    if (!self || !m_hovered) return;
    View& view = *m_hovered.get();
    m_port.setCursor(view.cursorAt(view.locationOf(event)));
    view.mouseMoved(event);
}

void Window::press(const Event& event, WeakPointer<View>& pressed) {
    const WeakPointer<Window> self(this);
    const WeakPointer<View> view(viewAt(event.locationInWindow));
    const bool isOnView = static_cast<bool>(view);
    pressed = nullptr;
    if (view && event.isFirstMouse && !view->acceptsFirstMouse(&event)) return;
    if (view && view->mouseDownCanMoveWindow() && m_port.startMove()) return;
    if (!self) return;
    pressed = view;
    if (view && view->acceptsFirstResponder()) makeFirstResponder(view.get());
    if (!self || (isOnView && !view)) return;
    send(event, view ? view.get() : static_cast<Responder*>(this));
}

Responder& Window::responderAt(Point inWindow) {
    View* const view = viewAt(inWindow);
    return view != nullptr ? *view : static_cast<Responder&>(*this);
}

void Window::sendEvent(const Event& event) {
    const WeakPointer<Window> self(this);
    const EventMask presses =
        EventType::LeftMouseDown | EventType::RightMouseDown | EventType::TouchBegan;
    if (event.type == EventType::KeyDown || presses.contains(event.type))
        m_keysLead = event.type == EventType::KeyDown;
    deliver(event);
    if (self) renewFocusRing();
}

void Window::deliver(const Event& event) {
    switch (event.type) {
        case EventType::LeftMouseDown:
            return press(event, m_pressed);
        case EventType::RightMouseDown:
            return press(event, m_rightPressed);
        case EventType::LeftMouseDragged:
            return send(event, m_pressed.get());
        case EventType::RightMouseDragged:
            return send(event, m_rightPressed.get());
        case EventType::LeftMouseUp:
            return send(event, std::exchange(m_pressed, nullptr).get());
        case EventType::RightMouseUp:
            return send(event, std::exchange(m_rightPressed, nullptr).get());
        case EventType::MouseMoved:
            return move(event);
        case EventType::MouseExited:
            return hover(event, nullptr);
        case EventType::ScrollWheel:
            return send(event, &responderAt(event.locationInWindow));
        case EventType::KeyDown:
        case EventType::KeyUp:
        case EventType::FlagsChanged:
            return send(event, m_firstResponder ? m_firstResponder.get() : this);
        case EventType::TouchBegan:
            return beginTouch(event);
        case EventType::TouchMoved:
            if (const Finger* const finger = findFinger(event.finger))
                send(event, finger->view.get());
            return;
        case EventType::TouchEnded:
        case EventType::TouchCancelled:
            return send(event, takeFinger(event.finger).get());
    }
}

// Fingers.

Window::Finger* Window::findFinger(std::int64_t finger) noexcept {
    const auto found = std::find_if(m_fingers.begin(), m_fingers.end(),
                                    [=](const Finger& each) { return each.last.finger == finger; });
    return found != m_fingers.end() ? &*found : nullptr;
}

WeakPointer<View> Window::takeFinger(std::int64_t finger) {
    const Finger* const found = findFinger(finger);
    if (found == nullptr) return nullptr;
    const WeakPointer<View> view = found->view;
    m_fingers.erase(m_fingers.begin() + (found - m_fingers.data()));
    return view;
}

void Window::beginTouch(const Event& event) {
    const WeakPointer<View> view(viewAt(event.locationInWindow));
    if (!view || !view->acceptsTouches()) {
        takeFinger(event.finger);
        return Application::current().noResponderFor(event);
    }
    const WeakPointer<Window> self(this);
    if (view->acceptsFirstResponder()) makeFirstResponder(view.get());
    if (!self || !view) return;
    Finger* const finger = findFinger(event.finger);
    if (finger == nullptr) return;  // it was cancelled
    finger->view = view;
    send(event, view.get());
}

void Window::cancelTouches(const View* inside) {
    std::vector<Event> cancels;
    for (const Finger& finger : m_fingers) {
        if (inside != nullptr && !isInside(finger.view.get(), *inside)) continue;
        cancels.push_back(finger.last);
        cancels.back().type = EventType::TouchCancelled;
    }
    for (Event& cancel : cancels)
        Application::current().postEvent(std::move(cancel));
}

bool Window::admitsTouch(const Event& event) {
    Finger* const finger = findFinger(event.finger);
    if (finger != nullptr) {
        finger->last = event;
    } else if (event.type == EventType::TouchBegan) {
        m_fingers.push_back({event, nullptr});
    }
    return (finger == nullptr) == (event.type == EventType::TouchBegan);
}

// Keeps account of the left button and of fingers: a release without a press is not passed on.
bool Window::admits(const Event& event) {
    switch (event.type) {
        case EventType::LeftMouseDown:
        case EventType::LeftMouseDragged:
            m_lastPress = event;
            if (event.type == EventType::LeftMouseDown) m_isButtonDown = true;
            return m_isButtonDown;
        case EventType::LeftMouseUp:
            return std::exchange(m_isButtonDown, false);
        case EventType::TouchBegan:
        case EventType::TouchMoved:
        case EventType::TouchEnded:
        case EventType::TouchCancelled:
            return admitsTouch(event);
        default:
            return true;
    }
}

void Window::cancelTracking() {
    const WeakPointer<Window> self(this);
    cancelTouches(nullptr);
    if (self) releaseLostButton();
}

void Window::releaseLostButton() {
    if (!m_isButtonDown) return;
    Event release = m_lastPress;
    release.type = EventType::LeftMouseUp;
    release.clickCount = 0;
    Application::current().postEvent(std::move(release));
}

std::optional<ViewToolTips::Found> Window::toolTipAt(Point inWindow) const {
    for (WeakPointer<View> view(viewAt(inWindow)); view; view = view->superview()) {
        auto found = view->toolTips().at(view->convertPointFromView(inWindow, nullptr));
        if (!view || view->window() != this) break;  // who was asked took it away
        if (!found) continue;
        found->rect = view->convertRectToView(found->rect, nullptr);
        return found;
    }
    return std::nullopt;
}

// What the view is told may destroy it, and the window.
void Window::viewLeaves(View& view) {
    ToolTipWindow::shared().viewLeaves(view);
    const WeakPointer<Window> self(this);
    const WeakPointer<View> leaving(&view);
    const bool isDying = !self;  // being destroyed, it outlives what is done here
    const auto goesOn = [&] { return (isDying || self) && leaving; };
    if (m_firstResponder.get() == &view) {
        resigns(view);
        if (!goesOn()) return;
        if (m_firstResponder.get() == &view) m_firstResponder = nullptr;
    }
    if (m_hovered.get() == &view) endHovering();
    if (!goesOn()) return;
    if (m_pressed.get() == &view) releaseLostButton();
    if (!goesOn()) return;
    if (m_rightPressed.get() == &view) m_rightPressed = nullptr;
    cancelTouches(&view);
}

void Window::viewIsHidden(View& view) {
    const WeakPointer<Window> self(this);
    const WeakPointer<View> hidden(&view);
    const auto holds = [&](const View* inside) { return hidden && isInside(inside, view); };
    ToolTipWindow::shared().viewLeaves(view);
    if (isInside(m_rightPressed.get(), view)) m_rightPressed = nullptr;
    if (isInside(m_hovered.get(), view)) endHovering();
    if (self && holds(m_pressed.get())) releaseLostButton();
    if (self && hidden) cancelTouches(&view);
    // One that resigns may name another, who keeps the keys if it is in sight.
    const auto holdsKeys = [&] {
        return self && holds(dynamic_cast<View*>(m_firstResponder.get()));
    };
    for (int asked = 0; holdsKeys() && asked < kMostAsked; ++asked) {
        const WeakPointer<Responder> before(m_firstResponder);
        resigns(*before.get());
        if (self && m_firstResponder.get() == before.get()) m_firstResponder = nullptr;
    }
    if (holdsKeys()) m_firstResponder = nullptr;
}

}  // namespace veltra
