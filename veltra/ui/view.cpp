// SPDX-License-Identifier: MIT
#include "veltra/ui/view.h"

#include "veltra/ui/application.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/port.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace veltra {

Point View::Place::toWindow(Point point) const noexcept {
    return {origin.x + point.x, isFlipped ? origin.y - point.y : origin.y + point.y};
}

Point View::Place::fromWindow(Point point) const noexcept {
    return {point.x - origin.x, isFlipped ? origin.y - point.y : point.y - origin.y};
}

Rect View::Place::toWindow(const Rect& rect) const noexcept {
    const Point corner = toWindow(Point{rect.minX(), isFlipped ? rect.maxY() : rect.minY()});
    return {corner, rect.size};
}

Rect View::Place::fromWindow(const Rect& rect) const noexcept {
    const Point corner = fromWindow(Point{rect.minX(), isFlipped ? rect.maxY() : rect.minY()});
    return {corner, rect.size};
}

View::View(const Rect& frame) : m_frame(frame) {}

View::~View() {
    cutAnchor();
}

void View::insert(std::unique_ptr<View> view, std::size_t index) {
    View& added = *view;
    added.m_superview = this;
    const auto place =
        m_subviews.begin() + static_cast<std::ptrdiff_t>(std::min(index, m_subviews.size()));
    m_subviews.insert(place, std::move(view));
    const WeakPointer<View> self(this);
    const WeakPointer<View> subview(&added);
    added.setWindow(m_window);
    if (subview) added.setNeedsDisplay();
    if (self) postAccessibilityNotification(AccessibilityNotification::ChildrenChanged);
}

std::unique_ptr<View> View::takeFromSuperview() {
    if (m_superview == nullptr) {
        return m_window != nullptr ? m_window->takeContentView() : nullptr;
    }
    setNeedsDisplay();
    const WeakPointer<View> self(this);
    const WeakPointer<Window> window(m_window);
    const WeakPointer<View> heir(m_window != nullptr ? m_window->heirOfKeys(*this) : nullptr);
    setWindow(nullptr);
    if (!self || m_superview == nullptr) return nullptr;
    View& superview = *m_superview;
    auto& siblings = superview.m_subviews;
    const auto found = std::find_if(siblings.begin(), siblings.end(),
                                    [this](const auto& view) { return view.get() == this; });
    std::unique_ptr<View> taken = std::move(*found);
    siblings.erase(found);
    m_superview = nullptr;
    superview.postAccessibilityNotification(AccessibilityNotification::ChildrenChanged);
    if (window && heir && window->firstResponder() == nullptr) window->giveKeyboardTo(*heir.get());
    return taken;
}

std::unique_ptr<View> View::replaceSubview(const View& view, std::unique_ptr<View> with) {
    const auto found = std::find_if(m_subviews.begin(), m_subviews.end(),
                                    [&view](const auto& other) { return other.get() == &view; });
    if (found == m_subviews.end() || !with) return nullptr;
    const auto index = static_cast<std::size_t>(found - m_subviews.begin());
    const WeakPointer<View> self(this);
    std::unique_ptr<View> taken = (*found)->takeFromSuperview();
    if (self) insert(std::move(with), index);
    return taken;
}

void View::removeFromSuperview() {
    Application::current().discard(takeFromSuperview());
}

void View::setWindow(Window* window) {
    if (window == m_window) return;
    const WeakPointer<View> self(this);
    viewWillMoveToWindow(window);
    if (!self) return;
    if (m_window != nullptr) m_window->viewLeaves(*this);
    if (!self) return;
    m_window = window;
    // By index: what is called may add and remove views.
    for (std::size_t i = 0; self && i < m_subviews.size(); ++i)
        m_subviews[i]->setWindow(window);
    if (self) viewDidMoveToWindow();
}

