// SPDX-License-Identifier: MIT
#include "veltra/ui/application.h"

#include "veltra/base/immortal.h"
#include "veltra/ui/port.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <utility>

namespace veltra {

namespace {
constexpr Nanoseconds kTrashPatience = milliseconds(50);

int actionsUnderWay = 0;
}  // namespace

// One event on the stack. The last event of the outermost one stays the current one.
class Application::Dispatch {
public:
    Dispatch(Application& application, const Event& event) noexcept
        : m_application(application),
          m_event(event),
          m_outer(application.m_dispatch),
          m_before(application.m_current) {
        application.m_current = &event;
        application.m_dispatch = this;
    }
    Dispatch(const Dispatch&) = delete;
    Dispatch& operator=(const Dispatch&) = delete;
    ~Dispatch() {
        m_application.m_dispatch = m_outer;
        m_application.m_current = m_outer != nullptr ? m_before : &m_application.m_last;
    }
    bool isOutermost() const noexcept { return m_outer == nullptr; }

    // Whether a handler from here outwards has taken events: what was kept waits for its return.
    bool hasPuller() const noexcept {
        return pulls || (m_outer != nullptr && m_outer->hasPuller());
    }

    // A release while handlers of its press are on the stack: true when one of them pulls and gets
    // it. If none has pulled yet, the view gets it, and who pulls later is told.
    bool takesRelease(const Event& release) noexcept {
        bool isTakenHere = false;
        if (release.window.get() == m_event.window.get() &&
            release.eventNumber == m_event.eventNumber) {
            isTakenHere = pulls;
            hasLostRelease = !pulls;
        }
        const bool isTakenOutside = m_outer != nullptr && m_outer->takesRelease(release);
        return isTakenHere || isTakenOutside;
    }

    bool isTaken = true;
    bool pulls = false;           // its handler has called nextEvent()
    bool hasLostRelease = false;  // it went to the view before the handler pulled

private:
    Application& m_application;
    const Event& m_event;
    Dispatch* const m_outer;
    const Event* const m_before;
};

Application& Application::current() {
    static Immortal<Application> application;
    return *application;
}

bool Application::sendAction(Action action, Anchored* target, Anchored* sender) {
    struct Scope {
        Scope() noexcept { ++actionsUnderWay; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() {
            if (--actionsUnderWay == 0) current().discard(nullptr);
        }
    };
    const Scope scope;
    if (target != nullptr) return action.send(target, sender);
    Window* const key = m_keyWindow.get();
    Window* const main = m_mainWindow.get();
    for (Window* window : {key, main == key ? nullptr : main}) {
        if (window == nullptr) continue;
        Responder* const first = window->firstResponder();
        if ((first != nullptr ? first : window)->tryToPerform(action, sender)) return true;
    }
    return action.send(m_delegate.get(), sender);
}

Event Application::nextEvent(EventMask mask, RunLoopMode mode) {
    RunLoop* const loop = RunLoop::current();
    std::optional<RunLoop::ModeScope> scope;
    if (loop != nullptr) scope.emplace(*loop, mode);
    if (m_dispatch != nullptr) m_dispatch->pulls = true;
    for (;;) {
        const auto found = std::find_if(m_queue.begin(), m_queue.end(), [mask](const Event& event) {
            return mask.contains(event.type);
        });
        if (found != m_queue.end()) {
            m_pulled = std::move(*found);
            m_queue.erase(found);
            if (m_dispatch != nullptr && m_pulled.type == EventType::LeftMouseUp)
                m_dispatch->hasLostRelease = false;
            break;
        }
        const bool isReleased = mask.contains(EventType::LeftMouseUp) && m_dispatch != nullptr &&
                                std::exchange(m_dispatch->hasLostRelease, false);
        if (isReleased || !waitForEvent()) {
            Event release;
            release.type = EventType::LeftMouseUp;
            if (m_dispatch != nullptr) {
                release.window = m_current->window;
                release.locationInWindow = m_current->locationInWindow;
                release.eventNumber = m_current->eventNumber;
            }
            m_pulled = std::move(release);
            break;
        }
    }
    m_current = &m_pulled;
    return m_pulled;
}

bool Application::waitForEvent() {
    struct Pull {
        explicit Pull(int& count) noexcept : pulls(++count) {}
        Pull(const Pull&) = delete;
        Pull& operator=(const Pull&) = delete;
        ~Pull() { --pulls; }
        int& pulls;
    };
    const Pull pull(m_pulls);
    return UiPort::current().waitForEvent();
}

bool Application::postEvent(Event event) {
    if (!event.window || !event.window->admits(event)) return true;
    const bool isForPuller = event.type == EventType::LeftMouseUp && m_dispatch != nullptr &&
                             m_dispatch->takesRelease(event);
    if (m_pulls > 0 || isForPuller) {
        m_queue.push_back(std::move(event));
        UiPort::current().eventWasPosted();
        return true;
    }
    if (m_dispatch == nullptr || !m_dispatch->hasPuller())
        dispatchQueue();  // what was kept came before
    const bool isTaken = dispatch(event);
    if (m_dispatch == nullptr) {
        dispatchQueue();
        discard(nullptr);  // what waits for the event's end
    }
    return isTaken;
}

bool Application::dispatch(const Event& event) {
    Window* const window = event.window.get();
    if (window == nullptr) return true;
    const Dispatch scope(*this, event);
    window->sendEvent(event);
    if (scope.isOutermost()) m_last = *m_current;
    return scope.isTaken;
}

void Application::noResponderFor(const Event& /*event*/) {
    if (m_dispatch != nullptr) m_dispatch->isTaken = false;
}

void Application::dispatchQueue() {
    while (!m_queue.empty()) {
        const Event event = std::move(m_queue.front());
        m_queue.pop_front();
        dispatch(event);
    }
}

void Application::discard(std::unique_ptr<Anchored> object) {
    if (object) m_trash.push_back(std::move(object));
    if (m_trash.empty()) return;
    if (m_dispatch != nullptr || actionsUnderWay > 0) return;  // their end sees to it
    const RunLoop* const loop = RunLoop::current();
    if (loop == nullptr || loop->depth() == 0) {
        emptyTrash();
    } else {
        emptyTrashAfter(Nanoseconds());
    }
}

void Application::emptyTrashAfter(Nanoseconds time) {
    if (m_trashTimer && m_trashTimer->isValid()) return;
    m_trashTimer = RunLoop::current()->schedule({.interval = time,
                                                 .target = this,
                                                 .action = action<&Application::trashTimerFired>(),
                                                 .modes = kAllRunLoopModes});
}

void Application::trashTimerFired() {
    if (m_dispatch != nullptr || actionsUnderWay > 0) return;
    if (RunLoop::current()->depth() > 1) {  // inside a loop that another timer's action runs
        emptyTrashAfter(kTrashPatience);
    } else {
        emptyTrash();
    }
}

void Application::emptyTrash() {
    while (!m_trash.empty()) {  // a destructor may discard more
        const std::vector<std::unique_ptr<Anchored>> trash = std::exchange(m_trash, {});
    }
}

void Application::setKeyWindow(Window* window) {
    m_keyWindow = window;
    if (window != nullptr && !window->isPanel()) setMainWindow(window);
}

void Application::setMainWindow(Window* window) {
    const WeakPointer<Window> before(m_mainWindow);
    if (before.get() == window) return;
    const WeakPointer<Window> now(window);
    m_mainWindow = window;
    if (before) before->tellStateDidChange();
    if (now) now->tellStateDidChange();
}

void Application::terminate() {
    UiPort::current().terminate();
}

}  // namespace veltra
