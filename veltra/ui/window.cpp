// SPDX-License-Identifier: MIT
#include "veltra/ui/window.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/ui/application.h"
#include "veltra/ui/canvas.h"

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

void collectKeyViews(View& view, std::vector<View*>& found) {
    if (view.canBecomeKeyView()) found.push_back(&view);
    for (const auto& subview : view.subviews())
        collectKeyViews(*subview, found);
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
    Application::current().discard(takeContentView());
    if (!view) return;
    m_contentView = std::move(view);
    m_contentView->setFrame({{}, m_frame.size});
    m_contentView->setWindow(this);
    if (m_contentView) m_contentView->setNeedsDisplay();
}

std::unique_ptr<View> Window::takeContentView() {
    if (m_contentView) m_contentView->setWindow(nullptr);
    return std::move(m_contentView);
}

Size Window::limited(Size size) const noexcept {
    const auto within = [](float value, float least, float most) {
        return std::max(std::min(value, most), least);
    };
    return {within(size.width, m_minSize.width, m_maxSize.width),
            within(size.height, m_minSize.height, m_maxSize.height)};
}

void Window::setFrame(const Rect& frame, bool display, bool animate) {
    const Rect wanted{frame.origin, limited(frame.size)};
    const WeakPointer<Window> self(this);
    m_port.setFrame(wanted, animate);
    frameDidChange(wanted);
    if (display && self) displayIfNeeded();
}

void Window::frameDidChange(const Rect& onScreen) {
    m_frame = onScreen;
    if (m_contentView) m_contentView->setFrame({{}, onScreen.size});
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
    if (!m_contentView) return;
    Canvas canvas(port);
    canvas.enter({{}, m_frame.size}, false);
    m_contentView->displayRects(canvas, dirty);
}

// Keys.

