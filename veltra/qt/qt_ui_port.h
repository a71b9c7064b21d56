// SPDX-License-Identifier: MIT
// The UiPort on Qt, with all that belongs to it. There is at most one; it lives from
// installQtPort() until the QApplication ends.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/qt/qt_accessibility.h"
#include "veltra/qt/qt_run_loop.h"
#include "veltra/qt/qt_text.h"
#include "veltra/qt/qt_tool_tip.h"
#include "veltra/ui/port.h"

#include <optional>
#include <vector>

class QObject;
class QPalette;

namespace veltra {

class QtSurface;

class QtUiPort final : public UiPort {
public:
    // Null before installQtPort() and after the end of the QApplication.
    static QtUiPort* installed() noexcept;
    static bool install();

    QtUiPort();
    ~QtUiPort() override;

    void add(QtSurface& surface) { m_surfaces.push_back(&surface); }
    void remove(QtSurface& surface);
    QtSurface* surfaceOf(const Window* window) const;
    QtSurface* surfaceOf(const QObject* widget) const;

    QtToolTip& toolTip() noexcept { return m_toolTip; }
    QtAccessibility& accessibility() noexcept { return m_accessibility; }

    static Appearance appearanceOf(const QPalette& palette);
    bool isAppearanceSet() const noexcept { return m_appearance.has_value(); }
    void setAppearance(std::optional<Appearance> appearance);

    std::unique_ptr<WindowPort> makeWindow(Window& window, const Rect& contentRect,
                                           const WindowStyle& style) override;
    bool waitForEvent() override;
    void eventWasPosted() override;
    void terminate() override;
    Appearance appearance() const override;
    bool hasFontFamily(const std::string& name) const override;
    Size textSize(const StyledText& text) const override;
    std::shared_ptr<const Image> loadImage(const std::string& path, float scale) override;
    std::shared_ptr<const Image> drawImage(std::int32_t pixelWidth, std::int32_t pixelHeight,
                                           float scale,
                                           const std::function<void(CanvasPort&)>& draw) override;
    void showToolTip(Window& window, const std::string& text, const Rect& around,
                     ToolTipSide side) override;
    void closeToolTip() override { m_toolTip.close(); }
    std::string clipboardText() const override;
    void setClipboardText(const std::string& text) override;
    void accessibilityChanged(AccessibilityElement& element,
                              AccessibilityNotification notification) override;
    void accessibilityElementDied(AccessibilityElement& element) noexcept override;

private:
    struct Wait;

    static void uninstall();
    bool hasVisibleSurface() const;

    std::vector<QtSurface*> m_surfaces;
    std::optional<Appearance> m_appearance;
    // Each cell that is drawn asks, and colours are slow to compare.
    mutable std::int64_t m_paletteKey = 0;
    mutable Appearance m_paletteAppearance = Appearance::Light;
    QtRunLoop m_runLoop;
    QtToolTip m_toolTip;
    mutable QtTextSizes m_textSizes;
    QtAccessibility m_accessibility{*this};
    Wait* m_wait = nullptr;  // the innermost waitForEvent()
};

}  // namespace veltra
