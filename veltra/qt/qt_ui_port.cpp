// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_ui_port.h"

#include "veltra/platform/termination.h"
#include "veltra/qt/painter_canvas.h"
#include "veltra/qt/qt_image.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/qt_types.h"
#include "veltra/qt/qt_window.h"
#include "veltra/ui/application.h"

#include <QApplication>
#include <QClipboard>
#include <QEventLoop>
#include <QPainter>
#include <QPalette>
#include <algorithm>
#include <utility>

namespace veltra {

namespace {
QtUiPort* portInForce = nullptr;
WeakPointer<RunLoop>* loopBefore = nullptr;

// On any thread; the loop is that of the main one.
void endEventLoop() noexcept {
    if (QCoreApplication* const application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, "quit");
}
}  // namespace

// One waitForEvent() on the stack.
struct QtUiPort::Wait {
    QEventLoop loop;
    Wait* outer = nullptr;
    bool hasEvent = false;
};

QtUiPort* QtUiPort::installed() noexcept {
    return portInForce;
}

bool QtUiPort::install() {
    if (portInForce != nullptr) return true;
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) return false;
    portInForce = new QtUiPort;
    UiPort::install(portInForce);
    QObject::connect(qApp, &QGuiApplication::fontDatabaseChanged, [] {
        if (portInForce != nullptr) portInForce->m_textSizes.forget();
    });
    if (const Terminator hosts = installTerminator(endEventLoop)) installTerminator(hosts);
    loopBefore = new WeakPointer<RunLoop>(RunLoop::setCurrent(&portInForce->m_runLoop));
    qAddPostRoutine(&QtUiPort::uninstall);  // called first thing when the application ends
    return true;
}

void QtUiPort::uninstall() {
    QtUiPort* const port = portInForce;
    if (port == nullptr) return;
    // While the port is in force still, the windows can let go.
    for (const auto surfaces = port->m_surfaces; QtSurface * surface : surfaces) {
        const auto& alive = port->m_surfaces;
        if (std::find(alive.begin(), alive.end(), surface) == alive.end()) continue;
        if (QWidget* const widget = surface->widget(); widget->isWindow()) widget->hide();
        if (std::find(alive.begin(), alive.end(), surface) != alive.end()) surface->abandonWidget();
    }
    if (&UiPort::current() == port) UiPort::install(nullptr);
    if (const Terminator present = installTerminator(nullptr); present != endEventLoop)
        installTerminator(present);
    if (RunLoop::current() == &port->m_runLoop) RunLoop::setCurrent(loopBefore->get());
    portInForce = nullptr;
    delete std::exchange(loopBefore, nullptr);
    delete port;
}

QtUiPort::QtUiPort() = default;
QtUiPort::~QtUiPort() = default;

void QtUiPort::remove(QtSurface& surface) {
    m_toolTip.close(*surface.widget());
    m_surfaces.erase(std::remove(m_surfaces.begin(), m_surfaces.end(), &surface), m_surfaces.end());
}

QtSurface* QtUiPort::surfaceOf(const Window* window) const {
    const auto found = std::find_if(m_surfaces.begin(), m_surfaces.end(), [=](QtSurface* surface) {
        return &surface->window() == window;
    });
    return found != m_surfaces.end() ? *found : nullptr;
}

QtSurface* QtUiPort::surfaceOf(const QObject* widget) const {
    const auto found = std::find_if(m_surfaces.begin(), m_surfaces.end(), [=](QtSurface* surface) {
        return surface->widget() == widget;
    });
    return found != m_surfaces.end() ? *found : nullptr;
}

// Appearance.

Appearance QtUiPort::appearanceOf(const QPalette& palette) {
    const int ground = palette.color(QPalette::Window).lightness();
    const int text = palette.color(QPalette::WindowText).lightness();
    return ground < text ? Appearance::Dark : Appearance::Light;
}

