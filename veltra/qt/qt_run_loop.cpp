// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_run_loop.h"

#include "veltra/platform/clock.h"

#include <algorithm>

namespace veltra {

namespace {
constexpr std::uint64_t kMillisecond = 1'000'000;   // nanoseconds
constexpr std::uint64_t kLongestWait = 86'400'000;  // milliseconds
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

void QtRunLoop::deadlineChanged(std::optional<std::uint64_t> deadline) noexcept {
    const ClockReading now = Clocks::current().monotonic();
    if (!deadline || now.error != 0) return m_timer.stop();
    const std::uint64_t wait = *deadline > now.nanoseconds ? *deadline - now.nanoseconds : 0;
    // Rounded up: a wake-up just before the deadline would find nothing to do.
    const std::uint64_t milliseconds = wait / kMillisecond + (wait % kMillisecond != 0 ? 1 : 0);
    m_timer.start(static_cast<int>(std::min(milliseconds, kLongestWait)));
}

}  // namespace veltra