void View::setFrame(const Rect& frame) {
    if (frame == m_frame) return;
    setNeedsDisplay();
    const Size oldSize = m_frame.size;
    m_frame = frame;
    setNeedsDisplay();
    if (oldSize == frame.size) return;
    const WeakPointer<View> self(this);
    if (autoresizesSubviews()) resizeSubviews(oldSize);
    if (self) frameDidChange();
}

void View::resizeSubviews(Size oldSize) {
    const WeakPointer<View> self(this);
    for (std::size_t i = 0; self && i < m_subviews.size(); ++i)
        m_subviews[i]->resizeWithSuperview(oldSize, m_frame.size);
}

namespace {

struct Span {
    float start;
    float length;
};

// Shares `change` among the parts that give, in proportion to their lengths; in equal shares when
// all of them are 0. `gives` tells it of the margin before, the length and the margin behind.
Span resized(Span old, float oldWhole, float change, const std::array<bool, 3>& gives) {
    const float parts[3] = {old.start, old.length, oldWhole - old.start - old.length};
    float sum = 0.0F;
    float count = 0.0F;
    for (std::size_t i = 0; i < 3; ++i) {
        if (!gives[i]) continue;
        sum += parts[i];
        count += 1.0F;
    }
    if (count == 0.0F) return old;
    const auto share = [&](std::size_t i) {
        if (!gives[i]) return 0.0F;
        return sum != 0.0F ? change * parts[i] / sum : change / count;
    };
    return {old.start + share(0), std::max(old.length + share(1), 0.0F)};
}

}  // namespace

void View::resizeWithSuperview(Size oldSize, Size newSize) {
    const auto gives = [this](AutoresizingFlag flag) { return m_autoresizingMask.contains(flag); };
    const Span x =
        resized({m_frame.minX(), m_frame.size.width}, oldSize.width, newSize.width - oldSize.width,
                {gives(kViewMinXMargin), gives(kViewWidthSizable), gives(kViewMaxXMargin)});
    const Span y = resized(
        {m_frame.minY(), m_frame.size.height}, oldSize.height, newSize.height - oldSize.height,
        {gives(kViewMinYMargin), gives(kViewHeightSizable), gives(kViewMaxYMargin)});
    setFrame({{x.start, y.start}, {x.length, y.length}});
}

View::Place View::placeIn(const Place& superview) const {
    const Rect inWindow = superview.toWindow(m_frame);
    const bool flipped = isFlipped();
    return {{inWindow.minX(), flipped ? inWindow.maxY() : inWindow.minY()}, flipped};
}

View::Place View::place() const {
    return placeIn(placeOfSuperview());
}

View::Place View::placeOfSuperview() const {
    return m_superview != nullptr ? m_superview->place() : Place{{}, false};
}

Point View::convertPointToView(Point point, const View* other) const {
    const Point inWindow = place().toWindow(point);
    return other != nullptr ? other->place().fromWindow(inWindow) : inWindow;
}

Point View::convertPointFromView(Point point, const View* other) const {
    return place().fromWindow(other != nullptr ? other->place().toWindow(point) : point);
}

Rect View::convertRectToView(const Rect& rect, const View* other) const {
    const Rect inWindow = place().toWindow(rect);
    return other != nullptr ? other->place().fromWindow(inWindow) : inWindow;
}

Rect View::convertRectFromView(const Rect& rect, const View* other) const {
    return place().fromWindow(other != nullptr ? other->place().toWindow(rect) : rect);
}

void View::setHidden(bool isHidden) {
    if (isHidden == m_isHidden) return;
    setNeedsDisplay();  // while it can be seen: before hiding or after showing
    m_isHidden = isHidden;
    setNeedsDisplay();
    if (isHidden && m_window != nullptr) m_window->viewIsHidden(*this);
}

bool View::isHiddenOrHasHiddenAncestor() const noexcept {
    for (const View* view = this; view != nullptr; view = view->m_superview) {
        if (view->m_isHidden) return true;
    }
    return false;
}

