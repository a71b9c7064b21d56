// SPDX-License-Identifier: MIT
// A window or panel of the system.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/qt/qt_surface.h"

#include <QWidget>
#include <memory>

namespace veltra {

class QtWindow final : public QtSurface {
public:
    static std::unique_ptr<QtWindow> make(QtUiPort& port, Window& window, const Rect& contentRect,
                                          const WindowStyle& style);
    ~QtWindow() override;

    void abandonWidget() override;

    void setTitle(const std::string& title) override;
    void setFrame(const Rect& onScreen, bool animate) override;
    void setSizeLimits(Size minimum, Size maximum) override;
    void setVisible(bool isVisible) override;
    void orderFront(bool takesKeyboard) override;
    void miniaturize() override;
    bool startMove() override;

private:
    class Widget;

    // From another size on the limits hold.
    void sizeDidChange();

    QtWindow(QtUiPort& port, Window& window, std::unique_ptr<Widget> widget, bool isResizable);

    std::unique_ptr<Widget> m_topLevel;
    const bool m_isResizable;
    QSize m_minimum{0, 0};
    QSize m_maximum{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    QSize m_sizeAtLimits;  // when they were set: another size, and they hold
};

}  // namespace veltra
