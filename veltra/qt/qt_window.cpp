// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_window.h"

#include "veltra/qt/qt_types.h"

#include <QCloseEvent>
#include <QPointer>
#include <algorithm>

namespace veltra {

class QtWindow::Widget final : public QWidget {
public:
    explicit Widget(const WindowStyle& style) : QWidget(nullptr, flags(style)) {
        setAttribute(Qt::WA_ShowWithoutActivating);  // orderFront() says who takes the keyboard
        setAttribute(Qt::WA_OpaquePaintEvent);       // the surface paints the ground too
        setFocusPolicy(Qt::StrongFocus);
    }

    void setSurface(QtSurface& surface) { m_surface = &surface; }
    bool moveFocus(bool forward) { return focusNextPrevChild(forward); }

protected:
    bool event(QEvent* event) override {
        if (m_surface == nullptr) return QWidget::event(event);
        if (event->type() == QEvent::Close) {
            event->ignore();  // the window decides
            m_surface->window().close();
            return true;
        }
        const QPointer<QWidget> self(this);
        if (event->type() == QEvent::Move) m_surface->place();
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

    QtSurface* m_surface = nullptr;
};

std::unique_ptr<QtWindow> QtWindow::make(Window& window, const Rect& contentRect,
                                         const WindowStyle& style) {
    auto widget = std::make_unique<Widget>(style);
    Widget& made = *widget;
    std::unique_ptr<QtWindow> result(new QtWindow(window, std::move(widget), style.isResizable));
    result->setFrame(contentRect, false);
    made.setSurface(*result);  // what the widget hears from here on, the window can be told
    return result;
}

QtWindow::QtWindow(Window& window, std::unique_ptr<Widget> widget, bool isResizable)
    : QtSurface(*widget, [top = widget.get()](bool forward) { return top->moveFocus(forward); }),
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
    if (!m_isResizable) m_topLevel->setFixedSize(frame.size());
    m_topLevel->setGeometry(frame);
}

void QtWindow::setSizeLimits(Size minimum, Size maximum) {
    if (!m_topLevel || !m_isResizable) return;
    const auto whole = [](float value) {
        return static_cast<int>(std::clamp(value, 0.0F, static_cast<float>(QWIDGETSIZE_MAX)));
    };
    m_topLevel->setMinimumSize(whole(minimum.width), whole(minimum.height));
    m_topLevel->setMaximumSize(whole(std::max(maximum.width, minimum.width)),
                               whole(std::max(maximum.height, minimum.height)));
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

void QtWindow::miniaturize() {
    if (m_topLevel) m_topLevel->showMinimized();
}

}  // namespace veltra