Rect View::toSuperview(const Rect& rect) const noexcept {
    const bool sameDirection = isFlipped() == (m_superview != nullptr && m_superview->isFlipped());
    const float low = sameDirection ? m_frame.minY() + rect.minY() : m_frame.maxY() - rect.maxY();
    return {{m_frame.minX() + rect.minX(), low}, rect.size};
}

Rect View::visiblePartInWindow(const Rect& rect) const {
    if (m_window == nullptr) return {};
    Rect visible = rect;
    for (const View* view = this; view != nullptr; view = view->m_superview) {
        visible = visible.intersection(view->bounds());
        if (view->m_isHidden || visible.isEmpty()) return {};
        visible = view->toSuperview(visible);
    }
    return visible;
}

Rect View::visibleRect() const {
    const Rect visible = visiblePartInWindow(bounds());
    return visible.isEmpty() ? Rect{} : place().fromWindow(visible);
}

bool View::scrollRectToVisible(const Rect& rect) {
    return m_superview != nullptr && m_superview->scrollRectToVisible(toSuperview(rect));
}

Point View::locationOf(const Event& event) const {
    return convertPointFromView(event.locationInWindow, nullptr);
}

Point View::movementOf(const Event& event) const {
    return {event.deltaX, isFlipped() ? -event.deltaY : event.deltaY};
}

void View::setNeedsDisplayInRect(const Rect& rect) {
    const Rect visible = visiblePartInWindow(rect);
    if (!visible.isEmpty()) m_window->invalidate(visible);
}

bool View::needsToDrawRect(const Rect& rect) const {
    return std::any_of(m_dirty.begin(), m_dirty.end(),
                       [&](const Rect& dirty) { return dirty.intersects(rect); });
}

void View::displayRects(Canvas& canvas, std::span<const Rect> dirty) {
    if (m_isHidden || m_window == nullptr) return;
    const float height = m_window->contentSize().height;
    DirtyParts parts;
    parts.all.reserve(dirty.size());
    for (const Rect& rect : dirty) {
        parts.all.push_back({{{rect.minX(), height - rect.maxY()}, rect.size}, 0});
        parts.tallest = std::max(parts.tallest, rect.size.height);
    }
    std::sort(parts.all.begin(), parts.all.end(), [](const DirtyPart& one, const DirtyPart& next) {
        return one.inWindow.minY() < next.inWindow.minY();
    });
    const Place around = placeOfSuperview();
    std::uint32_t order = 0;
    coverParts(parts, around, {{}, m_window->contentSize()}, order);
    displayParts(canvas, parts, around);
}

std::span<View::DirtyPart> View::DirtyParts::between(float low, float high) noexcept {
    const auto lies = [](float limit) {
        return [limit](const DirtyPart& part) { return part.inWindow.minY() < limit; };
    };
    const float lowest = low - tallest - 1.0F;  // a point for roundings
    const auto begin = std::partition_point(all.begin(), all.end(), lies(lowest));
    return {begin, std::partition_point(begin, all.end(), lies(high))};
}

// Views are drawn in the order of the tree: what comes before one that covers a part is not seen
// there.
void View::coverParts(DirtyParts& parts, const Place& superview, const Rect& visible,
                      std::uint32_t& order) {
    m_order = ++order;
    if (m_isHidden) return;
    const Place here = placeIn(superview);
    const Rect seen = here.toWindow(bounds()).intersection(visible);
    if (seen.isEmpty()) return;
    const auto holds = [](const Rect& rect) {
        return [&rect, right = rect.maxX(), top = rect.maxY()](const DirtyPart& part) {
            const Rect& inside = part.inWindow;
            return inside.minX() >= rect.minX() && inside.maxX() <= right &&
                   inside.minY() >= rect.minY() && inside.maxY() <= top;
        };
    };
    const std::span<DirtyPart> near = parts.between(seen.minY(), seen.maxY());
    const auto first = std::find_if(near.begin(), near.end(), holds(seen));
    if (first != near.end()) {  // a view is not asked for nothing
        const Rect opaque = here.toWindow(opaqueRect()).intersection(seen);
        const auto covers = holds(opaque);
        for (auto part = first; !opaque.isEmpty() && part != near.end(); ++part)
            if (covers(*part)) part->from = m_order;
    }
    for (const auto& subview : m_subviews)
        subview->coverParts(parts, here, seen, order);
}

