// SPDX-License-Identifier: MIT
#include "veltra/platform/run_loop.h"

#include "veltra/base/object_file.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/port.h"
#include "veltra/platform/thread_end.h"

#include <algorithm>

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
    for (const Timers& timers : m_timers)
        for (const auto& [place, timer] : timers)
            timer->m_loop = nullptr;
}

RunLoop* RunLoop::current() noexcept {
    if (setLoop != nullptr) return setLoop;
    if (isThreadEnding) return nullptr;
    if (ownLoop == nullptr) {
        static const ThreadEnd end(endOwnLoop);
        std::unique_ptr<RunLoop> loop = makePlatformRunLoop();
        if (loop != nullptr && end.callOnThisThread()) ownLoop = loop.release();
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
    const bool isWaiting = isDoneUnlessOutOfMemory([&] {
        timer = std::make_shared<RunLoopTimer>(RunLoopTimer::Making{}, request);
        timer->m_due = now.moment() + timer->m_interval;
        timer->m_serial = ++m_lastSerial;
        timersBeside(*timer).emplace(Place(timer->m_due, timer->m_serial), timer);
    });
    if (!isWaiting) return nullptr;
    timer->m_loop = this;
    announceDeadline();
    return timer;
}

RunLoop::Timers& RunLoop::timersBeside(const RunLoopTimer& timer) noexcept {
    return m_timers[timer.m_modes.bits()];
}

const std::shared_ptr<RunLoopTimer>* RunLoop::firstRunnable() const noexcept {
    const Timers::value_type* first = nullptr;
    for (unsigned modes = 0; modes < m_timers.size(); ++modes) {
        if ((modes & static_cast<unsigned>(m_mode)) == 0) continue;
        // Passes over no more timers than there are actions on the stack.
        const auto at = std::find_if(m_timers[modes].begin(), m_timers[modes].end(),
                                     [](const auto& each) { return !each.second->m_isFiring; });
        if (at != m_timers[modes].end() && (first == nullptr || at->first < first->first))
            first = &*at;
    }
    const bool isDueEver = first != nullptr && first->first.first != Moment::never();
    return isDueEver ? &first->second : nullptr;
}

std::optional<Moment> RunLoop::nextDeadline() const noexcept {
    const std::shared_ptr<RunLoopTimer>* const first = firstRunnable();
    if (first == nullptr) return std::nullopt;
    return (*first)->m_due;
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
        const std::shared_ptr<RunLoopTimer>* const first = firstRunnable();
        if (first == nullptr || (*first)->m_due > now.moment()) break;
        const std::shared_ptr<RunLoopTimer> timer = *first;
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
    Timers& timers = timersBeside(timer);
    auto node = timers.extract(Place(timer.m_due, timer.m_serial));
    timer.m_due = due;
    node.key() = Place(due, timer.m_serial);
    timers.insert(std::move(node));
}

void RunLoop::remove(RunLoopTimer& timer) noexcept {
    timer.m_loop = nullptr;
    const auto node = timersBeside(timer).extract(Place(timer.m_due, timer.m_serial));
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
