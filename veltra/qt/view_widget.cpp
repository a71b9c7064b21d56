// SPDX-License-Identifier: MIT
#include "veltra/qt/view_widget.h"

#include "veltra/qt/qt_port.h"
#include "veltra/qt/qt_surface.h"
#include "veltra/qt/qt_types.h"
#include "veltra/qt/qt_ui_port.h"

#include <QEvent>
#include <QPointer>

namespace veltra {

class ViewWidget::Private {
public:
    explicit Private(ViewWidget& widget)
        : surface(*QtUiPort::installed(), widget,
                  [&widget](bool forward) { return widget.focusNextPrevChild(forward); }),
          window(surface, {}) {
        surface.setWindow(window);
    }

    QtSurface surface;
    Window window;
    QSize hint;
};

ViewWidget::ViewWidget(QWidget* parent) : QWidget(parent) {
    installQtPort();
    m_private = std::make_unique<Private>(*this);
    setFocusPolicy(Qt::TabFocus);
}

ViewWidget::~ViewWidget() {
    // What the widget hears from here on is nothing to views that are being destroyed.
    const std::unique_ptr<Private> ending = std::move(m_private);
}

void ViewWidget::setContentView(std::unique_ptr<View> view) {
    if (view) m_private->hint = nearest(view->frame()).size();
    m_private->window.frameDidChange(fromQt(QRectF(geometry())));
    m_private->window.setContentView(std::move(view));
    updateGeometry();
}

View* ViewWidget::contentView() const {
    return m_private->window.contentView();
}

Window& ViewWidget::veltraWindow() {
    return m_private->window;
}

QSize ViewWidget::sizeHint() const {
    return contentView() != nullptr ? m_private->hint : QWidget::sizeHint();
}

bool ViewWidget::event(QEvent* event) {
    // Events come also while the widget is being made and destroyed.
    if (m_private == nullptr) return QWidget::event(event);
    const QPointer<QWidget> self(this);
    if (m_private->surface.handle(*event) || !self) return true;
    return QWidget::event(event);
}

}  // namespace veltra