void View::displayParts(Canvas& canvas, DirtyParts& parts, const Place& superview) {
    if (m_isHidden) return;
    const Place here = placeIn(superview);
    const Rect inWindow = here.toWindow(bounds());
    const float right = inWindow.maxX();
    const float top = inWindow.maxY();
    m_dirty.clear();
    bool isMet = false;
    Rect around;
    for (const DirtyPart& part : parts.between(inWindow.minY(), top)) {
        // Most miss, where many views change at once.
        const Rect& rect = part.inWindow;
        if (rect.minX() >= right || rect.maxX() <= inWindow.minX() || rect.minY() >= top ||
            rect.maxY() <= inWindow.minY())
            continue;
        isMet = true;
        if (part.from > m_order) continue;
        const Rect inside = here.fromWindow(rect).intersection(bounds());
        if (inside.isEmpty()) continue;
        m_dirty.push_back(inside);
        around = around.united(inside);
    }
    if (!isMet) return;
    const Canvas::StateScope scope(canvas);
    canvas.enter(m_frame, isFlipped());
    if (m_subviews.empty()) {  // nobody comes after it in this scope
        if (!m_dirty.empty()) drawRect(canvas, around);
    } else if (!m_dirty.empty()) {
        const Canvas::StateScope own(canvas);
        drawRect(canvas, around);
    }
    m_dirty.clear();
    for (const auto& subview : m_subviews)
        subview->displayParts(canvas, parts, here);
}

Appearance View::effectiveAppearance() const {
    return m_window != nullptr ? m_window->appearance() : UiPort::current().appearance();
}

void View::tellAppearanceDidChange() {
    tellAll(&View::appearanceDidChange);
}

void View::tellWindowStateDidChange() {
    tellAll(&View::windowStateDidChange);
}

void View::tellAll(void (View::*call)()) {
    const WeakPointer<View> self(this);
    (this->*call)();
    for (std::size_t i = 0; self && i < m_subviews.size(); ++i)
        m_subviews[i]->tellAll(call);
}

Responder* View::nextResponder() const {
    if (m_superview != nullptr) return m_superview;
    return m_window;
}

View* View::hitTest(Point inSuperview) {
    const bool superviewIsFlipped = m_superview != nullptr && m_superview->isFlipped();
    if (m_isHidden || !mouseInRect(inSuperview, m_frame, superviewIsFlipped)) return nullptr;
    const bool sameDirection = isFlipped() == superviewIsFlipped;
    const Point point{inSuperview.x - m_frame.minX(), sameDirection
                                                          ? inSuperview.y - m_frame.minY()
                                                          : m_frame.maxY() - inSuperview.y};
    for (auto view = m_subviews.rbegin(); view != m_subviews.rend(); ++view) {
        if (View* const found = (*view)->hitTest(point)) return found;
    }
    return this;
}

bool View::isFirstResponder() const {
    return m_window != nullptr && m_window->firstResponder() == this;
}

bool View::showsFocus() const {
    return hasKeyboard() && m_window->keysLead();
}

bool View::hasKeyboard() const {
    return m_window != nullptr && m_window->isKeyWindow() && isFirstResponder();
}

bool View::canBecomeKeyView() const {
    return m_window != nullptr && acceptsFirstResponder() && !isHiddenOrHasHiddenAncestor();
}

std::vector<AccessibilityElement*> View::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children;
    for (const auto& view : m_subviews) {
        if (!view->m_isHidden) children.push_back(view.get());
    }
    return children;
}

}  // namespace veltra
