// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_run_loop.h"

#include "veltra/platform/clock.h"

#include <algorithm>

namespace veltra {

namespace {
constexpr Nanoseconds kLongestWait = seconds(86'400.0);
}  // namespace

QtRunLoop::QtRunLoop() {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { wake(); });
}

void QtRunLoop::wake() {
    // A timer's action may run a loop of Qt's. The other timers need a waker in there; the end of
    // runDue() sets it to what comes next.
    m_timer.start(0);
    runDue();
}

void QtRunLoop::deadlineChanged(std::optional<Moment> deadline) noexcept {
    const ClockReading now = Clocks::current().monotonic();
    if (!deadline || now.hasFailed()) return m_timer.stop();
    const Nanoseconds wait = std::clamp(*deadline - now.moment(), Nanoseconds(), kLongestWait);
    m_timer.start(static_cast<int>(wait.wholeMilliseconds()));
}

}  // namespace veltra
