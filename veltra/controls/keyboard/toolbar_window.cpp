// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/toolbar_window.h"

#include "veltra/controls/keyboard/detail/toolbar_button.h"
#include "veltra/ui/application.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

constexpr float kButtonMargin = 12.0F;  // from the right side

Size grown(Size size, float height) noexcept {
    return {size.width, std::max(size.height + height, 0.0F)};
}

// The subviews, when their superview is resized.
void leaveAlone(const View& superview,
                std::vector<std::pair<WeakPointer<View>, AutoresizingMask>>& masks) {
    for (const auto& view : superview.subviews()) {
        masks.emplace_back(view.get(), view->autoresizingMask());
        view->setAutoresizingMask(kViewNotSizable);
    }
}

}  // namespace

template <typename Base>
void ToolbarWindow<Base>::showToolbar() {
    if (!m_toolbarVisible) toggleToolbar();
}

template <typename Base>
void ToolbarWindow<Base>::hideToolbar() {
    if (m_toolbarVisible) toggleToolbar();
}

template <typename Base>
void ToolbarWindow<Base>::toggleToolbar() {
    if (m_isToggling) return;
    const WeakPointer<ToolbarWindow> self(this);
    m_isToggling = true;
    toggle();
    if (!self) return;
    m_isToggling = false;
    showState();
    this->displayIfNeeded();
}

template <typename Base>
void ToolbarWindow<Base>::toggle() {
    const WeakPointer<ToolbarWindow> self(this);
    if (!meetLimits()) return;
    Rect frame = this->frame();
    const bool shows = !m_toolbarVisible;
    const float change = shows ? toolbarHeight() : -toolbarHeight();
    if (!shows) {
        std::unique_ptr<View> hidden = takeToolbarView();
        if (!self) return;
        if (hidden) m_toolbarView = std::move(hidden);
    }
    frame.size = grown(frame.size, change);
    m_toolbarVisible = shows;
    Base::setMinSize(grown(this->minSize(), change));
    Base::setMaxSize(grown(this->maxSize(), change));
    ResizeBehavior behavior;
    saveAndChangeResizeBehavior(behavior);
    oldSetFrame(frame, false);
    if (!self) return;
    restoreResizeBehavior(behavior);
    moveContentDown(change);
    if (self && shows) placeToolbarView();
}

// Limits hold from the next change of size on, which this is: what they change goes to the content,
// as ever. Returns false when the window has died of it.
template <typename Base>
bool ToolbarWindow<Base>::meetLimits() {
    Rect frame = this->frame();
    const Size least = this->minSize();
    const Size most = this->maxSize();
    frame.size.width = std::max(std::min(frame.size.width, most.width), least.width);
    frame.size.height = std::max(std::min(frame.size.height, most.height), least.height);
    const WeakPointer<ToolbarWindow> self(this);
    if (frame != this->frame()) oldSetFrame(frame, false);
    return static_cast<bool>(self);
}

// Where y points up, the strip appears above the content, which stays. Where it points down, the
// content makes room.
template <typename Base>
void ToolbarWindow<Base>::moveContentDown(float points) {
    View* const content = this->contentView();
    if (content == nullptr || !content->isFlipped()) return;
    for (const auto& view : content->subviews()) {
        if (view.get() == m_toolbarButton.get() || view.get() == m_shownToolbarView.get()) continue;
        view->setFrameOrigin(view->frame().origin + Point{0.0F, points});
    }
}

// The view.

template <typename Base>
View* ToolbarWindow<Base>::toolbarView() const noexcept {
    return m_toolbarView ? m_toolbarView.get() : m_shownToolbarView.get();
}

template <typename Base>
void ToolbarWindow<Base>::setToolbarView(std::unique_ptr<View> view) {
    const WeakPointer<ToolbarWindow> self(this);
    std::unique_ptr<View> before = takeToolbarView();
    if (self) {
        if (m_toolbarView) before = std::move(m_toolbarView);
        m_toolbarView = std::move(view);
        if (m_toolbarVisible) placeToolbarView();
    }
    Application::current().discard(std::move(before));
}

// Out of the content view; null when it is not there.
template <typename Base>
std::unique_ptr<View> ToolbarWindow<Base>::takeToolbarView() {
    View* const shown = m_shownToolbarView.get();
    m_shownToolbarView = nullptr;
    return shown != nullptr ? shown->takeFromSuperview() : nullptr;
}

template <typename Base>
void ToolbarWindow<Base>::placeToolbarView() {
    View* const content = this->contentView();
    if (!m_toolbarView || content == nullptr) return;
    m_shownToolbarView = m_toolbarView.get();
    const WeakPointer<ToolbarWindow> self(this);
    layOut();
    if (!self || !m_toolbarView || content != this->contentView()) return;
    const auto& views = content->subviews();
    const auto button = std::find_if(views.begin(), views.end(), [this](const auto& view) {
        return view.get() == m_toolbarButton.get();
    });
    // The button stays above it.
    content->insertSubview(std::move(m_toolbarView),
                           static_cast<std::size_t>(button - views.begin()));
}

