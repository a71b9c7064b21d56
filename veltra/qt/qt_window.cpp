// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_window.h"

#include "veltra/qt/qt_types.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPointer>
#include <QWindow>
#include <algorithm>

namespace veltra {

class QtWindow::Widget final : public QWidget {
public:
    explicit Widget(const WindowStyle& style) : QWidget(nullptr, flags(style)) {
        setAttribute(Qt::WA_ShowWithoutActivating);  // orderFront() says who takes the keyboard
        setAttribute(Qt::WA_OpaquePaintEvent);       // the surface paints the ground too
        setFocusPolicy(Qt::StrongFocus);
    }

    void setSurface(QtWindow& surface) { m_surface = &surface; }
    bool moveFocus(bool forward) { return focusNextPrevChild(forward); }

protected:
    bool event(QEvent* event) override {
        if (m_surface == nullptr) return QWidget::event(event);
        if (event->type() == QEvent::Close) {
            event->ignore();  // the window decides
            m_surface->window().close();
            return true;
        }
        if (event->type() == QEvent::WindowBlocked && m_surface->window().worksWhenModal()) {
            // A window that belongs to the modal one is not blocked by it.
            windowHandle()->setTransientParent(QGuiApplication::modalWindow());
            return true;
        }
        const QPointer<QWidget> self(this);
        if (event->type() == QEvent::Move) m_surface->place();
        if (!self) return true;
        if (event->type() == QEvent::Resize) m_surface->sizeDidChange();
        if (!self || m_surface->handle(*event) || !self) return true;
        return QWidget::event(event);
    }

private:
    static Qt::WindowFlags flags(const WindowStyle& style) {
        Qt::WindowFlags result = style.isPanel ? Qt::Tool : Qt::Window;
        if (!style.isTitled) return result | Qt::FramelessWindowHint;
        result |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
        if (style.isClosable) result |= Qt::WindowCloseButtonHint;
        if (style.isMiniaturizable) result |= Qt::WindowMinimizeButtonHint;
        if (style.isResizable) result |= Qt::WindowMaximizeButtonHint;
        return result;
    }

    QtWindow* m_surface = nullptr;
};

std::unique_ptr<QtWindow> QtWindow::make(QtUiPort& port, Window& window, const Rect& contentRect,
                                         const WindowStyle& style) {
    auto widget = std::make_unique<Widget>(style);
    Widget& made = *widget;
    std::unique_ptr<QtWindow> result(
        new QtWindow(port, window, std::move(widget), style.isResizable));
    result->setFrame(contentRect, false);
    made.setSurface(*result);  // what the widget hears from here on, the window can be told
    return result;
}

QtWindow::QtWindow(QtUiPort& port, Window& window, std::unique_ptr<Widget> widget, bool isResizable)
    : QtSurface(port, *widget,
                [top = widget.get()](bool forward) { return top->moveFocus(forward); }),
      m_topLevel(std::move(widget)),
      m_isResizable(isResizable) {
    fillsGround();
    setWindow(window);
}

QtWindow::~QtWindow() {
    abandonWidget();
}

void QtWindow::abandonWidget() {
    QtSurface::abandonWidget();
    m_topLevel.reset();
}

void QtWindow::setTitle(const std::string& title) {
    if (m_topLevel) m_topLevel->setWindowTitle(toQt(title));
}

void QtWindow::setFrame(const Rect& onScreen, bool /*animate*/) {
    if (!m_topLevel) return;
    const QRect frame = nearest(onScreen);
    if (!m_isResizable) {
        m_topLevel->setFixedSize(frame.size());
    } else if (frame.size() != m_topLevel->size()) {
        // What lies between the old size and the new one must not stop it on its way.
        m_topLevel->setMinimumSize(m_topLevel->minimumSize().boundedTo(frame.size()));
        m_topLevel->setMaximumSize(m_topLevel->maximumSize().expandedTo(frame.size()));
    }
    m_topLevel->setGeometry(frame);
    sizeDidChange();
}

void QtWindow::setSizeLimits(Size minimum, Size maximum) {
    if (!m_topLevel || !m_isResizable) return;
    const auto whole = [](float value) {
        return static_cast<int>(std::clamp(value, 0.0F, static_cast<float>(QWIDGETSIZE_MAX)));
    };
    m_minimum = {whole(minimum.width), whole(minimum.height)};
    m_maximum = QSize(whole(maximum.width), whole(maximum.height)).expandedTo(m_minimum);
    // The toolkit would resize the window at once to meet them: until its size changes for another
    // reason, the limits reach as far as that size.
    m_sizeAtLimits = m_topLevel->size();
    m_topLevel->setMinimumSize(m_minimum.boundedTo(m_sizeAtLimits));
    m_topLevel->setMaximumSize(m_maximum.expandedTo(m_sizeAtLimits));
}

void QtWindow::sizeDidChange() {
    if (!m_topLevel || !m_isResizable || m_topLevel->size() == m_sizeAtLimits) return;
    m_sizeAtLimits = {};
    m_topLevel->setMinimumSize(m_minimum);
    m_topLevel->setMaximumSize(m_maximum);
}

void QtWindow::setVisible(bool isVisible) {
    if (m_topLevel) m_topLevel->setVisible(isVisible);
}

void QtWindow::orderFront(bool takesKeyboard) {
    const QPointer<QWidget> widget(m_topLevel.get());
    if (!widget) return;
    widget->raise();
    if (!takesKeyboard) return;
    widget->activateWindow();
    if (widget) widget->setFocus(Qt::ActiveWindowFocusReason);
}

bool QtWindow::startMove() {
    QWindow* const window = m_topLevel ? m_topLevel->windowHandle() : nullptr;
    return window != nullptr && window->startSystemMove();
}

void QtWindow::miniaturize() {
    if (m_topLevel) m_topLevel->showMinimized();
}

}  // namespace veltra
