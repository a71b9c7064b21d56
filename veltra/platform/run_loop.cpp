// SPDX-License-Identifier: MIT
#include "veltra/platform/run_loop.h"

#include "veltra/base/object_file.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/port.h"
#include "veltra/platform/thread_end.h"

#include <new>

namespace veltra {

namespace {

// Initial-exec: their first use on a thread allocates nothing.
VELTRA_NEVER_ALLOCATED constinit thread_local RunLoop* setLoop = nullptr;
VELTRA_NEVER_ALLOCATED constinit thread_local bool isThreadEnding = false;
VELTRA_NEVER_ALLOCATED constinit thread_local RunLoop* ownLoop = nullptr;

void endOwnLoop() noexcept {
    isThreadEnding = true;
    delete std::exchange(ownLoop, nullptr);
}

}  // namespace

RunLoop::~RunLoop() {
    if (setLoop == this) setLoop = nullptr;
    for (const auto& [place, timer] : m_timers)
        timer->m_loop = nullptr;
}

RunLoop* RunLoop::current() noexcept {
    if (setLoop != nullptr) return setLoop;
    if (isThreadEnding) return nullptr;
    if (ownLoop == nullptr) {
        std::unique_ptr<RunLoop> loop = makePlatformRunLoop();
        if (loop != nullptr && callAtThreadEnd(endOwnLoop)) ownLoop = loop.release();
    }
    return ownLoop;
}

RunLoop* RunLoop::setCurrent(RunLoop* loop) noexcept {
    return std::exchange(setLoop, loop);
}

std::shared_ptr<RunLoopTimer> RunLoop::schedule(const TimerRequest& request) noexcept {
    const ClockReading now = Clocks::current().monotonic();
    if (now.hasFailed()) return nullptr;
    std::shared_ptr<RunLoopTimer> timer;
    try {
        timer = std::make_shared<RunLoopTimer>(RunLoopTimer::Making{}, request);
        timer->m_due = now.moment() + timer->m_interval;
        timer->m_serial = ++m_lastSerial;
        m_timers.emplace(Place(timer->m_due, timer->m_serial), timer);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    timer->m_loop = this;
    announceDeadline();
    return timer;
}

RunLoop::Timers::const_iterator RunLoop::firstRunnable() const noexcept {
    auto at = m_timers.begin();
    while (at != m_timers.end() &&
           (at->second->m_isFiring || !at->second->m_modes.contains(m_mode)))
        ++at;
    return at != m_timers.end() && at->first.first == Moment::never() ? m_timers.end() : at;
}

std::optional<Moment> RunLoop::nextDeadline() const noexcept {
    const auto first = firstRunnable();
    if (first == m_timers.end()) return std::nullopt;
    return first->first.first;
}

// A loop that dies meanwhile is left alone.
class RunLoop::DepthScope {
public:
    explicit DepthScope(RunLoop& loop) noexcept : m_loop(&loop) { ++loop.m_depth; }
    DepthScope(const DepthScope&) = delete;
    DepthScope& operator=(const DepthScope&) = delete;
    ~DepthScope() {
        if (m_loop) --m_loop->m_depth;
    }

private:
    const WeakPointer<RunLoop> m_loop;
};

int RunLoop::runDue() {
    m_isAnnounced = false;
    const WeakPointer<RunLoop> self(this);
    const DepthScope depth(*this);
    const ClockReading now = Clocks::current().monotonic();
    int count = 0;
    // Whatever fires is due after `now` from then on, so each timer comes at most once.
    while (!now.hasFailed()) {
        const auto first = firstRunnable();
        if (first == m_timers.end() || first->first.first > now.moment()) break;
        const std::shared_ptr<RunLoopTimer> timer = first->second;
        runOne(timer, now.moment());
        ++count;
        if (!self) return count;
    }
    announceDeadline();
    return count;
}

void RunLoop::runOne(const std::shared_ptr<RunLoopTimer>& timer, Moment now) {
    if (timer->m_repeats) {
        moveTo(*timer, timer->nextTickAfter(now));
    } else {
        remove(*timer);
    }
    timer->send();  // may delete the loop
    if (!timer->isValid()) return;
    const ClockReading after = Clocks::current().monotonic();
    if (!after.hasFailed() && after.moment() >= timer->m_due) {
        moveTo(*timer, timer->nextTickAfter(after.moment()));
    }
}

void RunLoop::moveTo(RunLoopTimer& timer, Moment due) noexcept {
    auto node = m_timers.extract(Place(timer.m_due, timer.m_serial));
    timer.m_due = due;
    node.key() = Place(due, timer.m_serial);
    m_timers.insert(std::move(node));
}

void RunLoop::remove(RunLoopTimer& timer) noexcept {
    timer.m_loop = nullptr;
    const auto node = m_timers.extract(Place(timer.m_due, timer.m_serial));
    announceDeadline();
}

void RunLoop::setMode(RunLoopMode mode) noexcept {
    m_mode = mode;
    announceDeadline();
}

void RunLoop::announceDeadline() noexcept {
    const std::optional<Moment> deadline = nextDeadline();
    if (m_isAnnounced && deadline == m_announcedDeadline) return;
    m_announcedDeadline = deadline;
    m_isAnnounced = true;
    deadlineChanged(deadline);
}

RunLoop::ModeScope::ModeScope(RunLoop& loop, RunLoopMode mode) noexcept
    : m_loop(&loop), m_before(loop.mode()) {
    loop.setMode(mode);
}

RunLoop::ModeScope::~ModeScope() {
    if (m_loop) m_loop->setMode(m_before);
}

}  // namespace veltra