bool Window::makeFirstResponder(Responder* responder) {
    auto* const view = dynamic_cast<View*>(responder);
    if (view != nullptr && view->window() != this) return false;
    if (responder == this) responder = nullptr;
    if (responder == m_firstResponder.get()) return true;
    if (responder != nullptr && !responder->acceptsFirstResponder()) return false;

    const WeakPointer<Window> self(this);
    const WeakPointer<Responder> next(responder);
    const WeakPointer<Responder> before(m_firstResponder);
    if (before && !before->resignFirstResponder()) return false;
    if (!self) return false;
    m_firstResponder = nullptr;
    if (responder != nullptr) {
        m_firstResponder = next.get();  // known to those who ask inside
        if (!next || !next->becomeFirstResponder()) {
            if (self) m_firstResponder = nullptr;
            return false;
        }
        if (!self) return false;
    }
    for (Responder* const changed : {before.get(), next.get()}) {
        if (auto* const shown = dynamic_cast<View*>(changed)) shown->setNeedsDisplay();
    }
    if (next && m_isKey)
        next->postAccessibilityNotification(AccessibilityNotification::FocusGained);
    return true;
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

void Window::selectKeyView(bool forward) {
    auto* const present = dynamic_cast<View*>(m_firstResponder.get());
    View* next = keyViewAfter(present, forward);
    if (next == nullptr) {
        if (m_port.passKeyboard(forward)) return;
        next = keyViewAfter(nullptr, forward);
    }
    if (next != nullptr) makeFirstResponder(next);
}

void Window::keyboardArrives(bool forward) {
    if (View* const view = keyViewAfter(nullptr, forward)) makeFirstResponder(view);
}

void Window::keyStateDidChange(bool isKey) {
    if (isKey == m_isKey) return;
    m_isKey = isKey;
    Application& application = Application::current();
    if (isKey) {
        application.setKeyWindow(this);
    } else if (application.keyWindow() == this) {
        application.setKeyWindow(nullptr);
    }
    if (auto* const view = dynamic_cast<View*>(m_firstResponder.get())) {
        view->setNeedsDisplay();  // shows whether it has the keyboard
        if (isKey) view->postAccessibilityNotification(AccessibilityNotification::FocusGained);
    }
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

void Window::press(const Event& event, WeakPointer<View>& pressed,
                   void (Responder::*handler)(const Event&)) {
    pressed = viewAt(event.locationInWindow);
    const WeakPointer<Window> self(this);
    if (pressed && pressed->acceptsFirstResponder()) makeFirstResponder(pressed.get());
    if (self && pressed) (pressed.get()->*handler)(event);
}

void Window::sendEvent(const Event& event) {
    const WeakPointer<Window> self(this);
    const auto send = [&event](View* view, void (Responder::*handler)(const Event&)) {
        if (view != nullptr) (view->*handler)(event);
    };
    switch (event.type) {
        case EventType::LeftMouseDown:
            return press(event, m_pressed, &Responder::mouseDown);
        case EventType::LeftMouseDragged:
            return send(m_pressed.get(), &Responder::mouseDragged);
        case EventType::LeftMouseUp:
            return send(std::exchange(m_pressed, nullptr).get(), &Responder::mouseUp);
        case EventType::RightMouseDown:
            return press(event, m_rightPressed, &Responder::rightMouseDown);
        case EventType::RightMouseDragged:
            return send(m_rightPressed.get(), &Responder::rightMouseDragged);
        case EventType::RightMouseUp:
            return send(std::exchange(m_rightPressed, nullptr).get(), &Responder::rightMouseUp);
        case EventType::MouseMoved: {
            hover(event, viewAt(event.locationInWindow));
            if (!self || !m_hovered) return;
            View& view = *m_hovered.get();
            m_port.setCursor(
                view.cursorAt(view.convertPointFromView(event.locationInWindow, nullptr)));
            return view.mouseMoved(event);
        }
        case EventType::MouseExited:
            return hover(event, nullptr);
        case EventType::ScrollWheel:
            return send(viewAt(event.locationInWindow), &Responder::scrollWheel);
        case EventType::KeyDown:
        case EventType::KeyUp:
        case EventType::FlagsChanged:
            break;
    }
    Responder& first = m_firstResponder ? *m_firstResponder.get() : *this;
    if (event.type == EventType::KeyDown) return first.keyDown(event);
    if (event.type == EventType::KeyUp) return first.keyUp(event);
    first.flagsChanged(event);
}

// Keeps account of the left button: a release without a press is not passed on.
bool Window::admits(const Event& event) {
    switch (event.type) {
        case EventType::LeftMouseDown:
        case EventType::LeftMouseDragged:
            m_lastPress = event;
            if (event.type == EventType::LeftMouseDown) m_isButtonDown = true;
            return m_isButtonDown;
        case EventType::LeftMouseUp:
            return std::exchange(m_isButtonDown, false);
        default:
            return true;
    }
}

void Window::cancelTracking() {
    if (!m_isButtonDown) return;
    Event release = m_lastPress;
    release.type = EventType::LeftMouseUp;
    release.clickCount = 0;
    Application::current().postEvent(std::move(release));
}

std::optional<ViewToolTips::Found> Window::toolTipAt(Point inWindow) const {
    for (View* view = viewAt(inWindow); view != nullptr; view = view->superview()) {
        auto found = view->toolTips().at(view->convertPointFromView(inWindow, nullptr));
        if (!found) continue;
        found->rect = view->convertRectToView(found->rect, nullptr);
        return found;
    }
    return std::nullopt;
}

void Window::viewLeaves(View& view) {
    if (m_firstResponder.get() == &view) {
        view.resignFirstResponder();
        m_firstResponder = nullptr;
    }
    if (m_hovered.get() == &view) m_hovered = nullptr;
    if (m_pressed.get() == &view) m_pressed = nullptr;
    if (m_rightPressed.get() == &view) m_rightPressed = nullptr;
}

void Window::viewIsHidden(View& view) {
    if (isInside(dynamic_cast<View*>(m_firstResponder.get()), view)) makeFirstResponder(nullptr);
}

}  // namespace veltra