template <typename Base>
void ToolbarWindow<Base>::layOut() {
    const View* const content = this->contentView();
    if (content == nullptr) return;
    const Size size = content->bounds().size;
    const float height = toolbarHeight();
    const bool isFlipped = content->isFlipped();  // asked before a view can take it away
    // In the middle of the strip's height.
    const auto place = [&](float x, Size part) {
        const float margin = (height - part.height) / 2.0F;
        const float y = isFlipped ? margin : size.height - height + margin;
        return Rect{{x, y}, part};
    };
    const WeakPointer<ToolbarWindow> self(this);
    if (View* const strip = m_shownToolbarView.get()) {
        const AutoresizingMask mask = strip->autoresizingMask();
        const Size own = strip->frame().size;
        const Size part{mask.contains(kViewWidthSizable) ? size.width : own.width,
                        mask.contains(kViewHeightSizable) ? height : own.height};
        strip->setFrame(place(std::floor((size.width - part.width) / 2.0F), part));
    }
    if (!self || !m_toolbarButton) return;
    const Size part = m_toolbarButton->frame().size;
    m_toolbarButton->setFrame(place(size.width - kButtonMargin - part.width, part));
}

template <typename Base>
void ToolbarWindow<Base>::setContentView(std::unique_ptr<View> view) {
    const WeakPointer<ToolbarWindow> self(this);
    std::unique_ptr<View> strip = takeToolbarView();
    std::unique_ptr<View> button;
    if (self && m_toolbarButton) button = m_toolbarButton->takeFromSuperview();
    if (!self) return;
    if (strip) m_toolbarView = std::move(strip);

    if (view) view->setFrame({{}, frameWithoutToolBar().size});
    if (!self) return;
    ResizeBehavior behavior;
    if (view) leaveAlone(*view, behavior);
    Base::setContentView(std::move(view));
    if (!self) return;
    restoreResizeBehavior(behavior);
    View* const content = this->contentView();
    if (content == nullptr) return;
    if (m_toolbarVisible) moveContentDown(toolbarHeight());
    if (self && m_toolbarVisible) placeToolbarView();
    if (!self || content != this->contentView()) return;
    if (button) content->addSubview(std::move(button));
    if (self) layOut();
}

// The button.

template <typename Base>
void ToolbarWindow<Base>::df_addToolbarWidget() {
    View* const content = this->contentView();
    if (content == nullptr || m_toolbarButton) return;
    auto button = std::make_unique<detail::ToolbarButton>();
    button->setTarget(this);
    button->setAction(action<&ToolbarWindow<Base>::df_ToolbarButtonAction>());
    m_toolbarButton = button.get();
    showState();
    layOut();
    content->addSubview(std::move(button));
}

template <typename Base>
void ToolbarWindow<Base>::df_ToolbarButtonAction(Anchored* /*sender*/) {
    toggleToolbar();
}

template <typename Base>
void ToolbarWindow<Base>::showState() {
    if (m_toolbarButton) m_toolbarButton->setOn(m_toolbarVisible);
}

// Frames and limits.

template <typename Base>
Rect ToolbarWindow<Base>::frameWithoutToolBar() const {
    const Rect& frame = this->frame();
    return {frame.origin, grown(frame.size, m_toolbarVisible ? -toolbarHeight() : 0.0F)};
}

template <typename Base>
void ToolbarWindow<Base>::setFrame(const Rect& frame, bool display, bool animate) {
    Rect wanted = frame;
    if (m_toolbarVisible) wanted.size.height = std::max(wanted.size.height, toolbarHeight());
    oldSetFrame(wanted, display, animate);
}

template <typename Base>
void ToolbarWindow<Base>::oldSetFrame(const Rect& frame, bool display, bool animate) {
    Base::setFrame(frame, display, animate);
}

template <typename Base>
void ToolbarWindow<Base>::setMinSize(Size size) {
    Base::setMinSize(grown(size, m_toolbarVisible ? toolbarHeight() : 0.0F));
}

template <typename Base>
void ToolbarWindow<Base>::setMaxSize(Size size) {
    Base::setMaxSize(grown(size, m_toolbarVisible ? toolbarHeight() : 0.0F));
}

template <typename Base>
void ToolbarWindow<Base>::saveAndChangeResizeBehavior(ResizeBehavior& behavior) {
    if (this->contentView() != nullptr) leaveAlone(*this->contentView(), behavior);
}

template <typename Base>
void ToolbarWindow<Base>::restoreResizeBehavior(const ResizeBehavior& behavior) {
    for (const auto& [view, mask] : behavior) {
        if (view) view->setAutoresizingMask(mask);
    }
}

template <typename Base>
void ToolbarWindow<Base>::windowDidChangeFrame(const Rect& before) {
    const WeakPointer<ToolbarWindow> self(this);
    Base::windowDidChangeFrame(before);
    if (self) layOut();
}

template class ToolbarWindow<Window>;
template class ToolbarWindow<Panel>;

}  // namespace veltra
