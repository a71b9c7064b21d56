// SPDX-License-Identifier: MIT
// A toolkit that does what a test says: text of known size, events from a script, and a record of
// what would have been shown. While one lives it is the port in force.
//
//   ScriptedPort port;
//   HostedView host(std::make_unique<Knob>(Rect{{}, {40, 40}}));
//   port.script.push_back([&] { host.drag({10, 20}); });   // what nextEvent() will wait for
//   host.press({10, 10});
#pragma once

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/application.h"
#include "veltra/ui/control.h"
#include "veltra/ui/port.h"
#include "veltra/ui/testing/recording_canvas.h"
#include "veltra/ui/window.h"

#include <gmock/gmock.h>

namespace veltra::testing {

class RecordingWindow final : public WindowPort {
public:
    std::vector<Rect> invalid;  // on the surface
    std::vector<Rect> frames;   // asked for
    bool isKeyboardPassed = false;
    bool hasNeighbours = false;  // something around that takes the keyboard
    Cursor cursor = Cursor::Arrow;
    Size minimum;
    Size maximum;
    bool canMove = false;
    bool isMiniaturized = false;
    std::string locks;  // of the pointer: + and -
    bool isVisible = false;

    void setVisible(bool visible) override { isVisible = visible; }
    bool lockPointer(bool isLocked) override {
        locks += isLocked ? '+' : '-';
        return isLocked;
    }
    void miniaturize() override { isMiniaturized = true; }
    bool startMove() override { return canMove; }
    void invalidate(const Rect& surfaceRect) override { invalid.push_back(surfaceRect); }
    void displayIfNeeded() override {}
    bool passKeyboard(bool /*forward*/) override { return isKeyboardPassed = hasNeighbours; }
    void setCursor(Cursor newCursor) override { cursor = newCursor; }
    float scale() const override { return 1.0F; }
    void setFrame(const Rect& onScreen, bool /*animate*/) override { frames.push_back(onScreen); }
    void setSizeLimits(Size newMinimum, Size newMaximum) override {
        minimum = newMinimum;
        maximum = newMaximum;
    }
};

class ScriptedPort final : public UiPort {
public:
    ScriptedPort() : m_before(UiPort::install(this)) {}
    ~ScriptedPort() override { UiPort::install(m_before); }

    std::deque<std::function<void()>> script;  // one step for each wait
    Appearance theme = Appearance::Light;
    std::string toolTip;  // shown at present
    Point toolTipPlace;
    ToolTipSide toolTipSide = ToolTipSide::Above;
    std::map<AccessibilityNotification, std::vector<AccessibilityElement*>> notifications;
    bool isTerminated = false;
    std::optional<std::set<std::string>> files;  // those that exist; nothing: every one does

    std::string clipboard;

    std::string clipboardText() const override { return clipboard; }
    void setClipboardText(const std::string& text) override { clipboard = text; }
    std::unique_ptr<WindowPort> makeWindow(Window& /*window*/, const Rect& /*contentRect*/,
                                           const WindowStyle& /*style*/) override {
        auto port = std::make_unique<RecordingWindow>();
        lastWindow = port.get();
        return port;
    }
    RecordingWindow* lastWindow = nullptr;