Appearance QtUiPort::appearance() const {
    if (m_appearance) return *m_appearance;
    const QPalette palette = QGuiApplication::palette();
    if (palette.cacheKey() != m_paletteKey) {
        m_paletteKey = palette.cacheKey();
        m_paletteAppearance = appearanceOf(palette);
    }
    return m_paletteAppearance;
}

void QtUiPort::setAppearance(std::optional<Appearance> appearance) {
    m_appearance = appearance;
    for (const auto surfaces = m_surfaces; QtSurface * surface : surfaces) {
        if (std::find(m_surfaces.begin(), m_surfaces.end(), surface) != m_surfaces.end()) {
            surface->updateAppearance();
        }
    }
}

// Windows and events.

std::unique_ptr<WindowPort> QtUiPort::makeWindow(Window& window, const Rect& contentRect,
                                                 const WindowStyle& style) {
    return QtWindow::make(*this, window, contentRect, style);
}

bool QtUiPort::hasVisibleSurface() const {
    return std::any_of(m_surfaces.begin(), m_surfaces.end(),
                       [](const QtSurface* surface) { return surface->widget()->isVisible(); });
}

bool QtUiPort::waitForEvent() {
    const Application& application = Application::current();
    if (application.isHandlingEvent()) {
        const Window* const window = application.currentEvent()->window.get();
        if (window == nullptr || !window->isVisible()) return false;
    }
    if (!hasVisibleSurface()) return false;
    Wait wait;
    wait.outer = std::exchange(m_wait, &wait);
    wait.loop.exec();  // ends also when the application quits
    if (portInForce == this) m_wait = wait.outer;
    return wait.hasEvent;
}

void QtUiPort::eventWasPosted() {
    // Also those further out: what the innermost leaves may be for them.
    for (Wait* wait = m_wait; wait != nullptr; wait = wait->outer) {
        wait->hasEvent = true;
        wait->loop.quit();
    }
}

void QtUiPort::terminate() {
    endEventLoop();
}

// Text and pictures.

bool QtUiPort::hasFontFamily(const std::string& name) const {
    return m_textSizes.hasFamily(name);
}

Size QtUiPort::textSize(const StyledText& text) const {
    return m_textSizes.sizeOf(text);
}

std::shared_ptr<const Image> QtUiPort::loadImage(const std::string& path, float scale) {
    const QImage image(toQt(path));
    if (image.isNull()) return nullptr;
    return std::make_shared<QtImage>(image, scale);
}

std::shared_ptr<const Image> QtUiPort::drawImage(std::int32_t pixelWidth, std::int32_t pixelHeight,
                                                 float scale,
                                                 const std::function<void(CanvasPort&)>& draw) {
    QImage image(pixelWidth, pixelHeight, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return nullptr;
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        PainterCanvas canvas(painter);
        draw(canvas);
    }
    return std::make_shared<QtImage>(image, scale);
}

// Tool tips, the clipboard and accessibility.

void QtUiPort::showToolTip(Window& window, const std::string& text, const Rect& around,
                           ToolTipSide side) {
    if (const QtSurface* const surface = surfaceOf(&window)) {
        const float y = window.contentSize().height - around.maxY();
        m_toolTip.follow(*surface->widget(), window.appearance(), text,
                         {{around.minX(), y}, around.size}, side);
    }
}

std::string QtUiPort::clipboardText() const {
    return QGuiApplication::clipboard()->text().toStdString();
}

void QtUiPort::setClipboardText(const std::string& text) {
    QGuiApplication::clipboard()->setText(toQt(text));
}

void QtUiPort::accessibilityChanged(AccessibilityElement& element,
                                    AccessibilityNotification notification) {
    m_accessibility.changed(element, notification);
}

void QtUiPort::accessibilityElementDied(AccessibilityElement& element) noexcept {
    m_accessibility.elementDied(element);
}

// For hosts.

bool installQtPort() {
    return QtUiPort::install();
}

void setQtAppearance(std::optional<Appearance> appearance) {
    if (QtUiPort* const port = QtUiPort::installed()) port->setAppearance(appearance);
}

}  // namespace veltra
