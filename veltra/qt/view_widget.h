// SPDX-License-Identifier: MIT
// A Veltra view inside any QWidget:
//
//   auto* meters = new veltra::ViewWidget(mixerWindow);
//   meters->setContentView(std::make_unique<MeterBridge>(veltra::Rect{{}, {320, 96}}));
//   layout->addWidget(meters);
//
// Tab leads through the key views and on to the widgets behind; a click takes the keyboard only
// where a view wants it. Events that no view takes go to the widgets around. Light or dark follows
// the widget's palette, unless set with setQtAppearance() or on the window.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/view.h"
#include "veltra/ui/window.h"

#include <QWidget>
#include <memory>

namespace veltra {

// May be deleted in every callback of its views. Destroy it before the QApplication.
class VELTRA_EXPORT ViewWidget : public QWidget {
public:
    // Puts the Qt port in force (installQtPort()).
    explicit ViewWidget(QWidget* parent = nullptr);
    ~ViewWidget() override;

    // The view fills the widget; its frame until then is the widget's size hint.
    void setContentView(std::unique_ptr<View> view);
    View* contentView() const;

    // The views' window, which is this widget.
    Window& veltraWindow();

    // The size that the content view had when it was set; without one, that of a plain QWidget.
    QSize sizeHint() const override;

protected:
    // Hands events to the views first, then to QWidget. The widget may be gone when it returns.
    bool event(QEvent* event) override;

private:
    class Private;
    std::unique_ptr<Private> m_private;
};

}  // namespace veltra