    bool waitForEvent() override {
        if (script.empty()) return false;
        const auto step = std::move(script.front());
        script.pop_front();
        step();
        return true;
    }
    void terminate() override { isTerminated = true; }
    Appearance appearance() const override { return theme; }
    bool hasFontFamily(const std::string& name) const override { return name == "Known"; }
    // Each byte is half as wide as the font's size, each line 1.25 times as high.
    Size textSize(const StyledText& text) const override {
        return {static_cast<float>(text.string.size()) * text.font.size * 0.5F,
                text.font.size * 1.25F};
    }
    std::shared_ptr<const Image> loadImage(const std::string& path, float scale) override {
        if (path.empty() || (files && files->count(path) == 0)) return nullptr;
        return std::make_shared<RecordedImage>(20, 10, scale);
    }
    std::shared_ptr<const Image> drawImage(std::int32_t pixelWidth, std::int32_t pixelHeight,
                                           float scale,
                                           const std::function<void(CanvasPort&)>& draw) override {
        auto image = std::make_shared<RecordedImage>(pixelWidth, pixelHeight, scale);
        draw(image->canvas);
        return image;
    }
    void showToolTip(Window& /*window*/, const std::string& text, const Rect& around,
                     ToolTipSide side) override {
        toolTip = text;
        toolTipPlace = around.center();
        toolTipSide = side;
    }
    void closeToolTip() override { toolTip.clear(); }
    void accessibilityChanged(AccessibilityElement& element,
                              AccessibilityNotification notification) override {
        notifications[notification].push_back(&element);
    }
    void accessibilityElementDied(AccessibilityElement& /*element*/) noexcept override {}

private:
    UiPort* const m_before;
};

// What actions go to.
struct Receiver final : Anchored {
    void act(Control& sender) {
        ++count;
        last = &sender;
        if (react) react();
    }
    int count = 0;
    Control* last = nullptr;
    std::function<void()> react;  // may delete the sender
};

// A view whose y axis points down.
template <typename V>
struct Flipped final : V {
    using V::V;
    bool isFlipped() const override { return true; }
};

// A view that fills a window with the keyboard. Points are in the window's coordinates.
class HostedView {
public:
    explicit HostedView(std::unique_ptr<View> view) : window(port, view->frame().size) {
        window.setContentView(std::move(view));
        window.visibilityDidChange(true);
        window.keyStateDidChange(true);
        port.invalid.clear();
    }

    RecordingWindow port;
    Window window;

    void press(Point point, std::int32_t clickCount = 1, ModifierFlags flags = {}) {
        ++m_presses;
        m_last = point;
        send(EventType::LeftMouseDown, point, clickCount, flags);
    }
    void drag(Point point, ModifierFlags flags = {}) {
        send(EventType::LeftMouseDragged, point, 1, flags);
    }
    void release(Point point) { send(EventType::LeftMouseUp, point, 1, {}); }
    void click(Point point) {
        press(point);
        release(point);
    }
    void move(Point point) { send(EventType::MouseMoved, point, 0, {}); }
    void wheel(Point point, float deltaY) {
        Event event = eventAt(EventType::ScrollWheel, point);
        event.deltaY = deltaY;
        Application::current().postEvent(std::move(event));
    }
    void key(char16_t character, ModifierFlags flags = {}) {
        Application::current().postEvent(keyEvent(character, flags));
    }
    bool touch(EventType type, Point point, std::int64_t finger) {
        Event event = eventAt(type, point);
        event.finger = finger;
        return Application::current().postEvent(std::move(event));
    }
    Event keyEvent(char16_t character, ModifierFlags flags = {}) {
        Event event = eventAt(EventType::KeyDown, m_last);
        event.characters = event.charactersIgnoringModifiers = std::u16string(1, character);
        event.modifierFlags = flags;
        return event;
    }

    // Draws what is invalid, which is nothing from then on.
    std::vector<RecordingCanvas::Call> display() {
        RecordingCanvas canvas;
        window.display(canvas, std::exchange(port.invalid, {}));
        return std::move(canvas.calls);
    }
    std::vector<RecordingCanvas::Call> drawn(RecordingCanvas::What what) {
        return RecordingCanvas::only(what, display());
    }

    Event eventAt(EventType type, Point point) {
        Event event;
        event.type = type;
        event.locationInWindow = point;
        event.window = &window;
        return event;
    }

private:
    void send(EventType type, Point point, std::int32_t clickCount, ModifierFlags flags) {
        Event event = eventAt(type, point);
        event.clickCount = clickCount;
        event.eventNumber = m_presses;
        event.modifierFlags = flags;
        event.deltaX = point.x - m_last.x;
        event.deltaY = point.y - m_last.y;
        m_last = point;
        Application::current().postEvent(std::move(event));
    }

    std::int32_t m_presses = 0;
    Point m_last;
};

// A view in a window, of its own class.
template <typename V>
struct Shown final : HostedView {
    template <typename... Arguments>
    explicit Shown(const Rect& frame, Arguments&&... arguments)
        : HostedView(std::make_unique<V>(frame, std::forward<Arguments>(arguments)...)) {}

    V& view = static_cast<V&>(*window.contentView());
};

}  // namespace veltra::testing
