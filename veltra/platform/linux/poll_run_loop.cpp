// SPDX-License-Identifier: MIT
#include "veltra/platform/poll_run_loop.h"

#include "veltra/platform/clock.h"
#include "veltra/platform/port.h"

#include <algorithm>
#include <memory>
#include <new>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

namespace veltra {

namespace {

constexpr std::uint64_t kSecond = 1'000'000'000;
constexpr std::uint64_t kLongestWait = 86'400 * kSecond;  // a day fits every timespec
constexpr std::uint64_t kBlindWait = kSecond / 20;        // with nothing to wake by

std::uint64_t waitFromSeconds(double seconds) noexcept {
    if (!(seconds > 0.0)) return 0;
    return seconds >= 86'400.0 ? kLongestWait : static_cast<std::uint64_t>(seconds * 1e9);
}

timespec toTimespec(std::uint64_t nanoseconds) noexcept {
    timespec time{};
    time.tv_sec = static_cast<time_t>(nanoseconds / kSecond);
    time.tv_nsec = static_cast<long>(nanoseconds % kSecond);
    return time;
}

std::uint64_t waitUntil(std::uint64_t deadline) noexcept {
    const ClockReading now = Clocks::current().monotonic();
    if (now.error != 0) return kBlindWait;
    return deadline > now.nanoseconds ? std::min(deadline - now.nanoseconds, kLongestWait) : 0;
}

void armTimer(int descriptor, std::optional<std::uint64_t> deadline) noexcept {
    itimerspec time{};  // all zero: never
    if (deadline) time.it_value = toTimespec(std::max<std::uint64_t>(waitUntil(*deadline), 1));
    static_cast<void>(::timerfd_settime(descriptor, 0, &time, nullptr));
}

}  // namespace

std::unique_ptr<RunLoop> makePlatformRunLoop() noexcept {
    return std::unique_ptr<RunLoop>(new (std::nothrow) PollRunLoop);
}

PollRunLoop::PollRunLoop() noexcept : m_stopDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

PollRunLoop::~PollRunLoop() {
    if (m_stopDescriptor >= 0) ::close(m_stopDescriptor);
    if (m_timerDescriptor >= 0) ::close(m_timerDescriptor);
}

void PollRunLoop::run() {
    const WeakPointer<RunLoop> self(this);
    while (self && round(kLongestWait) != Round::Stopped) {
    }
}

bool PollRunLoop::runFor(double seconds) {
    const WeakPointer<RunLoop> self(this);
    const ClockReading start = Clocks::current().monotonic();
    const double longest = seconds > 0.0 ? seconds * 1e9 : 0.0;
    for (ClockReading now = start; now.error == 0; now = Clocks::current().monotonic()) {
        const double left = longest - static_cast<double>(now.nanoseconds - start.nanoseconds);
        if (round(waitFromSeconds(left * 1e-9)) == Round::Stopped) return true;
        if (!self || left <= 0.0) return false;
    }
    return false;
}

bool PollRunLoop::runOnce(double seconds) {
    return round(waitFromSeconds(seconds)) == Round::Stopped;
}

PollRunLoop::Round PollRunLoop::round(std::uint64_t longestWait) {
    if (takeStop()) return Round::Stopped;
    wait(longestWait);
    if (takeStop()) return Round::Stopped;
    runDue();  // may delete the loop
    return Round::Done;
}

void PollRunLoop::stop() noexcept {
    m_isStopAsked.store(true, std::memory_order_release);  // with takeStop()
    if (m_stopDescriptor < 0) return;
    // The flag is set first: a loop that has drained the descriptor finds it. Fails only when the
    // count is full, and then the descriptor is readable already.
    static_cast<void>(::eventfd_write(m_stopDescriptor, 1));
}

bool PollRunLoop::takeStop() noexcept {
    return m_isStopAsked.exchange(false, std::memory_order_acquire);  // with stop()
}

void PollRunLoop::wait(std::uint64_t longest) const noexcept {
    const std::optional<std::uint64_t> deadline = nextDeadline();
    if (deadline) longest = std::min(longest, waitUntil(*deadline));
    if (m_stopDescriptor < 0) longest = std::min(longest, kBlindWait);
    const timespec time = toTimespec(longest);
    pollfd watched{m_stopDescriptor, POLLIN, 0};  // a negative descriptor is passed over
    if (::ppoll(&watched, 1, &time, nullptr) <= 0) return;
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(m_stopDescriptor, &count));
}

int PollRunLoop::descriptor() noexcept {
    if (m_timerDescriptor < 0) {
        m_timerDescriptor = ::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
        if (m_timerDescriptor >= 0) armTimer(m_timerDescriptor, nextDeadline());
    }
    return m_timerDescriptor;
}

void PollRunLoop::deadlineChanged(std::optional<std::uint64_t> deadline) noexcept {
    if (m_timerDescriptor >= 0) armTimer(m_timerDescriptor, deadline);
}

}  // namespace veltra
